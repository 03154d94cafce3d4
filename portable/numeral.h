// The digits of an integer, in any radix.
#pragma once

#include <cstdint>

#include "evaluator/plugin/export.h"
#include "portable/const_c_string.h"
#include "portable/const_data.h"
#include "portable/integer_type.h"

// Written from right to left into a buffer of its own: what it converts to lives as long as the
// numeral and is valid until it is padded. A sign is shown only for a negative value, and never
// counts as a digit.
class GATOTU_API Numeral {
 public:
  static constexpr unsigned long kMostDigits = 66;

  // The radix is 2 to 36; the digits above 9 are small letters.
  template <IntegerType T>
  Numeral(T value, unsigned radix) : Numeral(MagnitudeOf(value), Sign(value), radix) {}
  Numeral(Numeral const&) = delete;
  Numeral& operator=(Numeral const&) = delete;

  // `-`, `+`, or a blank for zero.
  template <IntegerType T>
  static constexpr char Sign(T value) {
    return value < 0 ? '-' : value > 0 ? '+' : ' ';
  }
  static constexpr char Digit(unsigned value) {
    return static_cast<char>(value < 10 ? '0' + value : 'a' + (value - 10));
  }

  // Puts zeros in front until there are `digits` of them, which is at most `kMostDigits`.
  void PadTo(unsigned long digits);

  explicit(false) operator ConstData() const { return ConstData(Start(), DigitsEnd()); }
  explicit(false) operator USAsciiString() const {
    return USAsciiString(ConstCString(reinterpret_cast<char const*>(Start())));
  }
  // A length byte, then the characters.
  explicit(false) operator unsigned char const*() const { return Start() - 1; }

 private:
  Numeral(std::uint64_t magnitude, char sign, unsigned radix);

  template <IntegerType T>
  static constexpr std::uint64_t MagnitudeOf(T value) {
    auto const bits = static_cast<std::uint64_t>(value);
    return value < 0 ? 0 - bits : bits;
  }

  // Keeps sign and length byte in front of the first digit.
  void WriteHead();
  unsigned char const* Start() const { return show_sign_ ? first_digit_ - 1 : first_digit_; }
  unsigned char const* DigitsEnd() const { return buffer_ + kHeadRoom + kMostDigits; }

  static constexpr unsigned long kHeadRoom = 2;

  unsigned char* first_digit_;
  char sign_;
  bool show_sign_;
  unsigned char buffer_[kHeadRoom + kMostDigits + 1];  // a NUL behind the digits
};
