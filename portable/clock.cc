#include "portable/clock.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cmath>
#include <memory>

#include "evaluator/plugin/exceptions.h"

namespace {

constexpr double kMicroseconds = 1e6;

struct ReleaseZone {
  void operator()(__CFTimeZone const* zone) const { CFRelease(zone); }
};
using Zone = std::unique_ptr<__CFTimeZone const, ReleaseZone>;

CFAbsoluteTime AbsoluteTimeOf(Instant time) {
  return static_cast<double>(time.microseconds) / kMicroseconds - kCFAbsoluteTimeIntervalSince1970;
}

}  // namespace

Instant CurrentInstant() {
  double seconds = CFAbsoluteTimeGetCurrent() + kCFAbsoluteTimeIntervalSince1970;
  if (std::isnan(seconds)) throw NoSuchObject();
  return {std::llround(seconds * kMicroseconds)};
}

std::optional<std::int32_t> ZoneOffsetAt(Instant time) {
  Zone zone(CFTimeZoneCopySystem());
  if (zone == nullptr) return std::nullopt;
  return static_cast<std::int32_t>(CFTimeZoneGetSecondsFromGMT(zone.get(), AbsoluteTimeOf(time)));
}

std::optional<std::int32_t> StandardZoneOffsetAt(Instant time) {
  Zone zone(CFTimeZoneCopySystem());
  if (zone == nullptr) return std::nullopt;
  CFAbsoluteTime at = AbsoluteTimeOf(time);
  return static_cast<std::int32_t>(CFTimeZoneGetSecondsFromGMT(zone.get(), at) -
                                   CFTimeZoneGetDaylightSavingTimeOffset(zone.get(), at));
}

std::optional<std::string> NameOfTimeZone() {
  Zone zone(CFTimeZoneCopySystem());
  if (zone == nullptr) return std::nullopt;
  char name[256];
  bool is_whole =
      CFStringGetCString(CFTimeZoneGetName(zone.get()), name, sizeof(name), kCFStringEncodingUTF8);
  return is_whole ? std::optional<std::string>(name) : std::nullopt;
}
