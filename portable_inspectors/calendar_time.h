// A moment in the Gregorian calendar, at some offset from universal time.
#pragma once

#include <cstdint>

#include "portable_inspectors/moment.h"

struct CalendarTime {
  std::int64_t year = 1970;  // of the common era, 0 for the year before 1
  int month = 1;
  int day = 1;
  int day_of_week = 1;  // Monday is 1, Sunday 7
  int day_of_year = 1;
  std::int64_t time_of_day = 0;  // microseconds since midnight
};

// Throws `TimeOverflow` where the offset leads out of the range of moments.
GATOTU_API CalendarTime CalendarTimeAt(moment time, time_interval offset_from_universal);
