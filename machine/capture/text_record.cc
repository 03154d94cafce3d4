#include "machine/capture/text_record.h"

#include <optional>

#include "machine/live/text.h"

namespace machine::capture {
namespace {

// The length of the character at the start, as UTF-8 that XML can hold: 0 where there is none.
std::size_t CharacterLength(std::string_view text) {
  auto const byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  unsigned const first = byte(0);
  if (first < 0x80) return first >= 0x20 || first == '\t' || first == '\n' ? 1 : 0;
  std::size_t const length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  if (first > 0xF4 || length == 0 || length > text.size()) return 0;
  std::uint32_t code = first & (0x7F >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    code = code << 6 | (byte(i) & 0x3F);
  }
  constexpr std::uint32_t kShortest[] = {0, 0, 0x80, 0x800, 0x10000};
  bool const is_surrogate = code >= 0xD800 && code < 0xE000;
  bool const is_text =
      code >= kShortest[length] && code <= 0x10FFFF && !is_surrogate && (code & 0xFFFE) != 0xFFFE;
  return is_text ? length : 0;
}

bool IsText(std::string_view text) {
  while (!text.empty()) {
    std::size_t const length = CharacterLength(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

}  // namespace

Record RecordOfBytes(std::string bytes) {
  if (IsText(bytes)) return bytes;
  return RecordBytes{std::move(bytes)};
}

std::string KeyOfBytes(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string key;
  while (!bytes.empty()) {
    std::size_t const length = bytes.front() == '%' ? 0 : CharacterLength(bytes);
    if (length == 0) {
      auto const byte = static_cast<unsigned char>(bytes.front());
      key += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    key += bytes.substr(0, length);
    bytes.remove_prefix(length == 0 ? 1 : length);
  }
  return key;
}

std::string BytesOfKey(std::string_view key) {
  std::string bytes;
  for (std::size_t i = 0; i < key.size(); ++i) {
    std::optional<unsigned> byte;
    if (key[i] == '%' && i + 3 <= key.size()) {
      byte = live::ParseNumber<unsigned>(key.substr(i + 1, 2), 16);
    }
    bytes += byte ? static_cast<char>(*byte) : key[i];
    if (byte) i += 2;
  }
  return bytes;
}

std::string KeyOfSelector(std::uint32_t selector) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(selector >> shift);
  return KeyOfBytes(bytes);
}

}  // namespace machine::capture
