#include "portable_inspectors/moment.h"

#include "portable_inspectors/checked_arithmetic.h"
#include "portable_inspectors/machine_time.h"

namespace {

constexpr std::int64_t kMicrosecondsPerSecond = 1'000'000;
// 1904-01-01 to 1970-01-01: 66 years with 17 leap days.
constexpr std::int64_t kSecondsFrom1904To1970 = (66 * 365 + 17) * std::int64_t{86'400};

}  // namespace

moment operator+(moment start, time_interval length) {
  return moment(CheckedAdd<TimeOverflow>(start.MicrosecondsSince1970(), length.Microseconds()));
}

moment operator+(time_interval length, moment start) { return start + length; }

moment operator-(moment end, time_interval length) {
  return moment(CheckedSubtract<TimeOverflow>(end.MicrosecondsSince1970(), length.Microseconds()));
}

time_interval operator-(moment end, moment start) {
  return time_interval(
      CheckedSubtract<TimeOverflow>(end.MicrosecondsSince1970(), start.MicrosecondsSince1970()));
}

time_interval operator+(time_interval left, time_interval right) {
  return time_interval(CheckedAdd<TimeOverflow>(left.Microseconds(), right.Microseconds()));
}

time_interval operator-(time_interval left, time_interval right) {
  return time_interval(CheckedSubtract<TimeOverflow>(left.Microseconds(), right.Microseconds()));
}

time_interval operator*(integer count, time_interval length) {
  return time_interval(CheckedMultiply<TimeOverflow>(count, length.Microseconds()));
}

time_interval operator*(time_interval length, integer count) { return count * length; }

time_interval operator/(time_interval length, integer count) {
  return time_interval(CheckedDivide<TimeOverflow>(length.Microseconds(), count));
}

integer operator/(time_interval left, time_interval right) {
  return CheckedDivide<IntegerOverflow>(left.Microseconds(), right.Microseconds());
}

time_interval operator%(time_interval left, time_interval right) {
  return time_interval(CheckedRemainder(left.Microseconds(), right.Microseconds()));
}

time_interval microsecond_of() { return time_interval(1); }

time_interval second_of() { return time_interval(kMicrosecondsPerSecond); }

moment january_1_1904_GMT() { return january_1_1970() - kSecondsFrom1904To1970 * second_of(); }

moment january_1_1904_Local() { return january_1_1904_GMT() - StandardZoneOffset(); }

moment january_1_1970() { return moment(); }

moment moment_now() { return MachineNow(); }

moment AsMoment(Instant instant) { return moment(instant.microseconds); }

Instant AsInstant(moment time) { return {time.MicrosecondsSince1970()}; }
