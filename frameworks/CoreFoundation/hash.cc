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

}  // namespace

CFHashCode HashWord(UInt64 word) { return Mix(word ^ Seed(), 0xd6e8feb86659fd93u); }

CFHashCode HashBytes(void const* bytes, std::size_t length) {
  auto const* at = static_cast<UInt8 const*>(bytes);
  UInt64 const seed = Seed();
  UInt64 hash = length ^ 0xa0761d6478bd642fu;
  UInt64 word = 0;
  for (; length >= sizeof word; at += sizeof word, length -= sizeof word) {
    std::memcpy(&word, at, sizeof word);
    hash = Mix(word ^ seed, hash ^ 0xe7037ed1a0b428dbu);
  }
  word = 0;
  if (length > 0) std::memcpy(&word, at, length);
  return Mix(word ^ seed, hash ^ 0x8ebc6af09c88c6e3u);
}
