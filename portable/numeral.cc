#include "portable/numeral.h"

#include <cassert>

Numeral::Numeral(std::uint64_t magnitude, char sign, unsigned radix)
    : first_digit_(buffer_ + kHeadRoom + kMostDigits), sign_(sign), show_sign_(sign == '-') {
  assert(radix >= 2 && radix <= 36);
  *first_digit_ = 0;
  do {
    *--first_digit_ = static_cast<unsigned char>(Digit(static_cast<unsigned>(magnitude % radix)));
    magnitude /= radix;
  } while (magnitude != 0);
  WriteHead();
}

void Numeral::PadTo(unsigned long digits) {
  assert(digits <= kMostDigits);
  while (static_cast<unsigned long>(DigitsEnd() - first_digit_) < digits) *--first_digit_ = '0';
  WriteHead();
}

void Numeral::WriteHead() {
  unsigned char* start = first_digit_;
  if (show_sign_) *--start = static_cast<unsigned char>(sign_);
  start[-1] = static_cast<unsigned char>(DigitsEnd() - start);
}
