// What a new file or folder begins with.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

struct FileCreatingInfo {
  // The permission bits; without them those that the process gives to new items.
  std::optional<std::uint16_t> mode;
  // The Finder's record of the item, big-endian as on disk: type, creator, flags, place.
  std::optional<std::array<std::uint8_t, 16>> finder_info;
};

struct DirectoryCreatingInfo : FileCreatingInfo {};
