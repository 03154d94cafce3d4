#include "portable/overflow.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

template <class T>
bool Fits(int value) {
  return value == static_cast<T>(value);
}

TEST(Overflow, IsToldOfEveryPairOfBytes) {
  using S = std::int8_t;
  using U = std::uint8_t;
  for (int pair = 0; pair < 0x10000; ++pair) {
    auto const s = static_cast<S>(pair), t = static_cast<S>(pair >> 8);
    auto const u = static_cast<U>(pair), v = static_cast<U>(pair >> 8);
    SCOPED_TRACE(pair);
    ASSERT_EQ(CanAdd(s, t), Fits<S>(s + t));
    ASSERT_EQ(CanAdd(u, v), Fits<U>(u + v));
    ASSERT_EQ(CanAddSigned(s, v), Fits<S>(s + v));
    ASSERT_EQ(CanAddUnsigned(s, v), Fits<U>(s + v));
    ASSERT_EQ(CanSubtract(s, t), Fits<S>(s - t));
    ASSERT_EQ(CanSubtract(u, v), Fits<U>(u - v));
    ASSERT_EQ(CanSubtractSigned(s, v), Fits<S>(s - v));
    ASSERT_EQ(CanSubtractSigned(v, s), Fits<S>(v - s));
    ASSERT_EQ(CanSubtractSigned(u, v), Fits<S>(u - v));
    ASSERT_EQ(CanSubtractUnsigned(s, v), Fits<U>(s - v));
    ASSERT_EQ(CanSubtractUnsigned(v, s), Fits<U>(v - s));
    ASSERT_EQ(CanMultiply(s, t), Fits<S>(s * t));
    ASSERT_EQ(CanMultiply(u, v), Fits<U>(u * v));
  }
}

static_assert(CanAdd(INT64_MAX - 1, INT64_C(1)) && !CanAdd(INT64_MAX, INT64_C(1)));
// One width under two names.
static_assert(CanAddSigned(std::numeric_limits<long>::min(), ~0ull) && !CanAddUnsigned(-1ll, 0ul));
static_assert(CanSubtractSigned(0ul, 1ul << 63) && !CanSubtractUnsigned(0l, 1ull));

}  // namespace
