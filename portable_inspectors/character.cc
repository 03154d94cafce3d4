#include "portable_inspectors/character.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr unsigned kLargestCodePoint = 0x10FFFF;
constexpr unsigned kFirstSurrogate = 0xD800;
constexpr unsigned kLastSurrogate = 0xDFFF;

unsigned ByteAt(std::string_view text, std::size_t index) {
  return static_cast<unsigned char>(text[index]);
}

bool IsContinuation(unsigned byte) { return (byte & 0xC0) == 0x80; }

// Bytes that a lead byte announces; 1 for a byte that leads nothing.
std::size_t AnnouncedSize(unsigned lead) {
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 1;
}

// Refuses overlong forms, surrogates and what lies beyond the last code point.
bool IsWellFormed(std::string_view sequence) {
  constexpr unsigned kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  constexpr unsigned kLeadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
  unsigned code_point = ByteAt(sequence, 0) & kLeadBits[sequence.size()];
  for (std::size_t i = 1; i < sequence.size(); ++i) {
    if (!IsContinuation(ByteAt(sequence, i))) return false;
    code_point = code_point << 6 | (ByteAt(sequence, i) & 0x3F);
  }
  return code_point >= kSmallest[sequence.size()] && code_point <= kLargestCodePoint &&
         (code_point < kFirstSurrogate || code_point > kLastSurrogate);
}

}  // namespace

std::size_t FirstCharacterSize(std::string_view text) {
  if (text.empty()) return 0;
  std::size_t const size = AnnouncedSize(ByteAt(text, 0));
  if (size == 1 || size > text.size()) return 1;
  return IsWellFormed(text.substr(0, size)) ? size : 1;
}

std::size_t LastCharacterSize(std::string_view text) {
  // A sequence that fills the last bytes exactly is what counting from the front finds as well:
  // its lead byte cannot belong to an earlier one.
  for (std::size_t size = 2; size <= std::min<std::size_t>(4, text.size()); ++size) {
    if (FirstCharacterSize(text.substr(text.size() - size)) == size) return size;
  }
  return text.empty() ? 0 : 1;
}

std::size_t CountCharacters(std::string_view text) {
  std::size_t count = 0;
  while (!text.empty()) {
    text.remove_prefix(FirstCharacterSize(text));
    ++count;
  }
  return count;
}

std::size_t PrefixSize(std::string_view text, unsigned long long count) {
  std::string_view rest = text;
  for (; count > 0 && !rest.empty(); --count) rest.remove_prefix(FirstCharacterSize(rest));
  return text.size() - rest.size();
}

std::size_t SuffixSize(std::string_view text, unsigned long long count) {
  std::string_view rest = text;
  for (; count > 0 && !rest.empty(); --count) rest.remove_suffix(LastCharacterSize(rest));
  return text.size() - rest.size();
}
