// The platform's iterator over a folder, closed on every path.
#pragma once

#include <CoreServices/CoreServices.h>

#include <utility>

namespace MacintoshPlatform {

class FolderIterator {
 public:
  // The code tells whether it is open.
  explicit FolderIterator(FSRef const& folder)
      : code_(FSOpenIterator(&folder, kFSIterateFlat, &iterator_)) {}
  FolderIterator(FolderIterator const&) = delete;
  FolderIterator& operator=(FolderIterator const&) = delete;
  ~FolderIterator() {
    if (code_ == noErr) FSCloseIterator(iterator_);
  }

  OSErr Code() const { return code_; }

  // How many came, and `errFSNoMoreItems` after the last. `catalog` may be null, or has room for as
  // many as `children`.
  std::pair<ItemCount, OSErr> Read(ItemCount most, FSCatalogInfoBitmap fields,
                                   FSCatalogInfo* catalog, FSRef* children) {
    ItemCount count = 0;
    OSErr const code = FSGetCatalogInfoBulk(iterator_, most, &count, nullptr, fields, catalog,
                                            children, nullptr, nullptr);
    return {code == noErr || code == errFSNoMoreItems ? count : 0, code};
  }

 private:
  FSIterator iterator_ = nullptr;
  OSErr code_;
};

}  // namespace MacintoshPlatform
