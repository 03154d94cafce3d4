#include "portable/macintosh/file_item.h"

#include "portable/file_errors.h"

namespace MacintoshPlatform {

bool FileItem::TryToGet() {
  info_ = MacFileInfo(location_);
  return info_.IsValid();
}

bool FileItem::TryToGet(FileLocation const& location) {
  location_ = location;
  return TryToGet();
}

void FileItem::Get(FileLocation const& location) {
  if (!TryToGet(location)) throw FileItemError(location, 0);
}

MacFileInfo const& FileItem::Info() const {
  if (!info_.IsValid()) throw FileItemError(location_, 0);
  return info_;
}

}  // namespace MacintoshPlatform
