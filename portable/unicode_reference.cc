#include "portable/unicode_reference.h"

#include <algorithm>

#include "portable/core_foundation/errors.h"

namespace {

// What may follow a first byte: how many bytes, and the bounds of the next one, which keep out
// what has a shorter form, the surrogates and what lies beyond U+10FFFF.
struct Sequence {
  unsigned long more;
  unsigned char low, high;
};

Sequence SequenceOf(unsigned char first) {
  if (first < 0xC2 || first > 0xF4) throw CFStringCreateError();
  if (first < 0xE0) return {1, 0x80, 0xBF};
  if (first < 0xF0) {
    return {2, static_cast<unsigned char>(first == 0xE0 ? 0xA0 : 0x80),
            static_cast<unsigned char>(first == 0xED ? 0x9F : 0xBF)};
  }
  return {3, static_cast<unsigned char>(first == 0xF0 ? 0x90 : 0x80),
          static_cast<unsigned char>(first == 0xF4 ? 0x8F : 0xBF)};
}

}  // namespace

template <>
void RequireUnicode<UTF8>(ConstData bytes) {
  while (!bytes.IsEmpty()) {
    if (*bytes.begin < 0x80) {
      ++bytes.begin;
      continue;
    }
    auto const [more, low, high] = SequenceOf(*bytes.begin);
    if (bytes.Length() <= more) throw CFStringCreateError();
    unsigned char const* const next = bytes.begin + 1;
    bool const is_whole = *next >= low && *next <= high &&
                          std::all_of(next + 1, next + more,
                                      [](unsigned char byte) { return (byte & 0xC0) == 0x80; });
    if (!is_whole) throw CFStringCreateError();
    bytes.begin = next + more;
  }
}
