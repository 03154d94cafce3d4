#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <tuple>
#include <utility>

#include "portable_inspectors/calendar_time.h"
#include "portable_inspectors/errors.h"
#include "portable_inspectors/time_interval_text.h"

namespace {

constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

TEST(TimeIntervalText, IsReadBack) {
  std::pair<std::int64_t, char const*> const rows[] = {
      {0, "00:00:00.000000"},
      {1, "00:00:00.000001"},
      {-1, "-00:00:00.000001"},
      {86'399'999'999, "23:59:59.999999"},
      {86'400'000'000, "1 day, 00:00:00.000000"},
      {-86'400'000'000, "-1 day, 00:00:00.000000"},
      {3 * 86'400'000'000 + 14'706'000'000, "3 days, 04:05:06.000000"},
      {kLargest, "106751991 days, 04:00:54.775807"},
      {kSmallest, "-106751991 days, 04:00:54.775808"}};
  for (auto const& [microseconds, text] : rows) {
    EXPECT_EQ(TimeIntervalToText(time_interval(microseconds)), text);
    EXPECT_EQ(TextToTimeInterval(text), time_interval(microseconds)) << text;
  }
}

TEST(TimeIntervalText, ReadsShorterForms) {
  EXPECT_EQ(TextToTimeInterval("3 days"), time_interval(3 * 86'400'000'000));
  EXPECT_EQ(TextToTimeInterval("100:00:00"), time_interval(360'000'000'000));
  EXPECT_EQ(TextToTimeInterval("-0:00:1.5"), time_interval(-1'500'000));
  for (char const* text :
       {"", "-", "3", "3 day, ", "3 days,04:05:06", "3 days, 24:00:00", "1:60:00", "1:00:60",
        "1:000:00", "1:00:00.", "1:00:00.1234567", "1:00:00 ", "--1:00:00", "+1:00:00", "1:-1:00",
        "106751992 days", "99999999999999999999 days", "106751991 days, 04:00:54.775808"}) {
    EXPECT_EQ(TextToTimeInterval(text), std::nullopt) << text;
  }
}

TEST(CalendarTime, ReachesBothEnds) {
  CalendarTime const before_all =
      CalendarTimeAt(moment(-62'135'596'800'000'000 - 1), time_interval());
  EXPECT_EQ(std::tuple(before_all.year, before_all.month, before_all.day, before_all.day_of_week,
                       before_all.day_of_year, before_all.time_of_day),
            std::tuple(0, 12, 31, 7, 366, 86'399'999'999));
  EXPECT_EQ(CalendarTimeAt(moment(253'402'300'800'000'000), time_interval()).year, 10'000);
  EXPECT_EQ(CalendarTimeAt(moment(kLargest), time_interval()).year, 294'247);
  EXPECT_EQ(CalendarTimeAt(moment(kSmallest), time_interval()).year, -290'308);
  EXPECT_THROW(CalendarTimeAt(moment(kLargest), time_interval(1)), TimeOverflow);
}

}  // namespace
