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
  constexpr Wide kLeast = std::numeric_limits<T>::min();
  constexpr Wide kMost = std::numeric_limits<T>::max();
  Wide const corners[] = {kLeast,    kLeast + 1,    -1,        0,    1, 2,
                          kMost / 2, kMost / 2 + 1, kMost - 1, kMost};
  std::vector<T> values;
  for (Wide corner : corners) values.push_back(static_cast<T>(corner));
  return values;
}

template <class T>
bool Fits(Wide value) {
  return value >= std::numeric_limits<T>::min() && value <= std::numeric_limits<T>::max();
}

// Compares with the same operation in 128 bits; these do not hold every product of two unsigned
// values of 64 bits, for which a division tells.
template <class T>
void ExpectLikeWiderArithmetic() {
  for (T a : Corners<T>()) {
    for (T b : Corners<T>()) {
      SCOPED_TRACE(std::to_string(a) + ", " + std::to_string(b));
      EXPECT_EQ(CanAdd(a, b), Fits<T>(Wide{a} + b));
      EXPECT_EQ(CanSubtract(a, b), Fits<T>(Wide{a} - b));
      bool const product_fits = sizeof(T) == 8 && a > 0 && b > 0
                                    ? a <= std::numeric_limits<T>::max() / b
                                    : Fits<T>(Wide{a} * b);
      EXPECT_EQ(CanMultiply(a, b), product_fits);
    }
  }
}

template <class Signed>
class Overflow : public testing::Test {};
using Types = testing::Types<std::int8_t, std::int16_t, std::int32_t, std::int64_t, long long>;
TYPED_TEST_SUITE(Overflow, Types);

TYPED_TEST(Overflow, IsToldLikeWiderArithmetic) {
  using S = TypeParam;
  using U = std::make_unsigned_t<S>;
  ExpectLikeWiderArithmetic<S>();
  ExpectLikeWiderArithmetic<U>();
  for (U u : Corners<U>()) {
    for (S s : Corners<S>()) {
      SCOPED_TRACE(std::to_string(s) + ", " + std::to_string(u));
      EXPECT_EQ(CanAddSigned(s, u), Fits<S>(Wide{s} + u));
      EXPECT_EQ(CanAddUnsigned(s, u), Fits<U>(Wide{s} + u));
      EXPECT_EQ(CanSubtractSigned(s, u), Fits<S>(Wide{s} - u));
      EXPECT_EQ(CanSubtractSigned(u, s), Fits<S>(Wide{u} - s));
      EXPECT_EQ(CanSubtractUnsigned(s, u), Fits<U>(Wide{s} - u));
      EXPECT_EQ(CanSubtractUnsigned(u, s), Fits<U>(Wide{u} - s));
    }
    for (U v : Corners<U>()) {
      EXPECT_EQ(CanSubtractSigned(u, v), Fits<S>(Wide{u} - v)) << u << ", " << v;
    }
  }
}

}  // namespace
