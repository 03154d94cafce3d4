// Copying, moving, deleting and creating items, whole trees, and unique and temporary names. Each
// function is the one of its name in namespace `MacintoshPlatform`, which says what it does and
// throws.
#pragma once

#include <cstdint>

#include "portable/file_location.h"
#include "portable/macintosh/file_operations.h"
#include "portable/macintosh/folder_contents.h"
#include "portable/macintosh/special_folder.h"
#include "portable/macintosh/unique_location.h"

inline void CopyFile(FileLocation const& from, FileLocation const& to) {
  MacintoshPlatform::CopyFile(from.Platform(), to.Platform());
}
inline void ForceCopyFile(FileLocation const& from, FileLocation const& to) {
  MacintoshPlatform::ForceCopyFile(from.Platform(), to.Platform());
}
inline void MoveFile(FileLocation const& from, FileLocation const& to) {
  MacintoshPlatform::MoveFile(from.Platform(), to.Platform());
}
inline void ForceMoveFile(FileLocation const& from, FileLocation const& to) {
  MacintoshPlatform::ForceMoveFile(from.Platform(), to.Platform());
}

inline void DeleteFile(FileLocation const& location) {
  MacintoshPlatform::DeleteFile(location.Platform());
}
inline void DeleteDirectory(FileLocation const& location) {
  MacintoshPlatform::DeleteDirectory(location.Platform());
}
inline void ForceNonexistence(FileLocation const& location) {
  MacintoshPlatform::ForceNonexistence(location.Platform());
}
inline void DeleteContents(FileLocation const& location) {
  MacintoshPlatform::DeleteContents(location.Platform());
}
inline void DeleteRecursive(FileLocation const& location) {
  MacintoshPlatform::DeleteRecursive(location.Platform());
}
inline void ForceDeleteContents(FileLocation const& location) {
  MacintoshPlatform::ForceDeleteContents(location.Platform());
}
inline void ForceDeleteRecursive(FileLocation const& location) {
  MacintoshPlatform::ForceDeleteRecursive(location.Platform());
}
inline void CopyDirectoryContents(FileLocation const& from, FileLocation const& to) {
  MacintoshPlatform::CopyDirectoryContents(from.Platform(), to.Platform());
}

inline void CreateDirectory(FileLocation const& location, DirectoryCreatingInfo const& info = {}) {
  MacintoshPlatform::CreateDirectory(location.Platform(), info);
}
inline void CreateFile(FileLocation const& location, FileCreatingInfo const& info = {}) {
  MacintoshPlatform::CreateFile(location.Platform(), info);
}
inline void ForceDirectoryExistence(FileLocation const& location,
                                    DirectoryCreatingInfo const& info = {}) {
  MacintoshPlatform::ForceDirectoryExistence(location.Platform(), info);
}
inline void CreateDirectoryTree(FileLocation const& location) {
  MacintoshPlatform::CreateDirectoryTree(location.Platform());
}
inline void CreateDirectoryForUserAppAccess(FileLocation const& location) {
  MacintoshPlatform::CreateDirectoryForUserAppAccess(location.Platform());
}

inline void SetFileReadOnly(FileLocation const& location, bool is_read_only) {
  MacintoshPlatform::SetFileReadOnly(location.Platform(), is_read_only);
}
inline std::uint64_t CalculateFreeSpace(FileLocation const& location) {
  return MacintoshPlatform::CalculateFreeSpace(location.Platform());
}

inline bool EqualOrDescendant(FileLocation const& ancestor, FileLocation const& location) {
  return MacintoshPlatform::EqualOrDescendant(ancestor.Platform(), location.Platform());
}
inline bool IsDescendant(FileLocation const& ancestor, FileLocation const& location) {
  return MacintoshPlatform::IsDescendant(ancestor.Platform(), location.Platform());
}

inline FileLocation CreateUniqueFileLocation(FileLocation const& directory, char const* hint) {
  return FileLocation(MacintoshPlatform::CreateUniqueFileLocation(directory.Platform(), hint));
}
inline FileLocation CreateUniqueDirLocation(FileLocation const& directory, char const* hint) {
  return FileLocation(MacintoshPlatform::CreateUniqueDirLocation(directory.Platform(), hint));
}
inline FileLocation CreateUniqueFileLocationWithHint(FileLocation const& location,
                                                     char const* hint) {
  return FileLocation(
      MacintoshPlatform::CreateUniqueFileLocationWithHint(location.Platform(), hint));
}

// On the volume that the system is on.
inline FileLocation TemporaryFileDirLocation() {
  return FileLocation(MacintoshPlatform::TemporaryFileDirLocation(kOnSystemDisk));
}
inline FileLocation LocationForTemporaryFile(FileLocation const& location) {
  return FileLocation(MacintoshPlatform::LocationForTemporaryFile(location.Platform()));
}
inline FileLocation LocationForTemporaryFile() {
  return LocationForTemporaryFile(TemporaryFileDirLocation());
}
// A new empty file in the folder for temporary files, whose name begins with the hint (may be
// null).
inline void MakeTemporaryFileLocation(FileLocation& out, char const* hint) {
  out = CreateUniqueFileLocation(TemporaryFileDirLocation(), hint);
}

// The first eight bytes of the location's name, read as YYYYMMDD whether digits or not: whoever
// needs a date looks at the result. `IllegalFileName` unless the name goes on behind them.
GATOTU_API void GetDateFromNameInFileLocation(FileLocation const& location, long& year, long& month,
                                              long& day);
