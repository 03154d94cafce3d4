// Binary property lists as nobody would write them: each object is put down as it is given.
#pragma once

#include <string>
#include <vector>

#include "tests/support/big_endian_text.h"

// The first object is the root.
inline std::string BinaryListText(std::vector<std::string> const& objects, int reference_bytes = 1,
                                  int offset_bytes = 2) {
  std::string bytes = "bplist00", offsets;
  for (std::string const& object : objects) {
    offsets += BigEndianText(bytes.size(), offset_bytes);
    bytes += object;
  }
  std::string const table = BigEndianText(bytes.size(), 8);
  return bytes + offsets + std::string(6, '\0') + static_cast<char>(offset_bytes) +
         static_cast<char>(reference_bytes) + BigEndianText(objects.size(), 8) +
         BigEndianText(0, 8) + table;
}

// Arrays that each hold the next one twice: 2 to the `levels` values.
inline std::string SharedArraysText(char levels) {
  std::vector<std::string> objects;
  for (char i = 1; i <= levels; ++i) objects.push_back({'\xA2', i, i});
  objects.emplace_back("\x09");
  return BinaryListText(objects);
}
