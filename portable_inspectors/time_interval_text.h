// The text of a time interval: "04:05:06.000000", "3 days, 04:05:06.000000", "-1 day, 00:00:00.5".
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "evaluator/plugin/export.h"
#include "portable_inspectors/moment.h"

// Always with six digits of a second; the days only when there are any.
GATOTU_API std::string TimeIntervalToText(time_interval interval);

// Reads what is written, and also a lone "3 days", hours above 23 without days, and fewer or no
// digits behind the second. None for anything else and for what needs more than 64 bits.
GATOTU_API std::optional<time_interval> TextToTimeInterval(std::string_view text);
