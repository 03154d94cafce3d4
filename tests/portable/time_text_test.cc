#include "portable/time_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

std::string Written(std::int64_t microseconds, std::int32_t offset) {
  auto const text = TimeToText(Instant{microseconds}, offset);
  return text ? MakeString(*text) : "none";
}

std::string Read(char const* text) {
  auto const time = TextToTime(ConstData(text));
  return time ? std::to_string(time->microseconds) : "none";
}

constexpr std::int64_t kSecond = 1'000'000;
constexpr std::int64_t kFirst = -62135596800 * kSecond;  // 0001-01-01T00:00:00Z
constexpr std::int64_t kLast = 253402300800 * kSecond - 1;

TEST(TimeText, IsInverseToReading) {
  struct {
    std::int64_t microseconds;
    std::int32_t offset;
    char const* text;
  } const rows[] = {
      {0, 0, "1970-01-01T00:00:00.000000+00:00"},
      {-1, 0, "1969-12-31T23:59:59.999999+00:00"},
      {1795244400 * kSecond, 3600, "2026-11-21T08:00:00.000000+01:00"},
      {1795244400 * kSecond + 42, -34200, "2026-11-20T21:30:00.000042-09:30"},
      {951782400 * kSecond, 0, "2000-02-29T00:00:00.000000+00:00"},
      {951782399 * kSecond, 86340, "2000-02-29T23:58:59.000000+23:59"},
      {kFirst, 0, "0001-01-01T00:00:00.000000+00:00"},
      {kFirst - 3600 * kSecond, 3600, "0001-01-01T00:00:00.000000+01:00"},
      {kLast, 0, "9999-12-31T23:59:59.999999+00:00"},
  };
  for (auto const& row : rows) {
    EXPECT_EQ(Written(row.microseconds, row.offset), row.text);
    EXPECT_EQ(Read(row.text), std::to_string(row.microseconds));
  }
  // The fraction of a minute goes; the moment stays.
  EXPECT_EQ(Written(0, 3208), "1970-01-01T00:53:00.000000+00:53");
  EXPECT_EQ(Written(0, -3208), "1969-12-31T23:07:00.000000-00:53");
}

TEST(TimeText, RefusesWhatHasNone) {
  struct {
    std::int64_t microseconds;
    std::int32_t offset;
  } const rows[] = {
      {kFirst - 1, 0},
      {kFirst, -60},
      {kLast + 1, 0},
      {kLast, 60},
      {0, 86400},
      {0, -86400},
      {0, std::numeric_limits<std::int32_t>::min()},
      {2069281036800 * kSecond, 0},  // in the year 67543
      {std::numeric_limits<std::int64_t>::max(), 3600},
      {std::numeric_limits<std::int64_t>::min(), -3600},
  };
  for (auto const& row : rows) EXPECT_EQ(Written(row.microseconds, row.offset), "none");
}

TEST(TextToTime, IsLenientWhereItMay) {
  for (char const* text :
       {"1970-01-01T01:00:00.5+01:00", "1970-01-01t00:00:00.50z", "1970-01-01 00:00:00.5000009Z",
        "1969-12-31T23:30:00.500000000000000000000000-00:30", "1970-01-01T00:00:00.5-00:00"}) {
    EXPECT_EQ(Read(text), "500000") << text;
  }
  EXPECT_EQ(Read("1970-01-02T00:00:00Z"), "86400000000");
  EXPECT_EQ(Read("1969-12-31T23:59:59.9999999Z"), "-1");
}

TEST(TextToTime, ChecksEveryField) {
  for (char const* text : {"",
                           "2026",
                           "2026-11-21",
                           "2026-11-21T08:00:00",
                           "2026-11-21T08:00Z",
                           "0000-01-01T00:00:00Z",
                           "2026-00-01T00:00:00Z",
                           "2026-13-01T00:00:00Z",
                           "2026-01-00T00:00:00Z",
                           "2026-01-32T00:00:00Z",
                           "2026-04-31T00:00:00Z",
                           "2026-02-29T00:00:00Z",
                           "1900-02-29T00:00:00Z",
                           "2024-02-30T00:00:00Z",
                           "2026-01-01T24:00:00Z",
                           "2026-01-01T00:60:00Z",
                           "2026-01-01T00:00:60Z",
                           "2026-01-01T00:00:00+24:00",
                           "2026-01-01T00:00:00+00:60",
                           "2026-01-01T00:00:00+0000",
                           "2026-01-01T00:00:00+00",
                           "2026-01-01T00:00:00.Z",
                           "2026-01-01T00:00:00Zx",
                           " 2026-01-01T00:00:00Z",
                           "2026-01-01T00:00:00Z ",
                           "2026-1-01T00:00:00Z",
                           "2026-01-01  0:00:00Z",
                           "+026-01-01T00:00:00Z",
                           "2026/01/01T00:00:00Z",
                           "2026-01-01T00:00:00,5Z",
                           "12026-01-01T00:00:00Z"}) {
    EXPECT_EQ(Read(text), "none") << text;
  }
  EXPECT_NE(Read("2000-02-29T00:00:00Z"), "none");
  EXPECT_FALSE(TextToTime(ConstData()));
}

}  // namespace
