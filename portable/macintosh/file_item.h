// A place in the file system with what was found there at one moment.
#pragma once

#include "portable/macintosh/file_info.h"
#include "portable/macintosh/file_location.h"

namespace MacintoshPlatform {

// A snapshot: nothing refreshes it but the three functions that say so. Of a link it describes the
// link. A copy shares nothing with its original but the URL.
class GATOTU_API FileItem {
 public:
  // Invalid, at the empty location.
  FileItem() = default;
  // Asks at once; `FileItemError` when nothing can be learnt.
  explicit FileItem(FileLocation const& location) { Get(location); }
  // What was learnt already.
  FileItem(FileLocation location, MacFileInfo const& info)
      : location_(std::move(location)), info_(info) {}

  // Ask again, here or elsewhere, and say whether that succeeded. A failure leaves the item
  // invalid, at the new location.
  bool TryToGet();
  bool TryToGet(FileLocation const& location);
  // The same, but throws `FileItemError` on failure.
  void Get(FileLocation const& location);

  bool IsValid() const { return info_.IsValid(); }
  FileLocation const& Location() const { return location_; }
  FileName Name() const { return location_.Name(); }

  // All below throw `FileItemError` when the snapshot is invalid.
  MacFileInfo const& Info() const;
  bool IsDirectory() const { return HasNodeFlag(kFSNodeIsDirectoryMask); }
  bool IsLocked() const { return HasNodeFlag(kFSNodeLockedMask); }
  // Bytes of the data fork and of the resource fork.
  UInt64 Length() const { return Info().Catalog().dataLogicalSize; }
  UInt64 ResourceLength() const { return Info().Catalog().rsrcLogicalSize; }
  bool IsAlias() const { return HasFinderFlag(kIsAlias); }
  bool IsInvisible() const { return HasFinderFlag(kIsInvisible); }
  bool IsStationery() const { return HasFinderFlag(kIsStationery); }
  FSVolumeRefNum VolumeRefNum() const { return Info().Catalog().volume; }

 private:
  bool HasNodeFlag(UInt16 flag) const { return (Info().Catalog().nodeFlags & flag) != 0; }
  bool HasFinderFlag(UInt16 flag) const { return (Info().FinderFlags() & flag) != 0; }

  FileLocation location_;
  MacFileInfo info_;
};

}  // namespace MacintoshPlatform
