#include "portable/macintosh/file_info.h"

#include <cstring>

#include "portable/file_errors.h"

namespace MacintoshPlatform {

MacFileInfo::MacFileInfo(FileLocation const& location) noexcept {
  FSRef ref;
  FSCatalogInfo catalog;
  if (location.IsEmpty() || !CFURLGetFSRef(location.URL(), &ref)) return;
  if (FSGetCatalogInfo(&ref, kFields, &catalog, nullptr, nullptr, nullptr) != noErr) return;
  *this = MacFileInfo(catalog);
}

MacFileInfo::MacFileInfo(FSCatalogInfo const& catalog) noexcept
    : is_valid_(true), catalog_(catalog) {
  static_assert(sizeof finder_ == sizeof catalog.finderInfo);
  std::memcpy(&finder_, catalog.finderInfo, sizeof finder_);
}

void MacFileInfo::ThrowError(long code) { ThrowItemQueryError(code); }

}  // namespace MacintoshPlatform
