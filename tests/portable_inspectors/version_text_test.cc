#include "portable_inspectors/version_text.h"

#include <gtest/gtest.h>

#include <string>

#include "evaluator/plugin/exceptions.h"

namespace MacintoshPlatform {
namespace {

inspector_version Read(std::string const& text) { return TextToVersion(ConstData(text)); }

TEST(VersionText, FillsTheNumbers) {
  struct {
    char const* text;
    int major, minor, bug_fix, stage, revision;
  } const rows[] = {
      {"10.2", 10, 2, 0, 0x80, 0},       {"10.2.8d7", 10, 2, 8, 0x20, 7},
      {"1.0-alpha.2", 1, 0, 0, 0x40, 2}, {"1.0.0.0b65536", 1, 0, 0, 0x60, 65535},
      {"65536.1", 65535, 1, 0, 0x80, 0}, {"3:4.18.0-553.el8", 4, 18, 0, 0x80, 0},
      {"5.el8.9b1", 5, 0, 0, 0x60, 1},
  };
  for (auto const& row : rows) {
    inspector_version const version = Read(row.text);
    EXPECT_EQ(version.major, row.major) << row.text;
    EXPECT_EQ(version.minor, row.minor) << row.text;
    EXPECT_EQ(version.bug_fix, row.bug_fix) << row.text;
    EXPECT_EQ(version.stage, row.stage) << row.text;
    EXPECT_EQ(version.non_release_revision, row.revision) << row.text;
    EXPECT_EQ(AsString(version), row.text);
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
      {{65535, 65535, 65535, 0x60, 65535}, "65535.65535.65535b65535"},
  };
  for (auto const& [version, text] : rows) {
    EXPECT_EQ(AsString(version), text);
    EXPECT_TRUE(Compare(version, Read(text)) == 0) << text;
  }
  // A stage that was cleared compares as the release.
  EXPECT_TRUE(Compare({1, 2, 3, 0, 0}, {1, 2, 3, 0x80, 0}) == 0);
  EXPECT_TRUE(Compare({1, 2, 3, 0x60, 9}, {1, 2, 3, 0, 0}) < 0);
}

TEST(VersionText, HoldsUpTo48Bytes) {
  EXPECT_EQ(AsString(Read(std::string(48, '1'))), std::string(48, '1'));
  EXPECT_THROW(Read(std::string(49, '1')), NoSuchObject);
  EXPECT_THROW(Read(std::string(1 << 20, '1')), NoSuchObject);
  EXPECT_THROW(Read(" \t"), NoSuchObject);
  EXPECT_THROW(TextToVersion(ConstData()), NoSuchObject);
}

}  // namespace
}  // namespace MacintoshPlatform
