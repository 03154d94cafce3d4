#include <CoreFoundation/CFDate.h>

#include <limits>

#include "machine/machine.h"

CFAbsoluteTime CFAbsoluteTimeGetCurrent() {
  machine::Fact<std::int64_t> const now = machine::CurrentMachine().Clock().MicrosecondsSince1970();
  if (!now) return std::numeric_limits<double>::quiet_NaN();
  constexpr std::int64_t kEpoch = 978'307'200'000'000;
  return static_cast<double>(*now - kEpoch) / 1e6;
}
