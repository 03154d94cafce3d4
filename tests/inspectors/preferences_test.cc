// Preferences, asked through what they register.
#include "inspectors/plist/preferences.h"

#include "tests/inspectors/asking.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/on_scripted_machine.h"

std::string Shown(OSXArray const& array) { return Shown(size_of_array(array)); }
std::string Shown(OSXDictionary const& dictionary) { return Shown(size_of_dictionary(dictionary)); }

namespace {

std::string const kHome = "/Users/ann/Library/Preferences/";

Preferences Of(std::string const& application) {
  return prefs_of(Bytes(application), application.size());
}

std::string const kNone = "no such object";

// The answer to "string "key" of preference "application"" and its like.
template <class Result>
std::string Ask(std::string const& phrase, std::string const& application, std::string const& key) {
  Preferences const preferences = Of(application);
  inspector_string const name = Name(key);
  return Told([&] { return ::Ask<Result>(phrase, "preference", &preferences, &name); });
}

std::string AskText(std::string const& application, std::string const& key) {
  return Ask<inspector_string>("string", application, key);
}

class PreferencesOfAMachine : public OnScriptedMachine {
 protected:
  PreferencesOfAMachine() {
    machine_->files = {tree_machine_, &tree_machine_->Files()};
    machine_->current_user = "ann";
    machine_->current_home = "/Users/ann";
    machine_->host_identifier = "0011";
  }

  void Write(std::string const& path, std::string const& entries) const {
    tree_.Write(path, "<plist><dict>" + entries + "</dict></plist>");
  }
  void WriteText(std::string const& path, std::string const& key) const {
    Write(path, "<key>" + key + "</key><string>" + path + "</string>");
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
                     {"date", "date", "1000000"},
                     {"array", "array", "1"},
                     {"dictionary", "dictionary", "1"},
                     {"missing", "", ""}};
  for (auto const& row : cases) {
    auto const expected = [&](char const* phrase) {
      return row.phrase == phrase ? row.answer : kNone;
    };
    SCOPED_TRACE(row.key);
    EXPECT_EQ(Ask<inspector_string>("string", "a", row.key), expected("string"));
    EXPECT_EQ(Ask<boolean>("boolean", "a", row.key), expected("boolean"));
    EXPECT_EQ(Ask<integer>("integer", "a", row.key), expected("integer"));
    EXPECT_EQ(Ask<moment>("date", "a", row.key), expected("date"));
    EXPECT_EQ(Ask<OSXArray>("array", "a", row.key), expected("array"));
    EXPECT_EQ(Ask<OSXDictionary>("dictionary", "a", row.key), expected("dictionary"));
  }
}

TEST_F(PreferencesOfAMachine, HaveNamesAndKeysInMacRoman) {
  WriteText(kHome + "caf\u00e9.plist", "caf\u00e9");
  EXPECT_NE(AskText("caf\x8E", "caf\x8E"), kNone);
  EXPECT_EQ(AskText("caf\u00e9", "caf\x8E"), kNone);
  EXPECT_EQ(AskText("caf\x8E", "caf\u00e9"), kNone);
  EXPECT_EQ(AskText("", "caf\x8E"), kNone);
  EXPECT_EQ(AskText("../Preferences/caf\x8E", "caf\x8E"), kNone);
}

TEST_F(PreferencesOfAMachine, KeepTheirValuesForEver) {
  Write(kHome + "a.plist", "<key>d</key><dict/><key>l</key><array/>");
  OSXDictionary const dictionary = dictionary_of_prefs(Bytes("d"), 1, Of("a"));
  OSXArray const array = array_of_prefs(Bytes("l"), 1, Of("a"));
  // The file as it was has no holder but these.
  Write(kHome + "a.plist", "<key>other</key><true/>");
  EXPECT_EQ(AskText("a", "d"), kNone);
  EXPECT_EQ(CFGetRetainCount(dictionary.Dictionary()), 2) << "the one above, and one for ever";
  EXPECT_EQ(CFGetRetainCount(array.Array()), 3) << "the one above, and two for ever";
}

TEST(Preferences, GiveTheirNameBackOnceByTheLastCopy) {
  auto first = std::make_unique<Preferences>(Of("example.name"));
  CFStringRef const name = first->Application();
  CFRetain(name);
  auto const second = std::make_unique<Preferences>(*first);
  first.reset();
  EXPECT_EQ(CFGetRetainCount(name), 2);
  *second = Of("other");
  EXPECT_EQ(CFGetRetainCount(name), 1);
  CFRelease(name);
}

}  // namespace
