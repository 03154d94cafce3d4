#include <CoreFoundation/CFDate.h>

#include <bit>
#include <limits>

#include "frameworks/CoreFoundation/hash.h"
#include "frameworks/CoreFoundation/number_object.h"
#include "machine/machine.h"

CFAbsoluteTime CFAbsoluteTimeGetCurrent() {
  machine::Fact<std::int64_t> const now = machine::CurrentMachine().Clock().MicrosecondsSince1970();
  if (!now) return std::numeric_limits<double>::quiet_NaN();
  constexpr std::int64_t kEpoch = 978'307'200'000'000;
  return static_cast<double>(*now - kEpoch) / 1e6;
}

bool __CFDate::EqualTo(CFObject const& other) const {
  return time_ == static_cast<__CFDate const&>(other).time_;
}

// The sum makes one zero of two.
CFHashCode __CFDate::Hash() const { return HashWord(std::bit_cast<UInt64>(time_ + 0.0)); }

CFTypeID CFDateGetTypeID() { return kCFTypeDate; }

CFDateRef CFDateCreate(CFAllocatorRef, CFAbsoluteTime at) { return CFObject::Make<__CFDate>(at); }

CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef theDate) { return theDate->time(); }

CFTimeInterval CFDateGetTimeIntervalSinceDate(CFDateRef theDate, CFDateRef otherDate) {
  return theDate->time() - otherDate->time();
}

CFComparisonResult CFDateCompare(CFDateRef theDate, CFDateRef otherDate, void*) {
  if (theDate->time() == otherDate->time()) return kCFCompareEqualTo;
  return theDate->time() < otherDate->time() ? kCFCompareLessThan : kCFCompareGreaterThan;
}
