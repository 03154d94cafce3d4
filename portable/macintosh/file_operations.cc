#include "portable/macintosh/file_operations.h"

#include <vector>

#include "portable/file_errors.h"
#include "portable/macintosh/file_info.h"

namespace MacintoshPlatform {
namespace {

// What the code of a copy or a move means; the source's and the destination's paths are told.
template <typename Failed>
void ThrowTransferError(OSErr code, FileLocation const& from, FileLocation const& to) {
  switch (code) {
    case noErr:
      return;
    case fnfErr:
      throw FileNotFoundError(from, code);
    case dupFNErr:
      throw FileExists(to, code);
    default:
      throw Failed(from, to, code);
  }
}

// The same name in the same folder, whether or not anything stands there.
bool AreSamePlace(FileLocation const& a, FileLocation const& b) {
  if (a.IsRoot() || b.IsRoot()) return a.IsRoot() && b.IsRoot();
  FSRef const parent_a = a.ParentRef();
  FSRef const parent_b = b.ParentRef();
  return FSCompareFSRefs(&parent_a, &parent_b) == noErr && Equal(a.Name(), b.Name());
}

bool IsDirectory(FileLocation const& location) {
  MacFileInfo const info(location);
  return info.IsValid() && (info.Catalog().nodeFlags & kFSNodeIsDirectoryMask) != 0;
}

void DeleteItem(FileLocation const& location) {
  FSRef const ref = location.Ref();
  OSErr const code = FSDeleteObject(&ref);
  switch (code) {
    case noErr:
      return;
    case fnfErr:
      throw FileNotFoundError(location, code);
    case fBsyErr:
      throw DirectoryNotEmpty(location, code);
    default:
      throw FileDeleteFailed(location, code);
  }
}

}  // namespace

void CopyFile(FileLocation const& from, FileLocation const& to) {
  FSRef const source = from.Ref();
  FSRef const parent = to.ParentRef();
  FileName const name = to.Name();
  ThrowTransferError<FileCopyFailed>(
      FSCopyObject(&source, &parent, name.Count(), name.Units(), nullptr), from, to);
}

void ForceCopyFile(FileLocation const& from, FileLocation const& to) {
  from.Ref();
  if (AreSamePlace(from, to)) return;
  ForceNonexistence(to);
  CopyFile(from, to);
}

void MoveFile(FileLocation const& from, FileLocation const& to) {
  FSRef const source = from.Ref();
  FSRef const parent = to.ParentRef();
  FileName const name = to.Name();
  ThrowTransferError<FileMoveFailed>(
      FSMoveRenameObjectUnicode(&source, &parent, name.Count(), name.Units(), 0, nullptr), from,
      to);
}

void ForceMoveFile(FileLocation const& from, FileLocation const& to) {
  if (!from.Exists()) throw FileNotFoundError(from, fnfErr);
  if (AreSamePlace(from, to)) return;
  ForceNonexistence(to);
  MoveFile(from, to);
}

void DeleteFile(FileLocation const& location) { DeleteItem(location); }

void DeleteDirectory(FileLocation const& location) { DeleteItem(location); }

void ForceNonexistence(FileLocation const& location) {
  try {
    DeleteItem(location);
  } catch (FileNotFoundError const&) {
    // As wished.
  }
}

void CreateDirectory(FileLocation const& location, DirectoryCreatingInfo const& info) {
  location.CreateDirectory(info);
}

void CreateFile(FileLocation const& location, FileCreatingInfo const& info) {
  location.CreateFile(info);
}

bool LeadsToDirectory(FileLocation const& location) {
  if (!location.IsSymLink()) return IsDirectory(location);
  try {
    return IsDirectory(location.ResolveAliasFile());
  } catch (FileIOError const&) {
    return false;
  }
}

void ForceDirectoryExistence(FileLocation const& location, DirectoryCreatingInfo const& info) {
  if (LeadsToDirectory(location)) return;
  if (location.Exists()) throw DirectoryExists(location, dupFNErr);
  try {
    location.CreateDirectory(info);
  } catch (DirectoryExists const&) {
    // Somebody else was faster, perhaps with what is wanted.
    if (!LeadsToDirectory(location)) throw;
  }
}

void CreateDirectoryTree(FileLocation const& location) {
  // From below upwards until a folder stands, then back down: paths may be of any depth.
  std::vector<FileLocation> missing;
  for (FileLocation at = location;; at = FileLocation(at.ParentURL())) {
    if (LeadsToDirectory(at)) break;
    if (at.Exists()) throw FileFoundError(at, 0);
    missing.push_back(at);
    if (at.IsRoot()) break;
  }
  for (; !missing.empty(); missing.pop_back()) ForceDirectoryExistence(missing.back());
}

void CreateDirectoryForUserAppAccess(FileLocation const& location) {
  DirectoryCreatingInfo info;
  info.mode = 0700;
  CreateDirectory(location, info);
}

void SetFileReadOnly(FileLocation const& location, bool is_read_only) {
  MacFileInfo info(location);
  if (is_read_only) {
    location.Lock(info);
  } else {
    location.Unlock(info);
  }
}

UInt64 CalculateFreeSpace(FileLocation const& location) {
  FSRef const ref = location.Ref();
  FSCatalogInfo catalog;
  ThrowItemQueryError(FSGetCatalogInfo(&ref, kFSCatInfoVolume, &catalog, nullptr, nullptr, nullptr),
                      ConstData(location.POSIXPath()));
  FSVolumeInfo volume = {};
  ThrowItemQueryError(
      FSGetVolumeInfo(catalog.volume, 0, nullptr, kFSVolInfoSizes, &volume, nullptr, nullptr),
      ConstData(location.POSIXPath()));
  return volume.freeBytes;
}

}  // namespace MacintoshPlatform
