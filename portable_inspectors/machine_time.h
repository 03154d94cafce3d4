// The clock, the time zone and the time text of the machine in use, for moments.
#pragma once

#include <string>
#include <string_view>

#include "portable_inspectors/moment.h"

moment MachineNow();

// How far local time is ahead of universal time then, daylight saving included, and at present
// without it. `NoSuchObject` where the machine does not tell its zone.
time_interval ZoneOffsetAt(moment time);
time_interval StandardZoneOffset();

// "Europe/Berlin".
std::string ZoneName();

// RFC 3339, written in local time with six digits and the offset, or in universal time with "Z".
// `NoSuchObject` for a text that is no time and for a time that has no such text.
moment ReadMoment(std::string_view text);
std::string WriteMoment(moment time);
std::string WriteUniversalMoment(moment time);
