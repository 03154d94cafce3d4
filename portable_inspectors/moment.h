// Points in time and stretches of time, in whole microseconds, as the types "time" and
// "time interval". Arithmetic that leaves the 64-bit range (292,000 years) throws `TimeOverflow`.
#pragma once

#include <compare>
#include <cstdint>
#include <type_traits>

#include "evaluator/plugin/export.h"
#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"

class time_interval {
 public:
  constexpr time_interval() = default;
  explicit constexpr time_interval(std::int64_t microseconds) : microseconds_(microseconds) {}

  constexpr std::int64_t Microseconds() const { return microseconds_; }

  friend constexpr auto operator<=>(time_interval, time_interval) = default;

 private:
  std::int64_t microseconds_ = 0;
};

class moment {
 public:
  // 1970-01-01T00:00:00Z.
  constexpr moment() = default;
  explicit constexpr moment(std::int64_t microseconds_since_1970)
      : microseconds_(microseconds_since_1970) {}

  constexpr std::int64_t MicrosecondsSince1970() const { return microseconds_; }

  friend constexpr auto operator<=>(moment, moment) = default;

 private:
  std::int64_t microseconds_ = 0;
};

static_assert(std::is_trivially_copyable_v<moment> && std::is_trivially_copyable_v<time_interval>);

template <>
struct InspectorTypeName<moment> {
  static constexpr char const* kName = "time";
};
template <>
struct InspectorTypeName<time_interval> {
  static constexpr char const* kName = "time interval";
};

GATOTU_API moment operator+(moment start, time_interval length);
GATOTU_API moment operator+(time_interval length, moment start);
GATOTU_API moment operator-(moment end, time_interval length);
GATOTU_API time_interval operator-(moment end, moment start);
GATOTU_API time_interval operator+(time_interval left, time_interval right);
GATOTU_API time_interval operator-(time_interval left, time_interval right);
GATOTU_API time_interval operator*(integer count, time_interval length);
GATOTU_API time_interval operator*(time_interval length, integer count);
// Quotients round towards zero; `DivisionByZero` for a zero divisor.
GATOTU_API time_interval operator/(time_interval length, integer count);
GATOTU_API integer operator/(time_interval left, time_interval right);
// What `left / right` leaves over, with the sign of `left`.
GATOTU_API time_interval operator%(time_interval left, time_interval right);

// One microsecond, one second.
GATOTU_API time_interval microsecond_of();
GATOTU_API time_interval second_of();

// The epochs that times of the system count from. The local one is midnight by the standard
// offset that the machine's time zone has at present, as disks formatted in local time count.
GATOTU_API moment january_1_1904_GMT();
GATOTU_API moment january_1_1904_Local();
GATOTU_API moment january_1_1970();

// The machine's clock.
GATOTU_API moment moment_now();

GATOTU_API moment AsMoment(Instant instant);
GATOTU_API Instant AsInstant(moment time);
