#include "frameworks/CoreServices/file_names.h"

namespace {

constexpr char32_t kUndecodable = 0xDC00;  // plus the byte
constexpr std::size_t kMostBytes = 255;

struct Decoded {
  char32_t character;
  std::size_t bytes;  // 0: not UTF-8
};

// The shortest form only, no surrogates, nothing above U+10FFFF.
Decoded DecodeFirst(std::string_view text) {
  auto const byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  unsigned const first = byte(0);
  if (first < 0x80) return {first, 1};
  std::size_t const size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() < size) return {0, 0};
  char32_t character = first & (0x7Fu >> size);
  for (std::size_t i = 1; i < size; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return {0, 0};
    character = character << 6 | (byte(i) & 0x3F);
  }
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  bool const is_surrogate = character >= 0xD800 && character < 0xE000;
  if (character < kLeast[size] || character > 0x10FFFF || is_surrogate) return {0, 0};
  return {character, size};
}

void AppendUtf8(std::string& text, char32_t character) {
  auto const append = [&](char32_t byte) { text += static_cast<char>(byte); };
  if (character < 0x80) return append(character);
  if (character < 0x800) {
    append(0xC0 | character >> 6);
  } else if (character < 0x10000) {
    append(0xE0 | character >> 12);
    append(0x80 | (character >> 6 & 0x3F));
  } else {
    append(0xF0 | character >> 18);
    append(0x80 | (character >> 12 & 0x3F));
    append(0x80 | (character >> 6 & 0x3F));
  }
  append(0x80 | (character & 0x3F));
}

bool IsHigh(UniChar unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLow(UniChar unit) { return unit >= 0xDC00 && unit < 0xE000; }

}  // namespace

HFSUniStr255 UnicodeName(std::string_view bytes) {
  HFSUniStr255 name = {};
  auto const append = [&](char32_t unit) {
    name.unicode[name.length++] = static_cast<UniChar>(unit);
  };
  bytes = bytes.substr(0, kMostBytes);
  while (!bytes.empty()) {
    Decoded const decoded = DecodeFirst(bytes);
    if (decoded.bytes == 0) {
      append(kUndecodable + static_cast<unsigned char>(bytes.front()));
    } else if (decoded.character >= 0x10000) {
      append(0xD7C0 + (decoded.character >> 10));
      append(0xDC00 + (decoded.character & 0x3FF));
    } else {
      append(decoded.character);
    }
    bytes.remove_prefix(decoded.bytes == 0 ? 1 : decoded.bytes);
  }
  return name;
}

std::optional<std::string> NameOnDisk(UniChar const* name, UniCharCount length) {
  std::string bytes;
  for (UniCharCount i = 0; i < length && bytes.size() <= kMostBytes; ++i) {
    UniChar const unit = name[i];
    if (unit == 0 || unit == '/') return {};
    if (IsHigh(unit)) {
      if (i + 1 == length || !IsLow(name[i + 1])) return {};
      AppendUtf8(bytes, (static_cast<char32_t>(unit - 0xD7C0) << 10) + (name[++i] - 0xDC00u));
    } else if (unit >= kUndecodable + 0x80 && unit <= kUndecodable + 0xFF) {
      bytes += static_cast<char>(unit - kUndecodable);
    } else if (IsLow(unit)) {
      return {};
    } else {
      AppendUtf8(bytes, unit);
    }
  }
  if (bytes.empty() || bytes.size() > kMostBytes || bytes == "." || bytes == "..") return {};
  return bytes;
}
