#include "frameworks/CoreFoundation/binary_property_list.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "tests/frameworks/property_list_print.h"
#include "tests/support/binary_list_text.h"

namespace {

using namespace std::string_literals;

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
  std::pair<std::string, std::string> const rows[] = {
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
      {"\x53xyz", "\"xyz\""},
      {"\x5F\x10\x02hi", "\"hi\""},
      {"\x5F\x13\0\0\0\0\0\0\0\x02hi"s, "\"hi\""},
      {"\x62\0\x41\0\xE9"s, "\"A\\u00e9\""},
      {"\x61\0z"s, "\"z\""},
      {"\x62\xD8\x3D\xDE\0"s, "\"\\ud83d\\ude00\""},
      {"\x80\x07", "{\"CF$UID\":7}"},
      {"\xA0", "[]"},
      {"\xD0", "{}"},
  };
  for (auto const& [object, expected] : rows) EXPECT_EQ(Result(BinaryListText({object})), expected);
  // A string is the same object however its file has it.
  EXPECT_EQ(Result(BinaryListText({"\xD2\1\2\3\4", "\x51k", "\x61\0k"s, "\x08", "\x09"})),
            "{\"k\":true}");
  EXPECT_EQ(Result(BinaryListText({"\xA3\1\2\1", "\xD1\3\4", "\xA1\3", "\x51k", "\x10\5"})),
            R"([{"k":5},["k"],{"k":5}])");
}

TEST(BinaryPropertyList, RefusesWhatIsDamagedAndTellsWhere) {
  std::string const good = BinaryListText({"\xA1\1", "\x09"});
  auto const with = [&](std::size_t from_end, std::string_view bytes) {
    std::string text = good;
    return text.replace(text.size() - from_end, bytes.size(), bytes);
  };
  std::string const behind = "! 8 an object that goes on behind the last";
  for (std::string const& object :
       {"\xA9\1"s, "\xAF\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s, "\xDF\x13\x80\0\0\0\0\0\0\0"s,
        "\x4F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s, "\x5F"s, "\x62\0A"s, "\x13\1"s}) {
    EXPECT_EQ(Result(BinaryListText({object})).substr(0, behind.size()), behind) << object;
  }
  std::pair<std::string, std::string> const rows[] = {
      {"", "! 0 not a binary property list"},
      {"bplist15" + good.substr(8), "! 6 a version of the binary form that is not known"},
      {"bplist00", "! 8 cut off before its trailer"},
      {good + '\n', "! 23 a width of references that is not 1 to 8"},
      {good.substr(0, 10) + good.substr(9), "! 24 a number of objects that does not fit"},
      {with(26, "\0"s), "! 21 a width of offsets that is not 1 to 8"},
      {with(26, "\x09"), "! 21 a width of offsets that is not 1 to 8"},
      {with(25, "\0"s), "! 22 a width of references"},
      {with(24, "\x80\0\0\0\0\0\0\x02"s), "! 23 a number of objects that does not fit"},
      {with(24, "\0\0\0\0\0\0\0\x03"s), "! 23 a number of objects that does not fit"},
      {with(16, "\0\0\0\0\0\0\0\x02"s), "! 31 a root that does not exist"},
      {with(8, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"), "! 39 a table of offsets"},
      {with(36, "\0\x07"s), "! 11 an offset that lies outside"},
      {with(34, "\0\x0B"s), "! 13 an offset that lies outside"},
      {BinaryListText({"\xA1\x02", "\x09"}), "! 11 a reference to an object that does not exist"},
      {BinaryListText({"\xA1\0"s}), "! 10 a container that holds itself"},
      {BinaryListText({"\xA1\1", "\xD1\2\0"s, "\x51k"}), "! 15 a container that holds itself"},
      {BinaryListText({"\xD1\1\1", "\x10\1"}), "! 9 a key that is not a string"},
      {BinaryListText({"\x5F\x50"}), "! 9 a count that is no integer"},
      {BinaryListText({"\x52k\xE9"}), "! 8 an ASCII string that is not ASCII"},
      {BinaryListText({"\x15" + std::string(32, '\0')}), "! 8 an integer wider than 16 bytes"},
      {BinaryListText({"\x14\0\0\0\0\0\0\0\1"s + std::string(8, '\0')}), "! 8 an integer outside"},
      {BinaryListText({"\x21\0\0"s}), "! 8 a real of neither 4 nor 8 bytes"},
      {BinaryListText({"\x33\x7F\xF8\0\0\0\0\0\0"s}), "! 8 a date that is no time"},
      {BinaryListText({"\x32\0\0\0\0"s}), "! 8 a date that is not 8 bytes wide"},
      {BinaryListText({"\x88" + std::string(9, '\0')}), "! 8 a UID wider than 8 bytes"},
      {BinaryListText({"\xC1\1", "\x09"}), "! 8 a kind of object that property lists do not have"},
      {BinaryListText({"\x0F"}), "! 8 a kind of object that property lists do not have"},
  };
  for (auto const& [file, expected] : rows) {
    std::string const result = Result(file);
    EXPECT_EQ(result.substr(0, expected.size()), expected) << result;
  }
}

// Arrays that each hold the next one twice: the last stands for two to the 28 values.
TEST(BinaryPropertyList, SharesWhatTheFileShares) {
  auto const start = std::chrono::steady_clock::now();
  PropertyListError error;
  OwnedObject const root = Read(SharedArraysText(28), error);
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
  std::vector<std::string> objects = {"\xAF\x11\x03\xE8"};
  for (unsigned i = 1; i <= 1000; ++i) objects[0] += BigEndianText(i, 2);
  for (unsigned left = 1000; left-- > 0;)
    objects.push_back("\x4F\x11" + BigEndianText(4 * left, 2));
  EXPECT_NE(Result(BinaryListText(objects, 2)).find("overlap"), std::string::npos);
}

// A chain of arrays, read from its end or its beginning, since a part that is read first may lie
// deeper than it seemed.
TEST(BinaryPropertyList, BoundsNestingHoweverItIsReached) {
  for (int const depth : {512, 513, 100'000}) {
    for (bool const ends_first : {false, true}) {
      // The root holds the middle of the chain before the chain itself.
      auto const middle = static_cast<unsigned>(depth / 2);
      std::vector<std::string> objects = {"\xA2" + BigEndianText(ends_first ? middle : 1, 4) +
                                          BigEndianText(1, 4)};
      for (unsigned i = 2; objects.size() + 1 < static_cast<std::size_t>(depth); ++i) {
        objects.push_back("\xA1" + BigEndianText(i, 4));
      }
      objects.emplace_back("\xA0");
      std::string const result = Result(BinaryListText(objects, 4, 4));
      EXPECT_EQ(result.find("nested too deeply") == std::string::npos, depth == 512)
          << depth << ends_first << result.substr(0, 100);
    }
  }
}

TEST(BinaryPropertyList, HasEachStringOnceBehindWhatWasThere) {
  OwnedObject const root = Parsed(
      "{ \"\xC3\xA9\xF0\x9F\x98\x80\" = \"sixteen letters.\"; d = (\"sixteen letters.\"); }");
  PropertyListError error;
  std::vector<unsigned char> bytes = {'-'};
  ASSERT_TRUE(WriteBinaryPropertyList(root.get(), bytes, error)) << error.message;
  std::string const file(bytes.begin() + 1, bytes.end());
  EXPECT_EQ(Result(file), Print(root.get()));
  EXPECT_EQ(file.find("sixteen"), file.rfind("sixteen"));
}

}  // namespace
