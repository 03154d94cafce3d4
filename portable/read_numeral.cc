#include "portable/read_numeral.h"

#include <utility>

#include "portable/ascii.h"
#include "portable/overflow.h"

namespace {

using Result = ReadNumeralResult::Value;

Result ReadDigits(ConstData text, ByteSet const& digits, unsigned long long radix,
                  unsigned long long& value) {
  if (text.IsEmpty()) return ReadNumeralResult::kNotANumeral;
  unsigned long long sum = 0;
  for (unsigned char const* byte = text.begin; byte != text.end; ++byte) {
    if (!CanMultiply(sum, radix)) return ReadNumeralResult::kTooLarge;
    sum *= radix;
    if (!digits.Contains(*byte)) return ReadNumeralResult::kNotANumeral;
    auto const digit = static_cast<unsigned long long>(Ascii::HexDigitValue(*byte));
    if (!CanAdd(sum, digit)) return ReadNumeralResult::kTooLarge;
    sum += digit;
  }
  value = sum;
  return ReadNumeralResult::kSuccess;
}

// The 64-bit reading, if the narrower type can hold its value.
template <class Wide, class Narrow>
Result ReadNarrow(Result (*read)(ConstData, Wide&), ConstData text, Narrow& value) {
  Wide wide = 0;
  Result const result = read(text, wide);
  if (result != ReadNumeralResult::kSuccess) return result;
  if (!std::in_range<Narrow>(wide)) return ReadNumeralResult::kTooLarge;
  value = static_cast<Narrow>(wide);
  return ReadNumeralResult::kSuccess;
}

template <class T>
T ReadOrThrow(Result (*read)(ConstData, T&), ConstData text) {
  T value = 0;
  ThrowError(read(text, value));
  return value;
}

template <class T>
T ReadOrDefault(Result (*read)(ConstData, T&), ConstData text, T value) {
  read(text, value);
  return value;
}

}  // namespace

Result TryReadAsciiDecimalNumeral(ConstData text, unsigned long long& value) {
  return ReadDigits(text, Ascii::Numeric(), 10, value);
}

Result TryReadAsciiDecimalNumeral(ConstData text, unsigned long& value) {
  return ReadNarrow<unsigned long long>(TryReadAsciiDecimalNumeral, text, value);
}

Result TryReadAsciiDecimalNumeral(ConstData text, std::uint32_t& value) {
  return ReadNarrow<unsigned long long>(TryReadAsciiDecimalNumeral, text, value);
}

Result TryReadAsciiDecimalNumeral(ConstData text, long long& value) {
  bool const is_negative = text.StartsWith("-");
  if (is_negative || text.StartsWith("+")) ++text.begin;
  unsigned long long magnitude = 0;
  Result const result = TryReadAsciiDecimalNumeral(text, magnitude);
  if (result != ReadNumeralResult::kSuccess) return result;
  if (is_negative ? !CanSubtractSigned(0LL, magnitude) : !CanAddSigned(0LL, magnitude)) {
    return ReadNumeralResult::kTooLarge;
  }
  value = static_cast<long long>(is_negative ? 0 - magnitude : magnitude);
  return ReadNumeralResult::kSuccess;
}

Result TryReadAsciiDecimalNumeral(ConstData text, long& value) {
  return ReadNarrow<long long>(TryReadAsciiDecimalNumeral, text, value);
}

Result TryReadAsciiDecimalNumeral(ConstData text, std::int32_t& value) {
  return ReadNarrow<long long>(TryReadAsciiDecimalNumeral, text, value);
}

Result TryReadAsciiHexNumeral(ConstData text, unsigned long long& value) {
  return ReadDigits(text, Ascii::HexDigits(), 16, value);
}

Result TryReadAsciiHexNumeral(ConstData text, unsigned long& value) {
  return ReadNarrow<unsigned long long>(TryReadAsciiHexNumeral, text, value);
}

Result TryReadAsciiHexNumeral(ConstData text, std::uint32_t& value) {
  return ReadNarrow<unsigned long long>(TryReadAsciiHexNumeral, text, value);
}

void ThrowError(ReadNumeralResult::Value result) {
  switch (result) {
    case ReadNumeralResult::kSuccess:
      return;
    case ReadNumeralResult::kNotANumeral:
      throw NotANumeral();
    case ReadNumeralResult::kTooLarge:
      throw NumeralTooLarge();
  }
}

std::uint32_t ReadAsciiDecimalNumeral(ConstData text) {
  return ReadOrThrow<std::uint32_t>(TryReadAsciiDecimalNumeral, text);
}

unsigned long long ReadAsciiDecimalNumeral64(ConstData text) {
  return ReadOrThrow<unsigned long long>(TryReadAsciiDecimalNumeral, text);
}

std::int32_t ReadAsciiSignedDecimalNumeral(ConstData text) {
  return ReadOrThrow<std::int32_t>(TryReadAsciiDecimalNumeral, text);
}

long long ReadAsciiSignedDecimalNumeral64(ConstData text) {
  return ReadOrThrow<long long>(TryReadAsciiDecimalNumeral, text);
}

std::uint32_t ReadAsciiHexNumeral(ConstData text) {
  return ReadOrThrow<std::uint32_t>(TryReadAsciiHexNumeral, text);
}

unsigned long long ReadAsciiHexNumeral64(ConstData text) {
  return ReadOrThrow<unsigned long long>(TryReadAsciiHexNumeral, text);
}

std::uint32_t ReadUTF8DecimalNumeral(UStringRef<UTF8> text) {
  return ReadAsciiDecimalNumeral(text.Bytes());
}

unsigned long long ReadUTF8DecimalNumeral64(UStringRef<UTF8> text) {
  return ReadAsciiDecimalNumeral64(text.Bytes());
}

std::uint32_t ReadAsciiDecimalNumeral32WithDefault(ConstData text, std::uint32_t otherwise) {
  return ReadOrDefault<std::uint32_t>(TryReadAsciiDecimalNumeral, text, otherwise);
}

unsigned long long ReadAsciiDecimalNumeral64WithDefault(ConstData text,
                                                        unsigned long long otherwise) {
  return ReadOrDefault<unsigned long long>(TryReadAsciiDecimalNumeral, text, otherwise);
}

std::int32_t ReadAsciiSignedDecimalNumeral32WithDefault(ConstData text, std::int32_t otherwise) {
  return ReadOrDefault<std::int32_t>(TryReadAsciiDecimalNumeral, text, otherwise);
}

long long ReadAsciiSignedDecimalNumeral64WithDefault(ConstData text, long long otherwise) {
  return ReadOrDefault<long long>(TryReadAsciiDecimalNumeral, text, otherwise);
}
