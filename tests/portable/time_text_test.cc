#include "portable/time_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

std::string Written(std::int64_t microseconds, std::int32_t offset) {
  auto const text = TimeToText(Instant{microseconds}, offset);
  return text ? MakeString(*text) : "none";
}

std::string Read(std::string const& text) {
  auto const time = TextToTime(ConstData(text.c_str()));
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
  } const rows[] = {{0, 0, "1970-01-01T00:00:00.000000+00:00"},
                    {-1, 0, "1969-12-31T23:59:59.999999+00:00"},
                    {1795244400 * kSecond, 3600, "2026-11-21T08:00:00.000000+01:00"},
                    {1795244400 * kSecond + 42, -34200, "2026-11-20T21:30:00.000042-09:30"},
                    {951782400 * kSecond, 0, "2000-02-29T00:00:00.000000+00:00"},
                    {951782399 * kSecond, 86340, "2000-02-29T23:58:59.000000+23:59"},
                    {kFirst, 0, "0001-01-01T00:00:00.000000+00:00"},
                    {kFirst - 3600 * kSecond, 3600, "0001-01-01T00:00:00.000000+01:00"},
                    {kLast, 0, "9999-12-31T23:59:59.999999+00:00"}};
  for (auto const& row : rows) {
    EXPECT_EQ(Written(row.microseconds, row.offset), row.text);
    EXPECT_EQ(Read(row.text), std::to_string(row.microseconds));
  }
  // The fraction of a minute goes; the moment stays.
  EXPECT_EQ(Written(0, 3208), "1970-01-01T00:53:00.000000+00:53");
  EXPECT_EQ(Written(0, -3208), "1969-12-31T23:07:00.000000-00:53");
}

TEST(TimeText, RefusesWhatHasNone) {
  std::pair<std::int64_t, std::int32_t> const rows[] = {
      {kFirst - 1, 0}, {kFirst, -60},  {kLast + 1, 0},    {kLast, 60},       {0, 86400},
      {0, -86400},     {0, INT32_MIN}, {INT64_MAX, 3600}, {INT64_MIN, -3600}};
  for (auto const& [moment, offset] : rows) EXPECT_EQ(Written(moment, offset), "none") << moment;
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
  auto const expect_refused = [](std::string const& text) {
    EXPECT_EQ(Read(text), "none") << text;
  };
  for (std::string date : {"0000-01-01", "2026-00-01", "2026-13-01", "2026-01-00", "2026-01-32",
                           "2026-04-31", "2026-02-29", "1900-02-29", "2024-02-30", "2026-1-01",
                           "2026/01/01", "+026-01-01", "12026-01-01", " 2026-01-01"}) {
    expect_refused(date + "T00:00:00Z");
  }
  for (std::string clock :
       {"", "T08:00:00", "T08:00Z", "T24:00:00Z", "T00:60:00Z", "T00:00:60Z", "  0:00:00Z"}) {
    expect_refused("2026-01-01" + clock);
  }
  for (std::string rest : {"+24:00", "+00:60", "+0000", "+00", ".Z", ",5Z", "Zx", "Z "}) {
    expect_refused("2026-01-01T00:00:00" + rest);
  }
  expect_refused("");
  expect_refused("2026");
  EXPECT_FALSE(TextToTime(ConstData()));
}

}  // namespace
