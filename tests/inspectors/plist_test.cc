// Property lists, asked through what the inspectors register.
#include <CoreFoundation/CFPropertyList.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "evaluator/plugin/exceptions.h"
#include "inspectors/plist/osx_dictionary_entry.h"
#include "inspectors/plist/osx_value.h"
#include "tests/support/recording_evaluator.h"

namespace {

using namespace std::string_literals;
using testing::ElementsAre;

class Owned {
 public:
  explicit Owned(CFTypeRef object) : object_(object) {}
  Owned(Owned const&) = delete;
  Owned& operator=(Owned const&) = delete;
  ~Owned() { CFRelease(object_); }
  CFTypeRef Get() const { return object_; }
  OSXValue Value() const { return OSXValue(object_); }
  CFIndex Count() const { return CFGetRetainCount(object_); }

 private:
  CFTypeRef object_;
};

CFTypeRef Parsed(std::string const& xml) {
  Owned const data(CFDataCreate(nullptr, reinterpret_cast<UInt8 const*>(xml.data()),
                                static_cast<CFIndex>(xml.size())));
  CFTypeRef const object = CFPropertyListCreateFromXMLData(
      nullptr, static_cast<CFDataRef>(data.Get()), kCFPropertyListImmutable, nullptr);
  if (object == nullptr) throw std::runtime_error("no property list: " + xml);
  return object;
}

std::string List(std::string const& value) { return "<plist>" + value + "</plist>"; }

std::string Shown(inspector_string const& text) {
  return {reinterpret_cast<char const*>(text.start), text.length};
}
std::string Shown(integer number) { return std::to_string(number); }
std::string Shown(boolean truth) { return truth ? "true" : "false"; }
std::string Shown(moment time) { return std::to_string(time.MicrosecondsSince1970()); }

std::string const kNone = "no such object";

// What a registered property gives, by its phrase and the type it is asked of.
template <class Result>
std::string Ask(std::string const& phrase, std::string const& type, void const* object,
                void const* parameter = nullptr) {
  auto const* const found = RecordingEvaluator::Instance().Find("Property", phrase, type);
  if (found == nullptr) return "not registered";
  try {
    return Shown(found->Get<Result>(parameter, object));
  } catch (NoSuchObject const&) {
    return kNone;
  }
}

// One conversion, whichever way the value is reached.
std::string Convert(std::string const& phrase, std::string const& type, void const* object,
                    void const* parameter = nullptr) {
  if (phrase == "boolean") return Ask<boolean>(phrase, type, object, parameter);
  if (phrase == "integer") return Ask<integer>(phrase, type, object, parameter);
  if (phrase == "date") return Ask<moment>(phrase, type, object, parameter);
  return Ask<inspector_string>(phrase, type, object, parameter);
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
    Owned const array_object(Parsed(List("<array>" + row.xml + "</array>")));
    Owned const dictionary_object(Parsed(List("<dict><key>k</key>" + row.xml + "</dict>")));
    OSXArray const array(static_cast<CFArrayRef>(array_object.Get()));
    OSXDictionary const dictionary(static_cast<CFDictionaryRef>(dictionary_object.Get()));
    OSXValue const value(CFArrayGetValueAtIndex(array.Array(), 0));
    integer const index = 0;
    inspector_string const name{reinterpret_cast<unsigned char const*>("k"), 1};

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
  }
}

TEST(PropertyList, HasNoTimeForDatesBeyondAllTimes) {
  struct {
    double seconds;
    std::string answer;
  } const cases[] = {{1e300, kNone},
                     {-1e300, kNone},
                     {__builtin_nan(""), kNone},
                     {9.3e12, kNone},
                     {0.0000015, "978307200000002"},
                     {-0.25, "978307199750000"}};
  for (auto const& row : cases) {
    Owned const date(CFDateCreate(nullptr, row.seconds));
    OSXValue const value = date.Value();
    EXPECT_EQ(Convert("date", "osxvalue", &value), row.answer) << row.seconds;
  }
}

TEST(PropertyList, FindsValuesByIndexInsideTheArrayOnly) {
  Owned const two(Parsed(List("<array><string>a</string><string>b</string></array>")));
  Owned const none(Parsed(List("<array/>")));
  struct {
    Owned const& array;
    integer index;
    std::string answer;
  } const cases[] = {{two, 0, "a"},
                     {two, 1, "b"},
                     {two, 2, kNone},
                     {two, 0x7FFFFFFF, kNone},
                     {two, 0x80000000, kNone},
                     {two, 0x100000000, kNone},
                     {none, 0, kNone}};
  for (auto const& row : cases) {
    OSXArray const array(static_cast<CFArrayRef>(row.array.Get()));
    EXPECT_EQ(Ask<inspector_string>("string", "array", &array, &row.index), row.answer)
        << row.index;
  }
}

TEST(PropertyList, FindsKeysByTheirExactMacRomanBytes) {
  Owned const object(Parsed(List("<dict><key>caf\u00e9</key><integer>1</integer></dict>")));
  OSXDictionary const dictionary(static_cast<CFDictionaryRef>(object.Get()));
  for (auto const& [key, answer] : {std::pair("caf\x8e"s, "1"s),
                                    {"Caf\x8e", kNone},
                                    {"caf\xc3\xa9", kNone},
                                    {"", kNone},
                                    {"caf\x8e\0"s, kNone}}) {
    inspector_string const name{reinterpret_cast<unsigned char const*>(key.data()), key.size()};
    EXPECT_EQ(Ask<integer>("integer", "dictionary", &dictionary, &name), answer) << key;
  }
}

template <class Iterator, class Container>
std::vector<std::string> All(
    Container const& container,
    std::function<std::string(decltype(Iterator().Next(container)) const&)> const& shown) {
  std::vector<std::string> all;
  Iterator iterator;
  try {
    for (all.push_back(shown(iterator.First(container)));;) {
      all.push_back(shown(iterator.Next(container)));
    }
  } catch (NoSuchObject const&) {
    return all;
  }
}

TEST(PropertyList, IteratesValuesKeysAndEntries) {
  auto const text_of_value = [](OSXValue const& value) { return Shown(string_of_value(value)); };
  auto const text_of_key = [](inspector_string const& key) { return Shown(key); };
  auto const text_of_entry = [](OSXDictionaryEntry const& entry) {
    return Shown(key_of_entry(entry)) + "=" + Shown(string_of_value(value_of_entry(entry)));
  };
  Owned const lists(Parsed(
      List("<array><array><string>b</string><string>a</string></array><array/>"
           "<dict><key>k</key><string>1</string><key>\u2603</key><string>2</string></dict><dict/>"
           "</array>")));
  auto const at = [&](CFIndex index) {
    return CFArrayGetValueAtIndex(static_cast<CFArrayRef>(lists.Get()), index);
  };
  OSXArray const two(static_cast<CFArrayRef>(at(0))), none(static_cast<CFArrayRef>(at(1)));
  OSXDictionary const pairs(static_cast<CFDictionaryRef>(at(2)));
  OSXDictionary const empty(static_cast<CFDictionaryRef>(at(3)));
  EXPECT_THAT(All<OSXArrayIterator>(two, text_of_value), ElementsAre("b", "a"));
  EXPECT_THAT(All<OSXArrayIterator>(none, text_of_value), ElementsAre());
  EXPECT_THAT(All<OSXDictionaryKeyIterator>(pairs, text_of_key),
              testing::UnorderedElementsAre("k", "?"));
  EXPECT_THAT(All<OSXDictionaryEntryIterator>(pairs, text_of_entry),
              testing::UnorderedElementsAre("k=1", "?=2"));
  EXPECT_THAT(All<OSXDictionaryKeyIterator>(empty, text_of_key), ElementsAre());
  EXPECT_THAT(All<OSXDictionaryEntryIterator>(empty, text_of_entry), ElementsAre());
  EXPECT_EQ(size_of_array(two), 2);
  EXPECT_EQ(size_of_dictionary(pairs), 2);
  EXPECT_EQ(size_of_dictionary(empty), 0);
}

TEST(PropertyList, HasNoTextForAKeyThatIsNoString) {
  void const* key = kCFBooleanTrue;
  Owned const object(CFDictionaryCreate(nullptr, &key, &key, 1, &kCFTypeDictionaryKeyCallBacks,
                                        &kCFTypeDictionaryValueCallBacks));
  OSXDictionary const dictionary(static_cast<CFDictionaryRef>(object.Get()));
  EXPECT_THROW(OSXDictionaryKeyIterator().First(dictionary), NoSuchObject);
  OSXDictionaryEntry const entry = OSXDictionaryEntryIterator().First(dictionary);
  EXPECT_THROW(key_of_entry(entry), NoSuchObject);
  EXPECT_TRUE(boolean_of_value(value_of_entry(entry)));
}

TEST(PropertyList, KeepsReferences) {
  Owned const array(Parsed(List("<array><true/></array>")));
  Owned const dictionary(Parsed(List("<dict/>")));
  {
    OSXArray const held(static_cast<CFArrayRef>(array.Get()));
    OSXArray copy(held);
    EXPECT_EQ(array.Count(), 3);
    copy = OSXArray(copy);
    EXPECT_EQ(array.Count(), 3);
    OSXDictionary const other = dictionary_of_value(dictionary.Value());
    EXPECT_EQ(dictionary.Count(), 2);
  }
  EXPECT_EQ(array.Count(), 1);
  EXPECT_EQ(dictionary.Count(), 1);
  { OSXArray const leaking = array_of_value(array.Value()); }
  EXPECT_EQ(array.Count(), 2) << "the array outlives what it came from";
  CFRelease(array.Get());
}

TEST(PropertyList, CopiesOfAValueFormARing) {
  Owned const object(Parsed(List("<dict/>")));
  OSXValue first = object.Value();
  EXPECT_EQ(first.Copies().Next(), &first.Copies());
  {
    OSXValue const second(first);
    OSXValue third(first);
    EXPECT_EQ(first.Copies().Next(), &third.Copies());
    EXPECT_EQ(third.Copies().Next(), &second.Copies());
    EXPECT_EQ(second.Copies().Next(), &first.Copies());
    third = object.Value();
    EXPECT_EQ(third.Copies().Next(), &third.Copies());
    third = second;
    EXPECT_EQ(second.Copies().Next(), &third.Copies());
    EXPECT_EQ(first.Copies().Previous(), &third.Copies());
  }
  EXPECT_EQ(first.Copies().Next(), &first.Copies());
  EXPECT_EQ(first.Copies().Previous(), &first.Copies());
  EXPECT_EQ(object.Count(), 1);
}

}  // namespace
