#include "portable_inspectors/calendar_time.h"

namespace {

constexpr std::int64_t kMicrosecondsPerDay = 86'400'000'000;

// Counting years from March puts the leap day last, so that the days before a month follow from
// its number alone; 400 years have the same days each time.
constexpr std::int64_t kDaysPerEra = 146'097;
constexpr std::int64_t kDaysFromMarch0ToEpoch = 719'468;

std::int64_t FloorDivide(std::int64_t number, std::int64_t divisor) {
  return number / divisor - (number % divisor < 0 ? 1 : 0);
}

std::int64_t FloorRemainder(std::int64_t number, std::int64_t divisor) {
  std::int64_t const remainder = number % divisor;
  return remainder < 0 ? remainder + divisor : remainder;
}

bool IsLeapYear(std::int64_t year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

}  // namespace

CalendarTime CalendarTimeAt(moment time, time_interval offset_from_universal) {
  std::int64_t const shifted = (time + offset_from_universal).MicrosecondsSince1970();
  std::int64_t const days = FloorDivide(shifted, kMicrosecondsPerDay);

  std::int64_t const days_from_march_0 = days + kDaysFromMarch0ToEpoch;
  std::int64_t const era = FloorDivide(days_from_march_0, kDaysPerEra);
  std::int64_t const day_of_era = days_from_march_0 - era * kDaysPerEra;
  std::int64_t const year_of_era =
      (day_of_era - day_of_era / 1460 + day_of_era / 36'524 - day_of_era / 146'096) / 365;
  std::int64_t const day_from_march =
      day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  std::int64_t const month_from_march = (5 * day_from_march + 2) / 153;
  bool const after_december = month_from_march >= 10;

  CalendarTime result;
  result.year = era * 400 + year_of_era + (after_december ? 1 : 0);
  result.month = static_cast<int>(month_from_march + (after_december ? -9 : 3));
  result.day = static_cast<int>(day_from_march - (153 * month_from_march + 2) / 5 + 1);
  // 1970-01-01 was a Thursday.
  result.day_of_week = static_cast<int>(FloorRemainder(days + 3, 7) + 1);
  constexpr int kDaysFromMarchToJanuary = 306;
  result.day_of_year =
      static_cast<int>(day_from_march) +
      (after_december ? 1 - kDaysFromMarchToJanuary : (IsLeapYear(result.year) ? 61 : 60));
  result.time_of_day = FloorRemainder(shifted, kMicrosecondsPerDay);
  return result;
}
