// A string as it is kept: one byte a unit when all of it is ASCII, else UTF-16. The units lie right
// behind the object.
#pragma once

#include <CoreFoundation/CFString.h>

#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

#include "frameworks/CoreFoundation/object.h"

struct __CFString final : CFObject {
 public:
  static CFStringRef MakeAscii(UInt8 const* bytes, std::size_t length,
                               ObjectBlocks* blocks = nullptr);
  // Kept as ASCII where it is.
  static CFStringRef MakeUnits(UniChar const* units, std::size_t length,
                               ObjectBlocks* blocks = nullptr);
  // For readers: `fill` writes the units where they are kept. Units must not all be ASCII.
  template <typename Fill>
  static CFStringRef FillAscii(std::size_t length, Fill&& fill, ObjectBlocks* blocks = nullptr) {
    __CFString* const string = CFObject::MakeIn<__CFString>(blocks, length, true, length);
    fill(reinterpret_cast<UInt8*>(string + 1));
    return string;
  }
  template <typename Fill>
  static CFStringRef FillUnits(std::size_t length, Fill&& fill, ObjectBlocks* blocks = nullptr) {
    std::size_t const room = length * sizeof(UniChar);
    __CFString* const string = CFObject::MakeIn<__CFString>(blocks, room, false, length);
    fill(reinterpret_cast<UniChar*>(string + 1));
    return string;
  }

  static __CFString const& Of(CFStringRef string) { return *string; }

  bool is_ascii() const { return variant() != 0; }
  std::size_t length() const { return length_; }
  UInt8 const* ascii() const { return reinterpret_cast<UInt8 const*>(this + 1); }
  std::string_view ascii_text() const { return {reinterpret_cast<char const*>(ascii()), length_}; }
  UniChar const* units() const { return reinterpret_cast<UniChar const*>(this + 1); }
  UniChar UnitAt(std::size_t index) const { return is_ascii() ? ascii()[index] : units()[index]; }

  bool EqualTo(CFObject const& other) const override;
  CFHashCode Hash() const override;

  // For `CFObject::Make` alone.
  __CFString(bool is_ascii, std::size_t length) noexcept
      : CFObject(kCFTypeString, is_ascii ? 1 : 0), length_(length) {}

 private:
  std::size_t length_;
};

// Part of a string as UTF-16 units, borrowed where it is kept so and widened where it is not.
class StringUnits {
 public:
  StringUnits(__CFString const& string, std::size_t begin, std::size_t length) : length_(length) {
    if (string.is_ascii()) {
      widened_.assign(string.ascii() + begin, string.ascii() + begin + length);
      start_ = widened_.data();
    } else {
      start_ = string.units() + begin;
    }
  }

  UniChar const* start() const { return start_; }
  std::size_t length() const { return length_; }

 private:
  std::vector<UniChar> widened_;
  UniChar const* start_;
  std::size_t length_;
};
