// What a new file or folder begins with.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

struct FileCreatingInfo {
  // The permission bits; without them those that the process gives to new items.
  std::optional<std::uint16_t> mode;
  // The Finder's record of the item, as `FSCatalogInfo::finderInfo` holds it.
  std::optional<std::array<std::uint8_t, 16>> finder_info;
};

struct DirectoryCreatingInfo : FileCreatingInfo {};
