// Time zones of the machine in use.
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFDate.h>

using CFTimeZoneRef = struct __CFTimeZone const*;

CF_EXPORT CFTypeID CFTimeZoneGetTypeID(void);

// The zone as it is set now; null when the machine in use does not tell its zone.
CF_EXPORT CFTimeZoneRef CFTimeZoneCopySystem(void);
// Borrowed from the zone. Empty for a zone that has rules but no name.
CF_EXPORT CFStringRef CFTimeZoneGetName(CFTimeZoneRef zone);

// Seconds, east of Greenwich positive, daylight saving included.
CF_EXPORT CFTimeInterval CFTimeZoneGetSecondsFromGMT(CFTimeZoneRef zone, CFAbsoluteTime at);
// Seconds that daylight saving adds at that moment; 0 in standard time.
CF_EXPORT CFTimeInterval CFTimeZoneGetDaylightSavingTimeOffset(CFTimeZoneRef zone,
                                                               CFAbsoluteTime at);
CF_EXPORT Boolean CFTimeZoneIsDaylightSavingTime(CFTimeZoneRef zone, CFAbsoluteTime at);
