// Property lists, asked through what the inspectors register.

#include "inspectors/plist/osx_dictionary_entry.h"
#include "inspectors/plist/osx_value.h"
#include "tests/frameworks/cf_text.h"
#include "tests/inspectors/asking.h"

namespace {

using namespace std::string_literals;

OwnedObject List(std::string const& value) { return Parsed("<plist>" + value + "</plist>"); }

TEST(PropertyList, ConvertsEachKindOfValueToItsOwnTypeOnly) {
  struct {
    std::string xml, type, answering, answer, cstring;
  } const cases[] = {
      {"<string>caf\u00e9 \u2603</string>", "string", "string", "caf\x8e ?", "caf\x8e ?"},
      {"<string/>", "string", "string", "", ""},
      {"<data>YQBiAAA=</data>", "data", "string", "a\0b\0\0"s, "a\0b\0"s},
      {"<data/>", "data", "string", "", ""},
      {"<data>/w==</data>", "data", "string", "\xff", "\xff"},
      {"<true/>", "boolean", "boolean", "true", kNone},
      {"<false/>", "boolean", "boolean", "false", kNone},
      {"<integer>2147483647</integer>", "integer", "integer", "2147483647", kNone},
      {"<integer>2147483648</integer>", "integer", "integer", kNone, kNone},
      {"<integer>-2147483648</integer>", "integer", "integer", "-2147483648", kNone},
      {"<integer>-2147483649</integer>", "integer", "integer", kNone, kNone},
      {"<integer>18446744073709551615</integer>", "integer", "integer", kNone, kNone},
      {"<real>-2.0</real>", "integer", "integer", "-2", kNone},
      {"<real>2.5</real>", "integer", "integer", kNone, kNone},
      {"<date>2001-01-01T00:00:00Z</date>", "date", "date", "978307200000000", kNone},
      {"<date>1903-12-31T23:59:59Z</date>", "date", "date", "-2082844801000000", kNone},
      {"<array/>", "array", "", "", kNone},
      {"<dict/>", "dictionary", "", "", kNone},
  };
  for (auto const& row : cases) {
    SCOPED_TRACE(row.xml);
    OwnedObject const array_object = List("<array>" + row.xml + "</array>");
    OwnedObject const dictionary_object = List("<dict><key>k</key>" + row.xml + "</dict>");
    OSXArray const array(static_cast<CFArrayRef>(array_object.get()));
    OSXDictionary const dictionary(static_cast<CFDictionaryRef>(dictionary_object.get()));
    OSXValue const value(CFArrayGetValueAtIndex(array.Array(), 0));
    CFIndex const held = CFGetRetainCount(value.Object());
    integer const index = 0;
    std::string const key = "k";
    inspector_string const name = Name(key);

    EXPECT_EQ(Answer("type", "osxvalue", &value), row.type);
    for (std::string const phrase : {"string", "data", "cstring", "boolean", "integer", "date"}) {
      bool const answers = row.answering == (phrase == "data" ? "string" : phrase);
      std::string const expected =
          phrase == "cstring" ? row.cstring : (answers ? row.answer : kNone);
      EXPECT_EQ(Answer(phrase, "osxvalue", &value), expected) << phrase;
      EXPECT_EQ(Answer(phrase, "dictionary", &dictionary, &name), expected) << phrase;
      if (phrase == "data" || phrase == "cstring") continue;
      EXPECT_EQ(Answer(phrase, "array", &array, &index), expected) << phrase;
    }
    EXPECT_EQ(CFGetRetainCount(value.Object()), held);
    EXPECT_EQ(CFGetRetainCount(array.Array()), 2);
    EXPECT_EQ(CFGetRetainCount(dictionary.Dictionary()), 2);
  }
}

TEST(PropertyList, HasNoTimeForDatesBeyondAllTimes) {
  std::pair<double, std::string> const cases[] = {{-1e300, kNone},
                                                  {__builtin_nan(""), kNone},
                                                  {9.3e12, kNone},
                                                  {0.0000015, "978307200000002"},
                                                  {-0.25, "978307199750000"}};
  for (auto const& [seconds, answer] : cases) {
    OwnedObject const date(CFDateCreate(nullptr, seconds));
    OSXValue const value = OSXValue(date.get());
    EXPECT_EQ(Answer("date", "osxvalue", &value), answer) << seconds;
  }
}

TEST(PropertyList, HasNoTextForAKeyThatIsNoString) {
  void const* key = kCFBooleanTrue;
  OwnedObject const object(CFDictionaryCreate(
      nullptr, &key, &key, 1, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  OSXDictionary const dictionary(static_cast<CFDictionaryRef>(object.get()));
  EXPECT_THROW(OSXDictionaryKeyIterator().First(dictionary), NoSuchObject);
  OSXDictionaryEntry const entry = OSXDictionaryEntryIterator().First(dictionary);
  EXPECT_THROW(key_of_entry(entry), NoSuchObject);
  EXPECT_TRUE(boolean_of_value(value_of_entry(entry)));
}

TEST(PropertyList, KeepsReferences) {
  OwnedObject const array = List("<array><true/></array>");
  OwnedObject const dictionary = List("<dict/>");
  {
    OSXArray const held(static_cast<CFArrayRef>(array.get()));
    OSXArray copy(held);
    EXPECT_EQ(CFGetRetainCount(array.get()), 3);
    copy = OSXArray(copy);
    EXPECT_EQ(CFGetRetainCount(array.get()), 3);
    OSXValue const value(dictionary.get());
    auto const other = Ask<OSXDictionary>("dictionary", "osxvalue", &value);
    EXPECT_EQ(CFGetRetainCount(dictionary.get()), 2);
    OSXValue const first = OSXValue(array.get());
    OSXValue third(first);
    third = value;
    third = first;
  }
  EXPECT_EQ(CFGetRetainCount(array.get()), 1);
  EXPECT_EQ(CFGetRetainCount(dictionary.get()), 1);
  OSXValue const value(array.get());
  Ask<OSXArray>("array", "osxvalue", &value);
  EXPECT_EQ(CFGetRetainCount(array.get()), 2) << "the array outlives what it came from";
  CFRelease(array.get());
}

}  // namespace
