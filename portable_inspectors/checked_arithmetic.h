// 64-bit arithmetic that throws instead of wrapping: `Overflow` names what ran over.
#pragma once

#include <cstdint>
#include <limits>

#include "portable_inspectors/errors.h"

template <class Overflow>
std::int64_t CheckedAdd(std::int64_t left, std::int64_t right) {
  std::int64_t sum;
  if (__builtin_add_overflow(left, right, &sum)) throw Overflow();
  return sum;
}

template <class Overflow>
std::int64_t CheckedSubtract(std::int64_t left, std::int64_t right) {
  std::int64_t difference;
  if (__builtin_sub_overflow(left, right, &difference)) throw Overflow();
  return difference;
}

template <class Overflow>
std::int64_t CheckedMultiply(std::int64_t left, std::int64_t right) {
  std::int64_t product;
  if (__builtin_mul_overflow(left, right, &product)) throw Overflow();
  return product;
}

// Rounds towards zero. The smallest number divided by -1 is one more than the largest.
template <class Overflow>
std::int64_t CheckedDivide(std::int64_t left, std::int64_t right) {
  if (right == 0) throw DivisionByZero();
  if (right == -1) return CheckedSubtract<Overflow>(0, left);
  return left / right;
}

// The rest of `CheckedDivide`, with the sign of `left`. Never overflows, though the processor's
// own division does for -1.
inline std::int64_t CheckedRemainder(std::int64_t left, std::int64_t right) {
  if (right == 0) throw DivisionByZero();
  return right == -1 ? 0 : left % right;
}
