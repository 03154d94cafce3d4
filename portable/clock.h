// The clock and the time zone of the machine in use.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "evaluator/plugin/export.h"
#include "evaluator/plugin/values.h"

// Throws `NoSuchObject` where the machine tells no time.
GATOTU_API Instant CurrentInstant();

// How many seconds local time is ahead of universal time then, daylight saving included. Nothing
// where the machine does not tell its zone.
GATOTU_API std::optional<std::int32_t> ZoneOffsetAt(Instant time);

// The same without daylight saving.
GATOTU_API std::optional<std::int32_t> StandardZoneOffsetAt(Instant time);

// As the zone database calls it, "Europe/Berlin".
GATOTU_API std::optional<std::string> NameOfTimeZone();
