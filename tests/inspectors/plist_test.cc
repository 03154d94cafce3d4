// Property lists, asked through what the inspectors register.

#include "inspectors/plist/osx_dictionary_entry.h"
#include "inspectors/plist/osx_value.h"
#include "tests/frameworks/cf_text.h"
#include "tests/inspectors/asking.h"

namespace {

using namespace std::string_literals;
using testing::ElementsAre;

OwnedObject List(std::string const& value) { return Parsed("<plist>" + value + "</plist>"); }

std::string const kNone = "no such object";

// What a registered property gives, shown.
template <class Result>
std::string AskText(std::string const& phrase, std::string const& type, void const* object,
                    void const* parameter = nullptr) {
  return Told([&] { return Ask<Result>(phrase, type, object, parameter); });
}

// One conversion, whichever way the value is reached.
std::string Convert(std::string const& phrase, std::string const& type, void const* object,
                    void const* parameter = nullptr) {
  if (phrase == "boolean") return AskText<boolean>(phrase, type, object, parameter);
  if (phrase == "integer") return AskText<integer>(phrase, type, object, parameter);
  if (phrase == "date") return AskText<moment>(phrase, type, object, parameter);
  return AskText<inspector_string>(phrase, type, object, parameter);
}

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

    EXPECT_EQ(Convert("type", "osxvalue", &value), row.type);
    for (std::string const phrase : {"string", "data", "cstring", "boolean", "integer", "date"}) {
      bool const answers = row.answering == (phrase == "data" ? "string" : phrase);
      std::string const expected =
          phrase == "cstring" ? row.cstring : (answers ? row.answer : kNone);
      EXPECT_EQ(Convert(phrase, "osxvalue", &value), expected) << phrase;
      EXPECT_EQ(Convert(phrase, "dictionary", &dictionary, &name), expected) << phrase;
      if (phrase == "data" || phrase == "cstring") continue;
      EXPECT_EQ(Convert(phrase, "array", &array, &index), expected) << phrase;
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
    EXPECT_EQ(Convert("date", "osxvalue", &value), answer) << seconds;
  }
}

TEST(PropertyList, FindsValuesByIndexInsideTheArrayOnly) {
  OwnedObject const two = List("<array><string>a</string><string>b</string></array>");
  OwnedObject const none = List("<array/>");
  struct {
    OwnedObject const& array;
    integer index;
    std::string answer;
  } const cases[] = {{two, 1, "b"},
                     {two, 2, kNone},
                     {two, 0x80000000, kNone},
                     {two, 0x100000000, kNone},
                     {none, 0, kNone}};
  for (auto const& row : cases) {
    OSXArray const array(static_cast<CFArrayRef>(row.array.get()));
    EXPECT_EQ(AskText<inspector_string>("string", "array", &array, &row.index), row.answer)
        << row.index;
  }
}

TEST(PropertyList, FindsKeysByTheirExactMacRomanBytes) {
  OwnedObject const object = List("<dict><key>caf\u00e9</key><integer>1</integer></dict>");
  OSXDictionary const dictionary(static_cast<CFDictionaryRef>(object.get()));
  for (auto const& [key, answer] : {std::pair("caf\x8e"s, "1"s),
                                    {"Caf\x8e", kNone},
                                    {"caf\xc3\xa9", kNone},
                                    {"", kNone},
                                    {"caf\x8e\0"s, kNone}}) {
    inspector_string const name = Name(key);
    EXPECT_EQ(AskText<integer>("integer", "dictionary", &dictionary, &name), answer) << key;
  }
}

TEST(PropertyList, IteratesValuesKeysAndEntries) {
  auto const text_of_value = [](OSXValue const& value) { return Shown(string_of_value(value)); };
  auto const text_of_key = [](inspector_string const& key) { return Shown(key); };
  auto const text_of_entry = [](OSXDictionaryEntry const& entry) {
    auto const value = Ask<OSXValue>("value", "dictionaryentry", &entry);
    return Shown(Ask<inspector_string>("key", "dictionaryentry", &entry)) + "=" +
           Shown(string_of_value(value));
  };
  OwnedObject const lists = List(
      "<array><array><string>b</string><string>a</string></array><array/>"
      "<dict><key>k</key><string>1</string><key>\u2603</key><string>2</string></dict><dict/>"
      "</array>");
  auto const at = [&](CFIndex index) {
    return CFArrayGetValueAtIndex(static_cast<CFArrayRef>(lists.get()), index);
  };
  OSXArray const two(static_cast<CFArrayRef>(at(0))), none(static_cast<CFArrayRef>(at(1)));
  OSXDictionary const pairs(static_cast<CFDictionaryRef>(at(2)));
  OSXDictionary const empty(static_cast<CFDictionaryRef>(at(3)));
  EXPECT_THAT(All(OSXArrayIterator(), text_of_value, two), ElementsAre("b", "a"));
  EXPECT_THAT(All(OSXArrayIterator(), text_of_value, none), ElementsAre());
  EXPECT_THAT(All(OSXDictionaryKeyIterator(), text_of_key, pairs),
              testing::UnorderedElementsAre("k", "?"));
  EXPECT_THAT(All(OSXDictionaryEntryIterator(), text_of_entry, pairs),
              testing::UnorderedElementsAre("k=1", "?=2"));
  EXPECT_THAT(All(OSXDictionaryKeyIterator(), text_of_key, empty), ElementsAre());
  EXPECT_THAT(All(OSXDictionaryEntryIterator(), text_of_entry, empty), ElementsAre());
  EXPECT_EQ(Ask<integer>("size", "array", &two), 2);
  EXPECT_EQ(Ask<integer>("size", "dictionary", &pairs), 2);
  EXPECT_EQ(size_of_dictionary(empty), 0);
}

TEST(PropertyList, FindsListsInLists) {
  OwnedObject const object = List(
      "<array><array><true/></array><dict><key>k</key><dict/><key>l</key><array/></dict></array>");
  OSXArray const array(static_cast<CFArrayRef>(object.get()));
  integer const first = 0, second = 1;
  std::string const k = "k", l = "l";
  inspector_string const name_of_dictionary = Name(k), name_of_array = Name(l);
  // Of an array in a list one reference is kept for ever on purpose; here it is given back.
  auto const size_and_release = [](OSXArray const& found) {
    CFRelease(found.Array());
    return size_of_array(found);
  };
  EXPECT_EQ(size_and_release(Ask<OSXArray>("array", "array", &array, &first)), 1);
  auto const inner = Ask<OSXDictionary>("dictionary", "array", &array, &second);
  EXPECT_EQ(size_of_dictionary(inner), 2);
  EXPECT_EQ(size_of_dictionary(
                Ask<OSXDictionary>("dictionary", "dictionary", &inner, &name_of_dictionary)),
            0);
  EXPECT_EQ(size_and_release(Ask<OSXArray>("array", "dictionary", &inner, &name_of_array)), 0);
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
