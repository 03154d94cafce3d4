// Numbers as most file formats of the platform have them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

inline std::string BigEndianText(std::uint64_t number, int bytes) {
  std::string text;
  while (bytes-- > 0) text += static_cast<char>(number >> (8 * bytes));
  return text;
}

// Such as the code that four characters are.
inline std::uint32_t BigEndianNumber(std::string_view bytes) {
  std::uint32_t number = 0;
  for (unsigned char const byte : bytes) number = number << 8 | byte;
  return number;
}
