#include "portable/crc32.h"

#include <array>

namespace {

// tables[k][b] is what byte b does to the remainder when k more bytes follow it, so that eight
// bytes are taken at once.
using Tables = std::array<std::array<std::uint32_t, 256>, 8>;

constexpr Tables MakeTables() {
  Tables tables{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t remainder = byte;
    for (int bit = 0; bit < 8; ++bit) {
      remainder = (remainder >> 1) ^ ((remainder & 1) != 0 ? 0xEDB88320 : 0);
    }
    tables[0][byte] = remainder;
  }
  for (std::size_t k = 1; k < tables.size(); ++k) {
    for (std::size_t byte = 0; byte < 256; ++byte) {
      std::uint32_t const before = tables[k - 1][byte];
      tables[k][byte] = (before >> 8) ^ tables[0][before & 0xFF];
    }
  }
  return tables;
}

constexpr Tables kTables = MakeTables();

std::uint32_t LittleEndian(unsigned char const* bytes) {
  return bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
         std::uint32_t{bytes[3]} << 24;
}

}  // namespace

void Crc32::Add(ConstData data) {
  std::uint32_t state = state_;
  unsigned char const* at = data.begin;
  for (; data.end - at >= 8; at += 8) {
    std::uint32_t const low = state ^ LittleEndian(at);
    std::uint32_t const high = LittleEndian(at + 4);
    state = kTables[7][low & 0xFF] ^ kTables[6][low >> 8 & 0xFF] ^ kTables[5][low >> 16 & 0xFF] ^
            kTables[4][low >> 24] ^ kTables[3][high & 0xFF] ^ kTables[2][high >> 8 & 0xFF] ^
            kTables[1][high >> 16 & 0xFF] ^ kTables[0][high >> 24];
  }
  for (; at != data.end; ++at) state = (state >> 8) ^ kTables[0][(state ^ *at) & 0xFF];
  state_ = state;
}
