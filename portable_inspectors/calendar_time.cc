#include "portable_inspectors/calendar_time.h"

#include <chrono>

namespace {

constexpr std::int64_t kMicrosecondsPerDay = 86'400'000'000;

// The calendar repeats itself after so many years and days, which are whole weeks.
constexpr std::int64_t kYearsPerEra = 400;
constexpr std::int64_t kDaysPerEra = 146'097;

std::int64_t FloorDivide(std::int64_t number, std::int64_t divisor) {
  return number / divisor - (number % divisor < 0 ? 1 : 0);
}

std::int64_t FloorRemainder(std::int64_t number, std::int64_t divisor) {
  std::int64_t const remainder = number % divisor;
  return remainder < 0 ? remainder + divisor : remainder;
}

}  // namespace

// Moments reach ten times as far as the years of the standard library, so the date is looked up in
// the era that begins in 1970.
CalendarTime CalendarTimeAt(moment time, time_interval offset_from_universal) {
  std::int64_t const shifted = (time + offset_from_universal).MicrosecondsSince1970();
  std::int64_t const days = FloorDivide(shifted, kMicrosecondsPerDay);

  std::chrono::sys_days const day_in_era(std::chrono::days(FloorRemainder(days, kDaysPerEra)));
  std::chrono::year_month_day const date(day_in_era);
  std::chrono::sys_days const new_year(date.year() / 1 / 1);

  CalendarTime result;
  result.year = int{date.year()} + FloorDivide(days, kDaysPerEra) * kYearsPerEra;
  result.month = static_cast<int>(unsigned{date.month()});
  result.day = static_cast<int>(unsigned{date.day()});
  result.day_of_week = static_cast<int>(std::chrono::weekday(day_in_era).iso_encoding());
  result.day_of_year = static_cast<int>((day_in_era - new_year).count()) + 1;
  result.time_of_day = FloorRemainder(shifted, kMicrosecondsPerDay);
  return result;
}
