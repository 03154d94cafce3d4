// The plain values that cross between the evaluator and a plug-in, laid out alike on both sides.
#pragma once

#include <cstdint>

// Bytes in evaluator memory (`Allocate_Inspector_Memory`) or in memory that outlives the
// evaluation. Not NUL-terminated; a null start goes with length 0.
struct inspector_string {
  unsigned char const* start = nullptr;
  unsigned long length = 0;
};

using integer = std::int64_t;
using boolean = bool;
static_assert(sizeof(boolean) == 1);

// A frequency, in hertz.
struct hertz {
  std::int64_t count = 0;
  friend bool operator==(hertz, hertz) = default;
};

// A moment of the evaluator's clock, in microseconds since 1970-01-01T00:00:00Z. Only carried
// here; reading the clock is the portable layer's.
struct Instant {
  std::int64_t microseconds = 0;
};
