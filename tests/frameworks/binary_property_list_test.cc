#include "frameworks/CoreFoundation/binary_property_list.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>
#include <vector>

#include "tests/frameworks/property_list_print.h"

namespace {

using namespace std::string_literals;

std::string BigEndian(unsigned long long value, int width) {
  std::string bytes;
  while (width-- > 0) bytes += static_cast<char>(value >> 8 * width);
  return bytes;
}

// A file of the objects as they are encoded, references of one byte; the first is the root.
std::string File(std::vector<std::string> const& objects) {
  std::string bytes = "bplist00", offsets;
  for (std::string const& object : objects) {
    offsets += BigEndian(bytes.size(), 2);
    bytes += object;
  }
  std::string const table = BigEndian(bytes.size(), 8);
  return bytes + offsets + "\0\0\0\0\0\0\2\1"s + BigEndian(objects.size(), 8) + BigEndian(0, 8) +
         table;
}

OwnedObject Read(std::string_view bytes, PropertyListError& error) {
  return OwnedObject(ReadBinaryPropertyList(
      {reinterpret_cast<unsigned char const*>(bytes.data()), bytes.size()}, error));
}

// What a file holds, printed, or the position and the reason for which it is refused.
std::string Result(std::string_view bytes) {
  PropertyListError error;
  OwnedObject const root = Read(bytes, error);
  if (root == nullptr) return "! " + std::to_string(error.position) + ' ' + error.message;
  return root.get() == kCFNull ? "null" : Print(root.get());
}

TEST(BinaryPropertyList, ReadsEveryKindOfObject) {
  struct {
    std::string object, expected;
  } const rows[] = {
      {"\x00"s, "null"},
      {"\x08", "false"},
      {"\x09", "true"},
      {"\x10\xFF", "255"},
      {"\x11\xFF\xFE", "65534"},
      {"\x12\xFF\xFF\xFF\xFE", "4294967294"},
      {"\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFE", "-2"},
      {"\x13\x80\0\0\0\0\0\0\0"s, "-9223372036854775808"},
      {"\x14" + std::string(8, '\0') + std::string(8, '\xFF'), "18446744073709551615"},
      {"\x14" + std::string(16, '\xFF'), "-1"},
      {"\x22\x3F\xC0\0\0"s, "r3ff8000000000000"},
      {"\x23\xBF\xF8\0\0\0\0\0\0"s, "rbff8000000000000"},
      {"\x33\xC1\x20\0\0\0\0\0\0"s, "@-524288"},
      {"\x40", "<>"},
      {"\x42\0\xFF"s, "<00ff>"},
      {"\x50", "\"\""},
      {"\x53"
       "abc",
       "\"abc\""},
      {"\x5F\x10\x02hi", "\"hi\""},
      {"\x5F\x13\0\0\0\0\0\0\0\x02hi"s, "\"hi\""},
      {"\x62\0\x41\0\xE9"s, "\"A\\u00e9\""},
      {"\x61\0z"s, "\"z\""},
      {"\x62\xD8\x3D\xDE\0"s, "\"\\ud83d\\ude00\""},
      {"\x80\x07", "{\"CF$UID\":7}"},
      {"\xA0", "[]"},
      {"\xD0", "{}"},
  };
  for (auto const& row : rows) EXPECT_EQ(Result(File({row.object})), row.expected);
  // A string is the same object however its file has it.
  EXPECT_EQ(Result(File({"\xD2\1\2\3\4",
                         "\x51"
                         "a",
                         "\x61\0a"s, "\x08", "\x09"})),
            "{\"a\":true}");
  EXPECT_EQ(Result(File({"\xA3\1\2\1", "\xD1\3\4", "\xA1\3", "\x51k", "\x10\5"})),
            R"([{"k":5},["k"],{"k":5}])");
}

TEST(BinaryPropertyList, RefusesWhatIsDamagedAndTellsWhere) {
  std::string const good = File({"\xA1\1", "\x09"});
  auto const with = [&](std::size_t from_end, std::string_view bytes) {
    std::string text = good;
    return text.replace(text.size() - from_end, bytes.size(), bytes);
  };
  struct {
    std::string file, expected;
  } const rows[] = {
      {"", "! 0 not a binary property list"},
      {"bplist15" + good.substr(8), "! 6 a version of the binary form that is not known"},
      {"bplist00", "! 8 cut off before its trailer"},
      {good + '\n', "! 23 a width of references that is not 1 to 8"},
      {good.substr(0, 10) + good.substr(9), "! 24 a number of objects that does not fit"},
      {with(26, "\0"s), "! 21 a width of offsets that is not 1 to 8"},
      {with(26, "\x09"), "! 21 a width of offsets that is not 1 to 8"},
      {with(25, "\0"s), "! 22 a width of references"},
      {with(24, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"), "! 23 a number of objects that does not fit"},
      {with(24, "\x80\0\0\0\0\0\0\x02"s), "! 23 a number of objects that does not fit"},
      {with(24, "\0\0\0\0\0\0\0\x03"s), "! 23 a number of objects that does not fit"},
      {with(16, "\0\0\0\0\0\0\0\x02"s), "! 31 a root that does not exist"},
      {with(8, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"), "! 39 a table of offsets"},
      {with(36, "\0\x07"s), "! 11 an offset that lies outside"},
      {with(34, "\0\x0B"s), "! 13 an offset that lies outside"},
      {File({"\xA1\x02", "\x09"}), "! 11 a reference to an object that does not exist"},
      {File({"\xA1\0"s}), "! 10 a container that holds itself"},
      {File({"\xA1\1", "\xD1\2\0"s, "\x51k"}), "! 15 a container that holds itself"},
      {File({"\xD1\1\1", "\x10\1"}), "! 9 a key that is not a string"},
      {File({"\xA9\1", "\x09"}), "! 8 an object that goes on behind the last"},
      {File({"\xAF\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"}), "! 8 an object that goes on behind"},
      {File({"\xDF\x13\x80\0\0\0\0\0\0\0"s}), "! 8 an object that goes on behind"},
      {File({"\x4F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"}), "! 8 an object that goes on behind"},
      {File({"\x5F\x50"}), "! 9 a count that is no integer"},
      {File({"\x5F"}), "! 8 an object that goes on behind the last"},
      {File({"\x62\0A"s}), "! 8 an object that goes on behind the last"},
      {File({"\x52"
             "a\xE9"}),
       "! 8 an ASCII string that is not ASCII"},
      {File({"\x13\1"}), "! 8 an object that goes on behind the last"},
      {File({"\x15" + std::string(32, '\0')}), "! 8 an integer wider than 16 bytes"},
      {File({"\x14\0\0\0\0\0\0\0\1"s + std::string(8, '\0')}), "! 8 an integer outside"},
      {File({"\x21\0\0"s}), "! 8 a real of neither 4 nor 8 bytes"},
      {File({"\x33\x7F\xF8\0\0\0\0\0\0"s}), "! 8 a date that is no time"},
      {File({"\x32\0\0\0\0"s}), "! 8 a date that is not 8 bytes wide"},
      {File({"\x88" + std::string(9, '\0')}), "! 8 a UID wider than 8 bytes"},
      {File({"\xC1\1", "\x09"}), "! 8 a kind of object that property lists do not have"},
      {File({"\x0F"}), "! 8 a kind of object that property lists do not have"},
  };
  for (auto const& row : rows) {
    std::string const result = Result(row.file);
    EXPECT_EQ(result.substr(0, row.expected.size()), row.expected) << result;
  }
}

// Arrays that each hold the next one twice: the last stands for two to the 28 values.
TEST(BinaryPropertyList, SharesWhatTheFileShares) {
  std::vector<std::string> objects;
  for (char i = 1; i <= 28; ++i) objects.push_back({'\xA2', i, i});
  objects.push_back("\x09");
  auto const start = std::chrono::steady_clock::now();
  PropertyListError error;
  OwnedObject const root = Read(File(objects), error);
  ASSERT_NE(root, nullptr) << error.message;
  auto const array = static_cast<CFArrayRef>(root.get());
  EXPECT_EQ(CFArrayGetValueAtIndex(array, 0), CFArrayGetValueAtIndex(array, 1));
  EXPECT_EQ(CFGetRetainCount(CFArrayGetValueAtIndex(array, 0)), 2);
  std::vector<unsigned char> written;
  EXPECT_TRUE(WriteBinaryPropertyList(root.get(), written, error));
  EXPECT_LT(written.size(), 200u);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

// Each object goes on to the end of all, so that together they would take the square of the file.
TEST(BinaryPropertyList, LetsNoObjectsOverlap) {
  std::string bytes = "bplist00\xAF\x11\x03\xE8"s, table = BigEndian(8, 2);
  for (int i = 1; i <= 1000; ++i) bytes += BigEndian(static_cast<unsigned>(i), 2);
  std::size_t const end = bytes.size() + 4000;
  for (int i = 1; i <= 1000; ++i) {
    table += BigEndian(bytes.size(), 2);
    bytes += "\x4F\x11" + BigEndian(end - bytes.size() - 4, 2);
  }
  std::string const trailer = "\0\0\0\0\0\0\2\2"s + BigEndian(1001, 8) + BigEndian(0, 8);
  EXPECT_NE(Result(bytes + table + trailer + BigEndian(bytes.size(), 8)).find("overlap"),
            std::string::npos);
}

// A chain of arrays, read from its end or its beginning, since a part that is read first may lie
// deeper than it seemed.
TEST(BinaryPropertyList, BoundsNestingHoweverItIsReached) {
  for (int const depth : {512, 513, 100'000}) {
    for (bool const ends_first : {false, true}) {
      std::string bytes = "bplist00", table;
      auto const add = [&](std::string const& object) {
        table += BigEndian(bytes.size(), 4);
        bytes += object;
      };
      // The root holds the middle of the chain before the chain itself.
      auto const middle = static_cast<unsigned>(depth / 2);
      add("\xA2" + BigEndian(ends_first ? middle : 1, 4) + BigEndian(1, 4));
      for (int i = 1; i < depth; ++i) {
        bool const is_last = i == depth - 1;
        add(is_last ? "\xA0" : "\xA1" + BigEndian(static_cast<unsigned>(i) + 1, 4));
      }
      std::string const trailer = "\0\0\0\0\0\0\4\4"s + BigEndian(static_cast<unsigned>(depth), 8) +
                                  BigEndian(0, 8) + BigEndian(bytes.size(), 8);
      std::string const result = Result(bytes + table + trailer);
      EXPECT_EQ(result.find("nested too deeply") == std::string::npos, depth == 512)
          << depth << ends_first << result.substr(0, 100);
    }
  }
}

TEST(BinaryPropertyList, ComesBackAsItWasWritten) {
  std::string const text =
      "<plist><dict><key>a</key><array><integer>-1</integer><integer>0</integer>"
      "<integer>255</integer><integer>256</integer><integer>65536</integer>"
      "<integer>4294967296</integer><integer>18446744073709551615</integer><integer>1</integer>"
      "<real>1</real><real>-0.0</real><real>0.0</real><true/><false/></array>"
      "<key>\xC3\xA9\xF0\x9F\x98\x80</key><string>sixteen letters.</string><key>b</key>"
      "<data>AAEC</data><key>c</key><date>1970-01-01T00:00:00Z</date><key>d</key><array>"
      "<string>sixteen letters.</string><dict/><string></string></array></dict></plist>";
  OwnedObject const source = MakeBytes(text);
  OwnedObject const root(
      CFPropertyListCreateFromXMLData(nullptr, static_cast<CFDataRef>(source.get()), 0, nullptr));
  ASSERT_NE(root, nullptr);
  PropertyListError error;
  std::vector<unsigned char> bytes = {'-'};
  ASSERT_TRUE(WriteBinaryPropertyList(root.get(), bytes, error)) << error.message;
  std::string const file(bytes.begin() + 1, bytes.end());
  EXPECT_EQ(Result(file), Print(root.get()));
  // Equal strings are written once.
  EXPECT_EQ(file.find("sixteen"), file.rfind("sixteen"));
}

TEST(BinaryPropertyList, IsNotWrittenOfWhatIsNone) {
  CFMutableArrayRef const circle = CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
  OwnedObject const owner(circle);
  CFArrayAppendValue(circle, circle);
  OwnedObject outer(CFRetain(kCFBooleanTrue));
  for (int i = 0; i < 513; ++i) {
    void const* value = outer.get();
    outer.reset(CFArrayCreate(nullptr, &value, 1, &kCFTypeArrayCallBacks));
  }
  void const* pair[] = {kCFBooleanTrue};
  OwnedObject const keyed(CFDictionaryCreate(nullptr, pair, pair, 1, &kCFTypeDictionaryKeyCallBacks,
                                             &kCFTypeDictionaryValueCallBacks));
  OwnedObject const pointers(CFArrayCreate(nullptr, pair, 1, nullptr));
  for (CFTypeRef const root : {static_cast<CFTypeRef>(circle), outer.get(), keyed.get(),
                               pointers.get(), static_cast<CFTypeRef>(nullptr)}) {
    PropertyListError error;
    std::vector<unsigned char> bytes = {'-'};
    EXPECT_FALSE(WriteBinaryPropertyList(root, bytes, error));
    EXPECT_EQ(bytes.size(), 1u);
    EXPECT_FALSE(error.message.empty());
  }
  CFArrayRemoveAllValues(circle);
}

// The sanitizers watch; what is still read is written and comes back equal.
TEST(BinaryPropertyList, SurvivesRandomDamage) {
  std::string const good =
      File({"\xD3\1\2\3\4\5\6",
            "\x51"
            "a",
            "\x62\0b\0\xE9"s, "\x5F\x10\x03key", "\xA6\7\x08\x09\x0A\x0B\5",
            "\x13\xFF\0\0\0\0\0\0\0"s, "\x80\5", "\x23\x40\0\0\0\0\0\0\0"s,
            "\x33\x41\0\0\0\0\0\0\0"s, "\x43xyz", "\xD1\1\x0B", "\x14" + std::string(16, '\0')});
  std::mt19937 random(1);
  int read = 0, refused = 0;
  for (int round = 0; round < 40'000; ++round) {
    std::string bytes = good;
    for (std::size_t edits = 1 + random() % 3; edits > 0; --edits) {
      std::size_t const at = random() % bytes.size();
      char const others[] = {static_cast<char>(random()),
                             static_cast<char>(bytes[at] ^ 1 << random() % 8)};
      if (random() % 20 == 0)
        bytes.erase(at, random() % 4);
      else
        bytes[at] = others[random() % 2];
    }
    PropertyListError error;
    OwnedObject const root = Read(bytes, error);
    if (root == nullptr) {
      ++refused;
      ASSERT_LE(error.position, bytes.size());
      ASSERT_FALSE(error.message.empty());
      continue;
    }
    ++read;
    std::vector<unsigned char> written;
    ASSERT_TRUE(WriteBinaryPropertyList(root.get(), written, error)) << error.message;
    OwnedObject const again(ReadBinaryPropertyList(written, error));
    ASSERT_NE(again, nullptr) << error.message;
    ASSERT_TRUE(CFEqual(root.get(), again.get()));
  }
  EXPECT_GT(read, 1000);
  EXPECT_GT(refused, 1000);
}

}  // namespace
