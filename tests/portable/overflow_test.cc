#include "portable/overflow.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace {

using Wide = __int128;

// The values at which something may go wrong.
template <class T>
std::vector<T> Corners() {
  constexpr T kLeast = std::numeric_limits<T>::min();
  constexpr T kMost = std::numeric_limits<T>::max();
  return {kLeast,
          static_cast<T>(kLeast + 1),
          static_cast<T>(-1),
          0,
          1,
          2,
          static_cast<T>(kMost / 2),
          static_cast<T>(kMost / 2 + 1),
          static_cast<T>(kMost - 1),
          kMost};
}

template <class T>
bool Fits(Wide value) {
  return value >= Wide{std::numeric_limits<T>::min()} &&
         value <= Wide{std::numeric_limits<T>::max()};
}

// Compares with the same operation in 128 bits; these do not hold every product of two unsigned
// values of 64 bits, for which a division tells.
template <class T>
class SameType : public testing::Test {};
using AllTypes =
    testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                   std::uint32_t, std::int64_t, std::size_t, long long, unsigned long long>;
TYPED_TEST_SUITE(SameType, AllTypes);

TYPED_TEST(SameType, AgreesWithWiderArithmetic) {
  using T = TypeParam;
  for (T a : Corners<T>()) {
    for (T b : Corners<T>()) {
      SCOPED_TRACE(std::to_string(a) + ", " + std::to_string(b));
      EXPECT_EQ(CanAdd(a, b), Fits<T>(Wide{a} + Wide{b}));
      EXPECT_EQ(CanSubtract(a, b), Fits<T>(Wide{a} - Wide{b}));
      bool const product_fits = sizeof(T) == 8 && a > 0 && b > 0
                                    ? a <= std::numeric_limits<T>::max() / b
                                    : Fits<T>(Wide{a} * Wide{b});
      EXPECT_EQ(CanMultiply(a, b), product_fits);
    }
  }
}

template <class S>
class MixedTypes : public testing::Test {};
using SignedTypes =
    testing::Types<std::int8_t, std::int16_t, std::int32_t, std::int64_t, long long>;
TYPED_TEST_SUITE(MixedTypes, SignedTypes);

TYPED_TEST(MixedTypes, AgreeWithWiderArithmetic) {
  using S = TypeParam;
  using U = std::make_unsigned_t<S>;
  for (U u : Corners<U>()) {
    for (S s : Corners<S>()) {
      SCOPED_TRACE(std::to_string(s) + ", " + std::to_string(u));
      EXPECT_EQ(CanAddSigned(s, u), Fits<S>(Wide{s} + Wide{u}));
      EXPECT_EQ(CanAddUnsigned(s, u), Fits<U>(Wide{s} + Wide{u}));
      EXPECT_EQ(CanSubtractSigned(s, u), Fits<S>(Wide{s} - Wide{u}));
      EXPECT_EQ(CanSubtractSigned(u, s), Fits<S>(Wide{u} - Wide{s}));
      EXPECT_EQ(CanSubtractUnsigned(s, u), Fits<U>(Wide{s} - Wide{u}));
      EXPECT_EQ(CanSubtractUnsigned(u, s), Fits<U>(Wide{u} - Wide{s}));
    }
    for (U v : Corners<U>()) {
      EXPECT_EQ(CanSubtractSigned(u, v), Fits<S>(Wide{u} - Wide{v})) << u << ", " << v;
    }
  }
}

TEST(MixedTypes, TakeEitherNameOfAWidth) {
  EXPECT_FALSE(CanAddSigned(std::int64_t{INT64_MAX}, 1ull));
  EXPECT_TRUE(CanAddUnsigned(-1ll, std::size_t{1}));
  EXPECT_TRUE(CanSubtractSigned(std::size_t{5}, 6ll));
  EXPECT_FALSE(CanSubtractUnsigned(5ll, std::size_t{6}));
}

}  // namespace
