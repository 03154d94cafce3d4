#include "frameworks/CoreFoundation/hash.h"

#include <cstring>

namespace {

char const address_of_the_day = 0;

UInt64 Seed() { return reinterpret_cast<UInt64>(&address_of_the_day) * 0x9e3779b97f4a7c15u; }

// Both halves of the product, so that each bit of the result depends on all of both factors.
UInt64 Mix(UInt64 left, UInt64 right) {
  __extension__ using Product = unsigned __int128;
  auto const product = static_cast<Product>(left) * right;
  return static_cast<UInt64>(product) ^ static_cast<UInt64>(product >> 64);
}

template <typename Word>
UInt64 Load(UInt8 const* from) {
  Word word;
  std::memcpy(&word, from, sizeof word);
  return word;
}

// Fewer than 8 bytes, all of them, some twice.
UInt64 LoadShort(UInt8 const* from, std::size_t length) {
  if (length >= 4) return Load<UInt32>(from) | Load<UInt32>(from + length - 4) << 32;
  if (length == 0) return 0;
  return from[0] | UInt64{from[length / 2]} << 8 | UInt64{from[length - 1]} << 16;
}

}  // namespace

CFHashCode HashWord(UInt64 word) { return Mix(word ^ Seed(), 0xd6e8feb86659fd93u); }

CFHashCode HashBytes(void const* bytes, std::size_t length) {
  auto const* at = static_cast<UInt8 const*>(bytes);
  UInt64 const seed = Seed();
  UInt64 hash = length ^ 0xa0761d6478bd642fu;
  if (length < sizeof(UInt64)) return Mix(LoadShort(at, length) ^ seed, hash);
  UInt8 const* const last = at + length - sizeof(UInt64);
  for (; at < last; at += sizeof(UInt64)) {
    hash = Mix(Load<UInt64>(at) ^ seed, hash ^ 0xe7037ed1a0b428dbu);
  }
  return Mix(Load<UInt64>(last) ^ seed, hash ^ 0x8ebc6af09c88c6e3u);
}
