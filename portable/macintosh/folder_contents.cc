#include "portable/macintosh/folder_contents.h"

#include <array>
#include <vector>

#include "portable/file_errors.h"
#include "portable/macintosh/file_loop.h"
#include "portable/macintosh/file_operations.h"
#include "portable/macintosh/folder_iterator.h"

namespace MacintoshPlatform {
namespace {

enum class Missing { kIsAnError, kIsFine };

// For an error's message, so without errors of its own.
FileLocation LocationOf(FSRef const& ref) {
  try {
    return FileLocation(ref);
  } catch (DebuggableException const&) {
    return {};
  }
}

// Empties folders with a stack of its own, for trees may be deeper than the thread's stack. A
// folder is read in portions: a portion's files are deleted at once, its folders are emptied first,
// and then the folder is read anew, since one that changes may not be read on.
class TreeDeletion {
 public:
  explicit TreeDeletion(Missing missing) : missing_(missing) {}

  void DeleteContents(FSRef const& folder) {
    pending_.push_back({folder, false});
    while (!pending_.empty()) {
      if (pending_.back().is_empty) {
        if (pending_.size() > 1) DeleteFolder(pending_.back().folder);
        pending_.pop_back();
      } else {
        DeletePortion();
      }
    }
  }

 private:
  static constexpr ItemCount kPortion = 64;

  struct Pending {
    FSRef folder;
    bool is_empty;
  };

  void DeletePortion() {
    std::size_t const at = pending_.size() - 1;
    ItemCount const count = ReadPortion(pending_[at].folder);
    bool has_progress = false;
    for (ItemCount i = 0; i < count; ++i) {
      if ((catalog_[i].nodeFlags & kFSNodeIsDirectoryMask) != 0) {
        pending_.push_back({children_[i], false});
        has_progress = true;
      } else if (Delete<FileDeleteFailed>(children_[i])) {
        has_progress = true;
      }
    }
    // What is listed and yet not there would be listed for ever.
    if (!has_progress) pending_[at].is_empty = true;
  }

  ItemCount ReadPortion(FSRef const& folder) {
    FolderIterator iterator(folder);
    OSErr code = iterator.Code();
    ItemCount count = 0;
    if (code == noErr) {
      std::tie(count, code) =
          iterator.Read(kPortion, kFSCatInfoNodeFlags, catalog_.data(), children_.data());
    }
    if (code == noErr || code == errFSNoMoreItems) return count;
    if (code == fnfErr && missing_ == Missing::kIsFine) return 0;
    if (code == fnfErr) throw FileNotFoundError(LocationOf(folder), code);
    throw FileLoopFailed(LocationOf(folder), code);
  }

  void DeleteFolder(FSRef const& folder) { Delete<DirectoryDeleteFailed>(folder); }

  // False for what is not there.
  template <typename Failed>
  bool Delete(FSRef const& item) {
    OSErr const code = FSDeleteObject(&item);
    if (code == noErr) return true;
    if (code == fnfErr && missing_ == Missing::kIsFine) return false;
    FileLocation const location = LocationOf(item);
    if (code == fnfErr) throw FileNotFoundError(location, code);
    if (code == fBsyErr) throw DirectoryNotEmpty(location, code);
    throw Failed(location, code);
  }

  Missing missing_;
  std::vector<Pending> pending_;
  std::array<FSCatalogInfo, kPortion> catalog_;
  std::array<FSRef, kPortion> children_;
};

void DeleteTree(FileLocation const& location, Missing missing) {
  MacFileInfo const info(location);
  if (info.IsValid() && (info.Catalog().nodeFlags & kFSNodeIsDirectoryMask) != 0) {
    TreeDeletion(missing).DeleteContents(location.Ref());
  }
  DeleteFile(location);
}

struct FolderPair {
  FileLocation from, to;
};

}  // namespace

void DeleteContents(FileLocation const& location) {
  TreeDeletion(Missing::kIsAnError).DeleteContents(location.Ref());
}

void DeleteRecursive(FileLocation const& location) { DeleteTree(location, Missing::kIsAnError); }

void ForceDeleteContents(FileLocation const& location) {
  try {
    TreeDeletion(Missing::kIsFine).DeleteContents(location.Ref());
  } catch (FileNotFoundError const&) {
    // Then there is nothing to delete.
  }
}

void ForceDeleteRecursive(FileLocation const& location) {
  try {
    DeleteTree(location, Missing::kIsFine);
  } catch (FileNotFoundError const&) {
    // As wished.
  }
}

void CopyDirectoryContents(FileLocation const& from, FileLocation const& to) {
  if (EqualOrDescendant(from, to)) throw FileCopyFailed(from, to, badMovErr);
  std::vector<FolderPair> pending{{from, to}};
  while (!pending.empty()) {
    FolderPair const folders = pending.back();
    pending.pop_back();
    FileLoop loop;
    for (loop.Start(folders.from); !loop.IsDone(); ++loop) {
      FileLocation const target(folders.to, loop->Name());
      MacFileInfo const present(target);
      if (loop->IsDirectory() && present.IsValid() &&
          (present.Catalog().nodeFlags & kFSNodeIsDirectoryMask) != 0) {
        pending.push_back({loop->Location(), target});
      } else {
        CopyFile(loop->Location(), target);
      }
    }
  }
}

bool EqualOrDescendant(FileLocation const& ancestor, FileLocation const& location) {
  if (ancestor.IsEmpty() || location.IsEmpty()) throw EmptyFileLocationError();
  FSRef const wanted = ancestor.Ref();
  FSRef at = location.Ref();
  while (FSCompareFSRefs(&at, &wanted) != noErr) {
    FSCatalogInfo catalog;
    FSRef parent;
    ThrowItemQueryError(
        FSGetCatalogInfo(&at, kFSCatInfoParentDirID, &catalog, nullptr, nullptr, &parent),
        ConstData(location.POSIXPath()));
    if (catalog.parentDirID == fsRtParID) return false;
    at = parent;
  }
  return true;
}

bool IsDescendant(FileLocation const& ancestor, FileLocation const& location) {
  if (ancestor.IsEmpty() || location.IsEmpty()) throw EmptyFileLocationError();
  return ancestor != location && EqualOrDescendant(ancestor, location);
}

}  // namespace MacintoshPlatform
