// Integers as the casts read and write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "frame/inspector_strings.h"
#include "portable/make_numeral.h"
#include "portable/read_numeral.h"

// All of `digits`, with an optional sign in base 10. None for anything else and for what needs
// more than 64 bits.
inline std::optional<integer> ReadDecimal(std::string_view digits) {
  integer number = 0;
  ConstData const text(digits.data(), digits.size());
  if (TryReadAsciiDecimalNumeral(text, number) != ReadNumeralResult::kSuccess) return std::nullopt;
  return number;
}

// Hexadecimal digits, with or without "0x": the bits of a 64-bit number, so that a negative one
// reads back as well.
inline std::optional<integer> ReadHexadecimal(std::string_view digits) {
  if (digits.starts_with("0x") || digits.starts_with("0X")) digits.remove_prefix(2);
  std::uint64_t bits = 0;
  ConstData const text(digits.data(), digits.size());
  if (TryReadAsciiHexNumeral(text, bits) != ReadNumeralResult::kSuccess) return std::nullopt;
  return static_cast<integer>(bits);
}

inline inspector_string WriteDecimal(integer number) {
  return CopyToInspectorString(MakeAsciiSignedDecimalNumeral64(number, 1));
}

inline inspector_string WriteHexadecimal(std::uint64_t bits) {
  return CopyToInspectorString(MakeAsciiHexNumeral64(bits, 1));
}
