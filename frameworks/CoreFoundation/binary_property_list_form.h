// The binary form's bytes: a magic word, objects, the table of their offsets, a trailer. An object
// begins with a byte whose high half is its kind; the low half is a count, or the width of a number
// as a power of two.
#pragma once

#include <cstddef>

namespace binary_property_list {

inline constexpr char kMagic[] = "bplist00";
inline constexpr std::size_t kMagicSize = 8;

// Six bytes of no use, the widths of offsets and of references, and as 8 bytes each the number of
// objects, the root's number, and the offset of the table.
inline constexpr std::size_t kTrailerSize = 32;

enum Kind : unsigned {
  kSingle = 0x0,
  kInteger = 0x1,  // Of 8 bytes signed, narrower ones unsigned.
  kReal = 0x2,
  kDate = 0x3,
  kData = 0x4,
  kAscii = 0x5,
  kUtf16 = 0x6,
  kUid = 0x8,  // The low half is one less than its width.
  kArray = 0xA,
  kDictionary = 0xD,
};

// In the low half: the count is an integer object that follows.
inline constexpr unsigned kCountFollows = 0xF;

inline constexpr unsigned char kNull = 0x00, kFalse = 0x08, kTrue = 0x09;
inline constexpr unsigned char kDateMarker = 0x33;

inline constexpr char kTooDeep[] = "containers nested too deeply";

}  // namespace binary_property_list
