// What is asked of `gatotu capture`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace gatotu::host {

struct CaptureRequest {
  std::string folder;
  // Only what the expressions touch, rather than all that a machine is known to be asked for.
  bool is_for_expressions = false;
  // Of the contents of all files together; nothing for the recorder's own limit.
  std::optional<std::uint64_t> most_bytes;
};

// "4096", "64K", "10M", "2G" in powers of 1024; nothing when it is no such size.
std::optional<std::uint64_t> ParseByteSize(std::string_view text);

}  // namespace gatotu::host
