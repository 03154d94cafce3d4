// What is asked of `gatotu capture`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gatotu::host {

struct CaptureRequest {
  std::string folder;
  // Only what the expressions touch, rather than all that a machine is known to be asked for.
  bool is_for_expressions = false;
  std::vector<std::string> patterns;  // of files to take along
  // Of the contents of all files together, and of each that is taken along; nothing for the
  // recorder's own limit.
  std::optional<std::uint64_t> most_bytes, most_file_bytes;
  bool is_redacted = false;   // without names of people and machines
  bool is_to_verify = false;  // looks at a capture that is there, and does nothing else
};

// "4096", "64K", "10M", "2G" in powers of 1024; nothing when it is no such size.
std::optional<std::uint64_t> ParseByteSize(std::string_view text);

}  // namespace gatotu::host
