#include "portable/make_numeral.h"

#include "portable/ascii.h"
#include "portable/rope.h"

namespace {

template <unsigned long N>
ConstDataOfCapacity<N> MakeNumeral(unsigned long long value, unsigned radix,
                                   unsigned long min_digits) {
  if (min_digits > N) throw ConstDataCapacityExceeded();
  unsigned char digits[N];
  unsigned char* const end = digits + N;
  unsigned char* first = end;
  while (value != 0 || static_cast<unsigned long>(end - first) < min_digits) {
    *--first = static_cast<unsigned char>(Ascii::HexDigit(static_cast<unsigned>(value % radix)));
    value /= radix;
  }
  return ConstDataOfCapacity<N>(ConstData(first, end));
}

}  // namespace

ConstDataOfCapacity<10> MakeAsciiDecimalNumeral(std::uint32_t value, unsigned long min_digits) {
  return MakeNumeral<10>(value, 10, min_digits);
}

ConstDataOfCapacity<20> MakeAsciiDecimalNumeral64(unsigned long long value,
                                                  unsigned long min_digits) {
  return MakeNumeral<20>(value, 10, min_digits);
}

ConstDataOfCapacity<8> MakeAsciiHexNumeral(std::uint32_t value, unsigned long min_digits) {
  return MakeNumeral<8>(value, 16, min_digits);
}

ConstDataOfCapacity<16> MakeAsciiHexNumeral64(unsigned long long value, unsigned long min_digits) {
  return MakeNumeral<16>(value, 16, min_digits);
}

ConstDataOfCapacity<11> MakeAsciiSignedDecimalNumeral(std::int32_t value,
                                                      unsigned long min_digits) {
  auto const bits = static_cast<std::uint32_t>(value);
  bool const is_negative = value < 0;
  ConstDataOfCapacity<10> const digits =
      MakeAsciiDecimalNumeral(is_negative ? 0 - bits : bits, min_digits);
  return ConstDataOfCapacity<11>(ConstData(is_negative ? "-" : "") + digits);
}

ConstDataOfCapacity<21> MakeAsciiSignedDecimalNumeral64(long long value, unsigned long min_digits) {
  auto const bits = static_cast<unsigned long long>(value);
  bool const is_negative = value < 0;
  ConstDataOfCapacity<20> const digits =
      MakeAsciiDecimalNumeral64(is_negative ? 0 - bits : bits, min_digits);
  return ConstDataOfCapacity<21>(ConstData(is_negative ? "-" : "") + digits);
}
