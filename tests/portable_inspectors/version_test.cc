// The order of versions, and their texts and numbers.
#include <gmock/gmock.h>

#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "evaluator/plugin/exceptions.h"
#include "portable_inspectors/version_text.h"

namespace {

using MacintoshPlatform::Compare;
using MacintoshPlatform::inspector_version;

constexpr char kLadder[] =
    "0 = 0.0 = 00 = v0 < 0.0.1 < 1~~ < 1~ = 1.0~ < 1.0d3 = 1d3 "
    "< 1.0a1 = 1.0.0alpha1 = 1.0-alpha.1 < 1.0a2 < 1.0b1 = 1-beta1 = 1.0~beta1 = 1.0.pre1 "
    "< 1.0rc2 = 1.0-rc.2 = 1.0.0fc2 < 1 = 1.0 = 1.0.0.0 = 01.0 = v1 = V1.0 = 1-0 = 1. "
    "< 1-1 = 1.0-1 < 1.0.0.0.5 < 1.0.1 < 1.1.1~rc1 < 1.1.1 < 1.1.1-3.el8 "
    "< 1.1.1-553.el8 = 1.1.1-553.EL8 < 1.1.1-553.el9 < 1.1.1a < 1.1.1w < 1.1.2 < 1.9 < 1.10 "
    "< 4.18.0-553.el8 < 20A361 < 20B28 < 20D64 < 65536 < 18446744073709551616 "
    "< 99999999999999999999999999999999999999 < 1:0.1 < 1:2.3-1 = 01:2.3-1 < 12:0";

TEST(VersionOrder, IsTotalAndAgreesWithEquality) {
  std::vector<std::pair<int, std::string>> versions;
  int rung = 0;
  std::istringstream ladder(kLadder);
  for (std::string word; ladder >> word;) {
    if (word == "<") ++rung;
    if (word != "<" && word != "=") versions.emplace_back(rung, word);
  }
  for (auto const& [rung_of_left, left] : versions) {
    ASSERT_TRUE(IsVersionText(left)) << left;
    for (auto const& [rung_of_right, right] : versions) {
      EXPECT_EQ(CompareVersionTexts(left, right),
                std::weak_ordering(rung_of_left <=> rung_of_right))
          << left << " against " << right;
    }
  }
}

// Random texts of everything the order looks at: transitive, and antisymmetric.
TEST(VersionOrder, IsTransitiveOnAnyTexts) {
  constexpr char const* kPieces[] = {"0", "1", "10", ".",  "-", "~", "+",
                                     "a", "b", "rc", "el", "d", "00"};
  std::mt19937 random(1);
  std::vector<std::string> texts(90, "1");
  for (std::string& text : texts) {
    for (auto n = random() % 7; n > 0; --n) text += kPieces[random() % std::size(kPieces)];
  }
  for (auto const& a : texts) {
    for (auto const& b : texts) {
      auto const ab = CompareVersionTexts(a, b);
      ASSERT_EQ(ab, 0 <=> CompareVersionTexts(b, a)) << a << ' ' << b;
      for (auto const& c : texts) {
        if (ab <= 0 && CompareVersionTexts(b, c) <= 0) {
          ASSERT_TRUE(CompareVersionTexts(a, c) <= 0) << a << ' ' << b << ' ' << c;
        }
      }
    }
  }
}

TEST(VersionOrder, RefusesWhatIsNoVersion) {
  for (char const* text : {"", "v", "a1", ".1", "-1", "1:", ":1", "1:2:3", "1 2", "1,2", "1/2",
                           "None", "\xC3\xA9", "1\xFF", "1:v2"}) {
    EXPECT_FALSE(IsVersionText(text)) << text;
  }
}

inspector_version Read(std::string const& text) {
  return MacintoshPlatform::TextToVersion(ConstData(text));
}

TEST(VersionText, FillsTheNumbers) {
  std::pair<char const*, std::vector<int>> const rows[] = {
      {"10.2", {10, 2, 0, 0x80, 0}},       {"10.2.8d7", {10, 2, 8, 0x20, 7}},
      {"1.0-alpha.2", {1, 0, 0, 0x40, 2}}, {"1.0.0.0b65536", {1, 0, 0, 0x60, 65535}},
      {"65536.1", {65535, 1, 0, 0x80, 0}}, {"3:4.18.0-553.el8", {4, 18, 0, 0x80, 0}},
      {"5.el8.9b1", {5, 0, 0, 0x60, 1}}};
  for (auto const& [text, numbers] : rows) {
    inspector_version const read = Read(text);
    EXPECT_THAT(numbers, testing::ElementsAre(read.major, read.minor, read.bug_fix, read.stage,
                                              read.non_release_revision))
        << text;
    EXPECT_EQ(MacintoshPlatform::AsString(read), text);
  }
}

TEST(VersionText, ShowsNumbersSoThatTheyAreReadBackEqual) {
  std::pair<inspector_version, char const*> const rows[] = {
      {{10, 2, 0, 0x80, 0}, "10.2"},
      {{10, 2, 1, 0, 0}, "10.2.1"},
      {{1, 0, 0, 0x20, 3}, "1.0d3"},
      {{1, 0, 1, 0x40, 0}, "1.0.1a0"},
      {{1, 0, 0, 0x60, 12}, "1.0b12"},
      {{1, 0, 0, 0x80, 5}, "1.0-5"},
      {{65535, 65535, 65535, 0x60, 65535}, "65535.65535.65535b65535"}};
  for (auto const& [version, text] : rows) {
    EXPECT_EQ(MacintoshPlatform::AsString(version), text);
    EXPECT_TRUE(Compare(version, Read(text)) == 0) << text;
  }
  // A stage that was cleared compares as the release.
  EXPECT_TRUE(Compare({1, 2, 3, 0, 0}, {1, 2, 3, 0x80, 0}) == 0);
  EXPECT_TRUE(Compare({1, 2, 3, 0x60, 9}, {1, 2, 3, 0, 0}) < 0);
}

TEST(VersionText, HoldsUpTo48Bytes) {
  EXPECT_EQ(MacintoshPlatform::AsString(Read(std::string(48, '1'))), std::string(48, '1'));
  EXPECT_THROW(Read(std::string(49, '1')), NoSuchObject);
  EXPECT_THROW(Read(std::string(1 << 20, '1')), NoSuchObject);
  EXPECT_THROW(Read(" \t"), NoSuchObject);
  EXPECT_THROW(MacintoshPlatform::TextToVersion(ConstData()), NoSuchObject);
}

}  // namespace
