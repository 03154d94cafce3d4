// Integers as the casts read and write them.
#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

#include "evaluator/plugin/values.h"
#include "portable_inspectors/text.h"

// All of `digits`, with an optional sign in base 10. None for anything else and for what needs
// more than 64 bits.
inline std::optional<std::int64_t> ReadDecimal(std::string_view digits) {
  if (digits.starts_with('+') && !digits.starts_with("+-")) digits.remove_prefix(1);
  std::int64_t number = 0;
  auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

// Hexadecimal digits, with or without "0x": the bits of a 64-bit number, so that a negative one
// reads back as well.
inline std::optional<std::int64_t> ReadHexadecimal(std::string_view digits) {
  if (digits.starts_with("0x") || digits.starts_with("0X")) digits.remove_prefix(2);
  std::uint64_t bits = 0;
  auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), bits, 16);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return static_cast<std::int64_t>(bits);
}

template <class Number>
inspector_string WriteNumber(Number number, int base = 10) {
  char digits[24];
  auto const written = std::to_chars(digits, digits + sizeof(digits), number, base);
  return CopyText({digits, static_cast<std::size_t>(written.ptr - digits)});
}
