// Absolute time: seconds since 2001-01-01T00:00:00Z, as the clock of the machine in use has it.
#pragma once

#include <CoreFoundation/CFBase.h>

using CFTimeInterval = double;
using CFAbsoluteTime = CFTimeInterval;

inline constexpr CFTimeInterval kCFAbsoluteTimeIntervalSince1970 = 978307200.0;
inline constexpr CFTimeInterval kCFAbsoluteTimeIntervalSince1904 = 3061152000.0;

// Whole microseconds, so rounding to microseconds since 1970 gives the clock's own number. NaN when
// the machine in use has no clock.
CF_EXPORT CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);
