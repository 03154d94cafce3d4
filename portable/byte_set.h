// A set of byte values: 256 bits, one look-up a test.
#pragma once

#include <cstdint>

class ByteSet {
 public:
  constexpr ByteSet() = default;

  constexpr bool Contains(unsigned char byte) const {
    return (words_[byte / 32] >> (byte % 32) & 1) != 0;
  }

  constexpr ByteSet& Add(unsigned char byte) {
    words_[byte / 32] |= std::uint32_t{1} << (byte % 32);
    return *this;
  }
  // Both ends included.
  constexpr ByteSet& AddRange(unsigned char first, unsigned char last) {
    for (int byte = first; byte <= last; ++byte) Add(static_cast<unsigned char>(byte));
    return *this;
  }

 private:
  std::uint32_t words_[8] = {};
};
