// AppleDouble files: "._name" keeps what an item's own file system could not.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "machine/files.h"

namespace machine::live {

struct AppleDouble {
  std::optional<FinderInfo> finder_info;
  std::uint64_t resource_offset = 0, resource_bytes = 0;
  // An entry lies outside the file and is taken for missing.
  bool is_malformed = false;
  std::uint64_t bytes_read = 0;
};

// Nothing when the file is not one. It is read at the start and where its Finder information lies.
std::optional<AppleDouble> ReadAppleDouble(int file);

// Such a file; `info` may be null. The resource fork has at most 2^32-1 bytes.
std::string AppleDoubleText(FinderInfo const* info, std::string const& resource_fork);

inline constexpr std::string_view kCompanionPrefix = "._";
inline bool IsCompanionName(std::string_view name) {
  return name.size() > kCompanionPrefix.size() && name.starts_with(kCompanionPrefix);
}

}  // namespace machine::live
