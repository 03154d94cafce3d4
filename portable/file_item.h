// The portable face of an item of the file system: a place with what was found there once.
#pragma once

#include <cstdint>

#include "portable/file_location.h"
#include "portable/macintosh/file_item.h"

// See `MacintoshPlatform::FileItem`, whose every word holds here too.
class GATOTU_API FileItem {
 public:
  FileItem() = default;
  explicit FileItem(FileLocation const& location) : item_(location.Platform()) {}
  explicit FileItem(MacintoshPlatform::FileItem item) : item_(std::move(item)) {}

  bool TryToGet() { return item_.TryToGet(); }
  bool TryToGet(FileLocation const& location) { return item_.TryToGet(location.Platform()); }
  void Get(FileLocation const& location) { item_.Get(location.Platform()); }

  bool IsValid() const { return item_.IsValid(); }
  FileLocation Location() const { return FileLocation(item_.Location()); }
  FileName Name() const { return item_.Name(); }
  bool IsDirectory() const { return item_.IsDirectory(); }
  bool IsLocked() const { return item_.IsLocked(); }
  std::uint64_t Length() const { return item_.Length(); }
  std::uint64_t ResourceLength() const { return item_.ResourceLength(); }
  bool IsAlias() const { return item_.IsAlias(); }
  bool IsInvisible() const { return item_.IsInvisible(); }
  bool IsStationery() const { return item_.IsStationery(); }
  FSVolumeRefNum VolumeRefNum() const { return item_.VolumeRefNum(); }
  MacintoshPlatform::FileItem const& Platform() const { return item_; }

  // The CRC-32 of the data fork as it is now, read piece by piece; throws what reading throws.
  std::uint32_t Checksum() const;

 private:
  MacintoshPlatform::FileItem item_;
};
