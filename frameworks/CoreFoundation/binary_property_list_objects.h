// What a reader of the binary form knows of its objects: their numbers where others refer to them,
// and those that have been read.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <bit>
#include <cstddef>
#include <cstring>
#include <span>

#include "frameworks/CoreFoundation/object.h"

namespace binary_property_list {

// A few bytes (1 to 8), the most significant first. They are taken from eight at once, which lie in
// the file for every one of them that does not lie in the trailer's last bytes.
inline UInt64 LoadBigEndian(unsigned char const* bytes, std::size_t width) {
  UInt64 value;
  std::memcpy(&value, bytes, sizeof value);
  if constexpr (std::endian::native == std::endian::little) value = __builtin_bswap64(value);
  return value >> (64 - 8 * width);
}

// References in sequence.
struct References {
  UInt64 operator[](UInt64 index) const { return LoadBigEndian(begin + index * width, width); }

  unsigned char const* begin;
  std::size_t width;
};

// The objects by their numbers, each borrowed from the container that was the first to hold it, and
// how many containers deep it is. Both share a word: a user address has 48 bits. A view, of which a
// loop keeps a copy, so that nothing it writes can concern the view.
struct KnownObjects {
  static constexpr UInt16 kUnread = 0xFFFF, kBeingRead = 0xFFFE;

  CFTypeRef ObjectOf(std::size_t number) const {
    return reinterpret_cast<CFTypeRef>(words[number] >> 16);
  }
  UInt16 HeightOf(std::size_t number) const { return static_cast<UInt16>(words[number]); }
  void Enter(std::size_t number, CFTypeRef object, UInt16 height) const {
    words[number] = reinterpret_cast<UInt64>(object) << 16 | height;
  }

  // A new reference to what has been read and is no container, else null.
  CFTypeRef RetainSimple(UInt64 number) const {
    if (number >= words.size() || HeightOf(number) != 0) return nullptr;
    CFTypeRef const object = ObjectOf(number);
    CFObject::Of(object).RetainUnshared();
    return object;
  }

  std::span<UInt64> words;
};

}  // namespace binary_property_list
