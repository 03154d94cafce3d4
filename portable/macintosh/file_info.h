// What one catalogue query said about an item.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/CoreServices.h>

#include "portable/macintosh/file_location.h"

namespace MacintoshPlatform {

class GATOTU_API MacFileInfo {
 public:
  // All zeros and invalid.
  MacFileInfo() = default;
  // Asks at once. Never throws: what cannot be queried leaves this invalid.
  explicit MacFileInfo(FileLocation const& location) noexcept;
  // From a query of `kFields` that was made already.
  explicit MacFileInfo(FSCatalogInfo const& catalog) noexcept;

  // What is asked for: all but what would take a folder's reading (its valence).
  static constexpr FSCatalogInfoBitmap kFields =
      kFSCatInfoNodeFlags | kFSCatInfoVolume | kFSCatInfoParentDirID | kFSCatInfoNodeID |
      kFSCatInfoAllDates | kFSCatInfoPermissions | kFSCatInfoFinderInfo | kFSCatInfoFinderXInfo |
      kFSCatInfoDataSizes | kFSCatInfoRsrcSizes;

  bool IsValid() const { return is_valid_; }
  FSCatalogInfo const& Catalog() const { return catalog_; }
  // Of a file's or a folder's Finder record.
  UInt16 FinderFlags() const { return finder_.finderFlags; }

  // What the code of an item query means: `ThrowItemQueryError`.
  static void ThrowError(long code);

 private:
  friend class FileLocation;

  bool is_valid_ = false;
  FSCatalogInfo catalog_ = {};
  FileInfo finder_ = {};
};

}  // namespace MacintoshPlatform
