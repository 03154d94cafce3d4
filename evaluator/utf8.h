// Characters of UTF-8 text, for counting and showing: a byte that begins no well-formed character
// stands for itself.
#pragma once

#include <cstddef>
#include <string_view>

namespace gatotu {

// How many bytes the character at `at` has: 1 for a byte that is no part of one.
inline std::size_t CharacterSize(std::string_view text, std::size_t at) {
  auto byte = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
  };
  auto continues = [&](std::size_t i) { return (byte(i) & 0xc0) == 0x80; };
  unsigned first = byte(at);
  unsigned second = byte(at + 1);
  if (first >= 0xc2 && first <= 0xdf && continues(at + 1)) return 2;
  if (first >= 0xe0 && first <= 0xef && continues(at + 1) && continues(at + 2)) {
    bool is_overlong = first == 0xe0 && second < 0xa0;
    bool is_surrogate = first == 0xed && second >= 0xa0;
    return is_overlong || is_surrogate ? 1 : 3;
  }
  if (first >= 0xf0 && first <= 0xf4 && continues(at + 1) && continues(at + 2) &&
      continues(at + 3)) {
    bool is_overlong = first == 0xf0 && second < 0x90;
    bool is_beyond = first == 0xf4 && second >= 0x90;
    return is_overlong || is_beyond ? 1 : 4;
  }
  return 1;
}

// Whether a terminal would act on the character: the C1 controls, U+0080 to U+009F, and the
// marks that change the direction of writing.
inline bool IsTerminalControl(std::string_view character) {
  auto byte = [&](std::size_t i) { return static_cast<unsigned char>(character[i]); };
  if (character.size() == 2) return byte(0) == 0xc2 && byte(1) < 0xa0;
  if (character.size() != 3 || byte(0) != 0xe2) return false;
  bool is_embedding = byte(1) == 0x80 && byte(2) >= 0xaa && byte(2) <= 0xae;
  bool is_isolate = byte(1) == 0x81 && byte(2) >= 0xa6 && byte(2) <= 0xa9;
  return is_embedding || is_isolate;
}

}  // namespace gatotu
