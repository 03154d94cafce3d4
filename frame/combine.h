// Four-character codes: the first character stands in the most significant byte.
#pragma once

#include <cstdint>

constexpr std::uint32_t Combine(unsigned char a, unsigned char b, unsigned char c,
                                unsigned char d) {
  return std::uint32_t{a} << 24 | std::uint32_t{b} << 16 | std::uint32_t{c} << 8 | d;
}
