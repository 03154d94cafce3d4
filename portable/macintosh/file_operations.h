// Copying, moving, deleting and creating single items.
//
// A missing source throws `FileNotFoundError`, a missing folder on the way `FileNotFoundError` or
// `DirectoryNotFoundError`, as the platform says; all else the class named, with the code. Links
// are copied, moved and deleted themselves.
#pragma once

#include "portable/macintosh/file_location.h"

namespace MacintoshPlatform {

// A folder with all that is in it. `FileExists` when something stands at `to`; `FileCopyFailed`.
GATOTU_API void CopyFile(FileLocation const& from, FileLocation const& to);
// What stands at `to` is deleted first, unless the source is missing or stands there itself.
GATOTU_API void ForceCopyFile(FileLocation const& from, FileLocation const& to);
// In one step, within a volume. `FileExists`, `FileMoveFailed`.
GATOTU_API void MoveFile(FileLocation const& from, FileLocation const& to);
// As with the copy.
GATOTU_API void ForceMoveFile(FileLocation const& from, FileLocation const& to);

// One item of either kind. `DirectoryNotEmpty`, `FileDeleteFailed`.
GATOTU_API void DeleteFile(FileLocation const& location);
GATOTU_API void DeleteDirectory(FileLocation const& location);
// One item; that there is none is no error.
GATOTU_API void ForceNonexistence(FileLocation const& location);

// `DirectoryExists` or `FileExists` when something stands there; `DirectoryCreateFailed`,
// `FileCreateFailed`.
GATOTU_API void CreateDirectory(FileLocation const& location, DirectoryCreatingInfo const& info);
GATOTU_API void CreateFile(FileLocation const& location, FileCreatingInfo const& info);
// Unless there is a folder, or a link to one, already. `DirectoryExists` when something else stands
// there.
GATOTU_API void ForceDirectoryExistence(FileLocation const& location,
                                        DirectoryCreatingInfo const& info = {});
// With all folders above it that are missing. `FileFoundError` for what stands on the way and is no
// folder.
GATOTU_API void CreateDirectoryTree(FileLocation const& location);
// For what the applications of one user keep: that user alone may look into it.
GATOTU_API void CreateDirectoryForUserAppAccess(FileLocation const& location);

GATOTU_API void SetFileReadOnly(FileLocation const& location, bool is_read_only);
// Bytes that everybody may have, of the volume that holds the item.
GATOTU_API UInt64 CalculateFreeSpace(FileLocation const& location);

// Whether it is a folder or a link that leads to one at last.
GATOTU_API bool LeadsToDirectory(FileLocation const& location);

}  // namespace MacintoshPlatform
