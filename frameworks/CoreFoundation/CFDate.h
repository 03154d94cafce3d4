// Absolute time: seconds since 2001-01-01T00:00:00Z; the present as the clock of the machine in use
// has it, and an object that holds a time.
#pragma once

#include <CoreFoundation/CFBase.h>

using CFTimeInterval = double;
using CFAbsoluteTime = CFTimeInterval;
using CFDateRef = struct __CFDate const*;

inline constexpr CFTimeInterval kCFAbsoluteTimeIntervalSince1970 = 978307200.0;
inline constexpr CFTimeInterval kCFAbsoluteTimeIntervalSince1904 = 3061152000.0;

// Whole microseconds, so rounding to microseconds since 1970 gives the clock's own number. NaN when
// the machine in use has no clock.
CF_EXPORT CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);

CF_EXPORT CFTypeID CFDateGetTypeID(void);
CF_EXPORT CFDateRef CFDateCreate(CFAllocatorRef allocator, CFAbsoluteTime at);
CF_EXPORT CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef theDate);
CF_EXPORT CFTimeInterval CFDateGetTimeIntervalSinceDate(CFDateRef theDate, CFDateRef otherDate);
CF_EXPORT CFComparisonResult CFDateCompare(CFDateRef theDate, CFDateRef otherDate, void* context);
