#include "frameworks/CoreFoundation/file_system_text.h"

#include "frameworks/CoreFoundation/encodings/convert.h"
#include "frameworks/CoreFoundation/string_object.h"

namespace file_system_text {
namespace {

constexpr UniChar kEscape = 0xDC00;

// How many bytes the character at the start takes, 0 when there is none in well-formed UTF-8.
std::size_t CharacterAt(std::string_view bytes, UInt32& character) {
  auto const byte = [&](std::size_t i) { return static_cast<UInt8>(bytes[i]); };
  UInt8 const first = byte(0);
  std::size_t const size = first < 0x80                    ? 1
                           : first >= 0xC2 && first < 0xE0 ? 2
                           : first >= 0xE0 && first < 0xF0 ? 3
                           : first >= 0xF0 && first < 0xF5 ? 4
                                                           : 0;
  if (size == 0 || size > bytes.size()) return 0;
  character = size == 1 ? first : first & (0x7Fu >> size);
  for (std::size_t i = 1; i < size; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    character = character << 6 | (byte(i) & 0x3Fu);
  }
  bool const is_overlong = (size == 3 && character < 0x800) || (size == 4 && character < 0x10000);
  bool const is_surrogate = character >= 0xD800 && character < 0xE000;
  return is_overlong || is_surrogate || character > 0x10FFFF ? 0 : size;
}

void AppendUtf8(UInt32 character, std::string& bytes) {
  auto const append = [&](UInt32 byte) { bytes.push_back(static_cast<char>(byte)); };
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

bool StandsForByte(UniChar unit) { return unit >= kEscape + 0x80 && unit <= kEscape + 0xFF; }

}  // namespace

std::vector<UniChar> UnitsOf(std::string_view bytes) {
  std::vector<UniChar> units;
  units.reserve(bytes.size());
  while (!bytes.empty()) {
    UInt32 character = 0;
    std::size_t const size = CharacterAt(bytes, character);
    if (size == 0) {
      units.push_back(static_cast<UniChar>(kEscape + static_cast<UInt8>(bytes[0])));
    } else if (character < 0x10000) {
      units.push_back(static_cast<UniChar>(character));
    } else {
      units.push_back(static_cast<UniChar>(0xD800 + ((character - 0x10000) >> 10)));
      units.push_back(static_cast<UniChar>(0xDC00 + (character & 0x3FF)));
    }
    bytes.remove_prefix(size == 0 ? 1 : size);
  }
  return units;
}

std::string BytesOf(UniChar const* units, std::size_t count) {
  std::string bytes;
  bytes.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    UniChar const unit = units[i];
    bool const is_pair =
        (unit & 0xFC00) == 0xD800 && i + 1 < count && (units[i + 1] & 0xFC00) == 0xDC00;
    if (is_pair) {
      UInt32 const high = unit - 0xD800u, low = units[++i] - 0xDC00u;
      AppendUtf8(0x10000 + (high << 10 | low), bytes);
    } else if (StandsForByte(unit)) {
      bytes.push_back(static_cast<char>(unit - kEscape));
    } else {
      AppendUtf8(unit, bytes);
    }
  }
  return bytes;
}

std::string BytesOf(CFStringRef text) {
  __CFString const& string = __CFString::Of(text);
  if (string.is_ascii()) {
    return {reinterpret_cast<char const*>(string.ascii()), string.length()};
  }
  return BytesOf(string.units(), string.length());
}

CFStringRef CreateString(std::string_view bytes) {
  auto const* const start = reinterpret_cast<UInt8 const*>(bytes.data());
  if (encodings::IsAscii(start, bytes.size())) return __CFString::MakeAscii(start, bytes.size());
  std::vector<UniChar> const units = UnitsOf(bytes);
  return __CFString::MakeUnits(units.data(), units.size());
}

}  // namespace file_system_text
