// Reading folders many items at a time.
#include <CoreServices/Files.h>

#include <map>
#include <mutex>

#include "frameworks/CoreServices/catalog_info.h"
#include "frameworks/CoreServices/file_names.h"
#include "frameworks/CoreServices/file_references.h"
#include "frameworks/CoreServices/folder_table.h"
#include "machine/never_destroyed.h"

struct OpaqueFSIterator {
  std::unique_ptr<machine::Folder> folder;
  std::string path;
  UInt32 number;  // of the folder
};

namespace {

// The open iterators, so that one that is closed already is known.
class Iterators {
 public:
  FSIterator Add(OpaqueFSIterator iterator) {
    auto owned = std::make_unique<OpaqueFSIterator>(std::move(iterator));
    FSIterator const handle = owned.get();
    std::lock_guard lock(guard_);
    open_.emplace(handle, std::move(owned));
    return handle;
  }
  bool Has(FSIterator handle) {
    std::lock_guard lock(guard_);
    return open_.count(handle) != 0;
  }
  bool Remove(FSIterator handle) {
    std::lock_guard lock(guard_);
    return open_.erase(handle) != 0;
  }

 private:
  std::mutex guard_;
  std::map<FSIterator, std::unique_ptr<OpaqueFSIterator>> open_;
};

Iterators& Open() {
  static machine::NeverDestroyed<Iterators> iterators;
  return *iterators;
}

// Where the next item's results go; null what is not wanted.
struct Results {
  FSCatalogInfoBitmap fields;
  FSCatalogInfo* infos;
  FSRef* refs;
  FSSpec* fs_specs;
  HFSUniStr255* names;

  void Put(ItemCount i, OpaqueFSIterator const& iterator, machine::FolderEntry const& entry) const {
    FSRef const ref = MakeRef(iterator.number, entry.name, entry.item.status);
    if (refs != nullptr) refs[i] = ref;
    if (names != nullptr) names[i] = UnicodeName(entry.name);
    if (infos == nullptr && fs_specs == nullptr) return;
    std::string const path = ItemPath(iterator.path, entry.name);
    if (infos != nullptr) infos[i] = MakeCatalogInfo(fields, ref, entry.item, path);
    if (fs_specs != nullptr) fs_specs[i] = MakeSpec(ref, VolumeOf(entry.item.status, path));
  }
};

}  // namespace

OSErr FSOpenIterator(FSRef const* container, FSIteratorFlags iteratorFlags, FSIterator* iterator) {
  if (iteratorFlags != kFSIterateFlat) return errFSBadIteratorFlags;
  FoundItem found = FindFolder(container);
  if (found.code != noErr) return found.code;
  auto folder = MachineFiles().OpenFolder(found.path);
  if (!folder) return CodeOf(folder.absence(), found.path);
  if (!folder.value()->Status().is_same_item(found.item.status)) return dirNFErr;
  *iterator = Open().Add({std::move(folder.value()), std::move(found.path), NumberOf(*container)});
  return noErr;
}

OSErr FSCloseIterator(FSIterator iterator) {
  return Open().Remove(iterator) ? OSErr{noErr} : OSErr{errFSIteratorNotFound};
}

OSErr FSGetCatalogInfoBulk(FSIterator iterator, ItemCount maximumObjects, ItemCount* actualObjects,
                           Boolean* containerChanged, FSCatalogInfoBitmap whichInfo,
                           FSCatalogInfo* catalogInfos, FSRef* refs, FSSpec* fs_specs,
                           HFSUniStr255* names) {
  if (!Open().Has(iterator)) return errFSIteratorNotFound;
  if (maximumObjects == 0) return errFSBadItemCount;
  if (containerChanged != nullptr) *containerChanged = false;
  *actualObjects = 0;
  machine::Detail const detail =
      catalogInfos == nullptr ? machine::Detail::kStatus : DetailFor(whichInfo);
  Results const results = {whichInfo, catalogInfos, refs, fs_specs, names};
  while (*actualObjects < maximumObjects) {
    auto const entry = iterator->folder->Next(detail);
    if (!entry) return CodeOf(entry.absence(), iterator->path);
    if (*entry == nullptr) break;
    if ((*entry)->is_companion) continue;
    results.Put((*actualObjects)++, *iterator, **entry);
  }
  return *actualObjects == 0 ? OSErr{errFSNoMoreItems} : OSErr{noErr};
}
