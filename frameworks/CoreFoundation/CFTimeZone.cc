#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFTimeZone.h>

#include <algorithm>
#include <cmath>

#include "frameworks/CoreFoundation/object.h"
#include "machine/machine.h"

struct __CFTimeZone final : CFObject {
 public:
  explicit __CFTimeZone(machine::TimeZone zone)
      : CFObject(kCFTypeTimeZone), rules_(std::move(zone.rules)), name_(MakeName(zone.name)) {}
  ~__CFTimeZone() override { CFRelease(name_); }

  CFStringRef name() const { return name_; }
  bool EqualTo(CFObject const& other) const override {
    auto const& zone = static_cast<__CFTimeZone const&>(other);
    return rules_ == zone.rules_ && CFEqual(name_, zone.name_);
  }
  CFHashCode Hash() const override { return CFHash(name_); }

  machine::ZoneOffset At(CFAbsoluteTime at) const {
    constexpr double kFarthest = 1e15;
    double const seconds = std::floor(at + kCFAbsoluteTimeIntervalSince1970);
    if (std::isnan(seconds)) return rules_->At(0);
    return rules_->At(static_cast<std::int64_t>(std::clamp(seconds, -kFarthest, kFarthest)));
  }

 private:
  // Names are ASCII; any other bytes stay apart from one another in this encoding.
  static CFStringRef MakeName(std::string const& name) {
    return CFStringCreateWithCString(nullptr, name.c_str(), kCFStringEncodingISOLatin1);
  }

  std::shared_ptr<machine::ZoneRules const> rules_;
  CFStringRef name_;
};

CFTypeID CFTimeZoneGetTypeID() { return kCFTypeTimeZone; }

CFTimeZoneRef CFTimeZoneCopySystem() {
  machine::Fact<machine::TimeZone> zone = machine::CurrentMachine().Zone().CurrentZone();
  return zone ? CFObject::Make<__CFTimeZone>(std::move(zone.value())) : nullptr;
}

CFStringRef CFTimeZoneGetName(CFTimeZoneRef zone) { return zone->name(); }

CFTimeInterval CFTimeZoneGetSecondsFromGMT(CFTimeZoneRef zone, CFAbsoluteTime at) {
  return zone->At(at).from_utc;
}

CFTimeInterval CFTimeZoneGetDaylightSavingTimeOffset(CFTimeZoneRef zone, CFAbsoluteTime at) {
  return zone->At(at).daylight;
}

Boolean CFTimeZoneIsDaylightSavingTime(CFTimeZoneRef zone, CFAbsoluteTime at) {
  return zone->At(at).is_daylight;
}
