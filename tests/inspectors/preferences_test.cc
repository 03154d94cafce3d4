// Preferences, asked of the evaluator itself.
#include "inspectors/plist/preferences.h"

#include "tests/machine/recorded_tree.h"
#include "tests/portable_inspectors/answers.h"
#include "tests/support/on_scripted_machine.h"

namespace {

std::string const kHome = "/Users/ann/Library/Preferences/";

Preferences Of(std::string const& application) {
  ConstData const name(application);
  return prefs_of(name.begin, name.Length());
}

std::string Ask(std::string const& question, std::string const& key,
                std::string const& application) {
  return Answer(question + " \"" + key + "\" of preference \"" + application + "\"");
}

class PreferencesOfAMachine : public OnScriptedMachine {
 protected:
  PreferencesOfAMachine() {
    machine_->files = {tree_machine_, &tree_machine_->Files()};
    machine_->current_user = "ann";
    machine_->current_home = "/Users/ann";
    machine_->host_identifier = "0011";
    machine_->SetZone("UTC", "UTC0");
  }

  void Write(std::string const& path, std::string const& entries) const {
    tree_.Write(path, "<plist><dict>" + entries + "</dict></plist>");
  }

  RecordedTree tree_;
  std::shared_ptr<machine::Machine const> tree_machine_ = tree_.Machine();
};

TEST_F(PreferencesOfAMachine, HaveValuesOfSixTypes) {
  Write(kHome + "a.plist",
        "<key>string</key><string>caf\u00e9</string><key>data</key><data>YQA=</data>"
        "<key>boolean</key><true/><key>integer</key><integer>-7</integer>"
        "<key>real</key><real>2.5</real><key>date</key><date>1970-01-01T00:00:01Z</date>"
        "<key>array</key><array><true/></array>"
        "<key>dictionary</key><dict><key>k</key><true/></dict>");
  using namespace std::string_literals;
  struct {
    std::string key, phrase, answer;
  } const cases[] = {{"string", "string", "caf\x8E"},
                     {"data", "string", "a\0"s},
                     {"boolean", "boolean", "true"},
                     {"integer", "integer", "-7"},
                     {"real", "", ""},
                     {"date", "date", "1970-01-01T00:00:01.000000+00:00"},
                     {"array", "size of array", "1"},
                     {"dictionary", "size of dictionary", "1"},
                     {"missing", "", ""}};
  for (auto const& row : cases) {
    for (std::string const phrase :
         {"string", "boolean", "integer", "date", "size of array", "size of dictionary"}) {
      EXPECT_EQ(Ask(phrase, row.key, "a"), phrase == row.phrase ? row.answer : "no such object")
          << phrase << " of " << row.key;
    }
  }
}

TEST_F(PreferencesOfAMachine, HaveNamesAndKeysInMacRoman) {
  Write(kHome + "caf\u00e9.plist", "<key>caf\u00e9</key><true/>");
  EXPECT_EQ(Ask("boolean", "caf\x8E", "caf\x8E"), "true");
  for (auto const& [key, application] : {std::pair("caf\x8E", "caf\u00e9"),
                                         {"caf\u00e9", "caf\x8E"},
                                         {"caf\x8E", ""},
                                         {"caf\x8E", "../Preferences/caf\x8E"}}) {
    EXPECT_EQ(Ask("boolean", key, application), "no such object") << application << ' ' << key;
  }
}

TEST_F(PreferencesOfAMachine, KeepTheirValuesForEver) {
  Write(kHome + "a.plist", "<key>d</key><dict/><key>l</key><array/>");
  OSXDictionary const dictionary = dictionary_of_prefs(ConstData("d").begin, 1, Of("a"));
  OSXArray const array = array_of_prefs(ConstData("l").begin, 1, Of("a"));
  // The file as it was has no holder but these.
  Write(kHome + "a.plist", "<key>other</key><true/>");
  EXPECT_EQ(Ask("size of dictionary", "d", "a"), "no such object");
  EXPECT_EQ(CFGetRetainCount(dictionary.Dictionary()), 2) << "the one above, and one for ever";
  EXPECT_EQ(CFGetRetainCount(array.Array()), 3) << "the one above, and two for ever";
}

TEST(Preferences, GiveTheirNameBackOnceByTheLastCopy) {
  auto first = std::make_unique<Preferences>(Of("example.name"));
  CFStringRef const name = first->Application();
  CFRetain(name);
  auto const second = std::make_unique<Preferences>(*first);
  {
    Preferences third = Of("third");
    third = *first;
    third = *second;
    EXPECT_EQ(CFGetRetainCount(name), 2) << "copies hold no reference of their own";
  }
  first.reset();
  EXPECT_EQ(CFGetRetainCount(name), 2);
  *second = Of("other");
  EXPECT_EQ(CFGetRetainCount(name), 1);
  CFRelease(name);
}

}  // namespace
