// Times as text, after RFC 3339: "2026-11-21T08:00:00.000000+01:00".
#pragma once

#include <cstdint>
#include <optional>

#include "evaluator/plugin/values.h"
#include "portable/const_data.h"
#include "portable/const_data_of_capacity.h"

using TimeText = ConstDataOfCapacity<32>;

// Always with six digits of fraction and the offset, in seconds east of Greenwich; an offset that
// is no whole number of minutes, as zones had before there was a standard time, is cut to one.
// Nothing outside of the years 0001 to 9999 of that offset, or for an offset of a day and more:
// these have no such text.
GATOTU_API std::optional<TimeText> TimeToText(Instant time, std::int32_t offset_seconds);

// Takes a fraction of any length, or none (what is finer than a microsecond is cut off), "Z" or an
// offset, "T" or a blank between date and time, and letters of either case. Nothing for any other
// text: a day that the month does not have, a sixtieth second, white space around it.
GATOTU_API std::optional<Instant> TextToTime(ConstData text);
