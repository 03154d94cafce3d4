// Whether an operation on two integers stays within its result type. The values are taken
// mathematically: there is no conversion between signed and unsigned before the operation.
//
// `long` and `long long` have one width, so that either may stand beside the other where a signed
// and an unsigned type of the same width are wanted.
#pragma once

#include <type_traits>

#include "portable/integer_type.h"

template <class A, class B>
concept SignedAndUnsigned = SignedIntegerType<A> && UnsignedIntegerType<B> &&
                            sizeof(A) == sizeof(B);

template <IntegerType T>
constexpr bool CanAdd(T left, T right) {
  T result{};
  return !__builtin_add_overflow(left, right, &result);
}

template <class S, class U>
requires SignedAndUnsigned<S, U>
constexpr bool CanAddSigned(S left, U right) {
  S result{};
  return !__builtin_add_overflow(left, right, &result);
}

template <class S, class U>
requires SignedAndUnsigned<S, U>
constexpr bool CanAddUnsigned(S left, U right) {
  U result{};
  return !__builtin_add_overflow(left, right, &result);
}

template <IntegerType T>
constexpr bool CanSubtract(T left, T right) {
  T result{};
  return !__builtin_sub_overflow(left, right, &result);
}

// For a signed and an unsigned value in either order, and for two unsigned ones.
template <class A, class B>
requires SignedAndUnsigned<A, B> || SignedAndUnsigned<B, A> ||
    (UnsignedIntegerType<A>&& std::same_as<A, B>)constexpr bool CanSubtractSigned(A left, B right) {
  std::make_signed_t<A> result{};
  return !__builtin_sub_overflow(left, right, &result);
}

template <class A, class B>
requires SignedAndUnsigned<A, B> || SignedAndUnsigned<B, A>
constexpr bool CanSubtractUnsigned(A left, B right) {
  std::make_unsigned_t<A> result{};
  return !__builtin_sub_overflow(left, right, &result);
}

template <IntegerType T>
constexpr bool CanMultiply(T left, T right) {
  T result{};
  return !__builtin_mul_overflow(left, right, &result);
}
