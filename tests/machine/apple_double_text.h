// AppleDouble files as other systems write them.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/big_endian_text.h"

// Entry ids and their contents, laid down in this order.
inline std::string AppleDoubleText(
    std::vector<std::pair<std::uint32_t, std::string>> const& entries) {
  auto const count = static_cast<std::uint32_t>(entries.size());
  std::string header = BigEndianText(0x00051607, 4) + BigEndianText(0x00020000, 4) +
                       std::string(16, ' ') + BigEndianText(count, 2);
  std::string contents;
  for (auto const& [id, content] : entries) {
    auto const offset = static_cast<std::uint32_t>(26 + 12 * count + contents.size());
    header += BigEndianText(id, 4) + BigEndianText(offset, 4) +
              BigEndianText(static_cast<std::uint32_t>(content.size()), 4);
    contents += content;
  }
  return header + contents;
}
