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

template <class Signed>
class WideOverflow : public testing::Test {};
using WideTypes = testing::Types<std::int16_t, std::int32_t, std::int64_t, long long>;
TYPED_TEST_SUITE(WideOverflow, WideTypes);

TYPED_TEST(WideOverflow, BeginsAtTheEndsOfTheType) {
  using S = TypeParam;
  using U = std::make_unsigned_t<S>;
  constexpr S kLeast = std::numeric_limits<S>::min(), kMost = std::numeric_limits<S>::max();
  constexpr U kAll = std::numeric_limits<U>::max(), kHalf = U{kMost} + 1;
  EXPECT_TRUE(CanAdd(kMost, S{0}) && CanAdd(kAll, U{0}) && CanAddSigned(kLeast, kAll));
  EXPECT_FALSE(CanAdd(kMost, S{1}) || CanAdd(kAll, U{1}) || CanAddSigned(S{0}, kHalf));
  EXPECT_TRUE(CanAddUnsigned(S{-1}, U{1}) && CanAddUnsigned(kMost, kHalf));
  EXPECT_FALSE(CanAddUnsigned(S{-1}, U{0}) || CanAddUnsigned(S{1}, kAll));
  EXPECT_TRUE(CanSubtract(kLeast, S{0}) && CanSubtractSigned(U{0}, kHalf));
  EXPECT_FALSE(CanSubtract(kLeast, S{1}) || CanSubtract(U{0}, U{1}) ||
               CanSubtractSigned(kHalf, U{0}) || CanSubtractSigned(S{-1}, kHalf));
  EXPECT_TRUE(CanSubtractUnsigned(U{0}, kLeast) && CanSubtractUnsigned(kMost, U{1}));
  EXPECT_FALSE(CanSubtractUnsigned(kAll, S{-1}) || CanSubtractUnsigned(S{0}, U{1}));
  EXPECT_FALSE(CanMultiply(kLeast, S{-1}) || CanMultiply(kHalf, U{2}));
}

}  // namespace
