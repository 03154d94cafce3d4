// Whole trees of folders, of any depth. Links in them are items and never followed.
#pragma once

#include "portable/macintosh/file_location.h"

namespace MacintoshPlatform {

// Everything in a folder, the depths first; the folder stays. Stops at the first thing that goes
// wrong: `FileLoopFailed` where a folder cannot be listed (also for what is no folder),
// `FileDeleteFailed` for a file, `DirectoryDeleteFailed` or `DirectoryNotEmpty` for a folder,
// `FileNotFoundError` for an item that vanished meanwhile.
GATOTU_API void DeleteContents(FileLocation const& location);
// Then the item itself, which need not be a folder.
GATOTU_API void DeleteRecursive(FileLocation const& location);
// The same, but what is not there, or not any more, is no error, and the rest is deleted.
GATOTU_API void ForceDeleteContents(FileLocation const& location);
GATOTU_API void ForceDeleteRecursive(FileLocation const& location);

// Each child of `from` into `to`, folders with all that is in them. A folder that is there already
// is filled up; a file that is there already is `FileExists`. Throws else what copying and
// `FileLoop` throw, and `FileCopyFailed` when `to` is `from` or lies inside it.
GATOTU_API void CopyDirectoryContents(FileLocation const& from, FileLocation const& to);

// By item identity, stepping from `location` to its parents; both must exist.
// `EmptyFileLocationError` for an empty one.
GATOTU_API bool EqualOrDescendant(FileLocation const& ancestor, FileLocation const& location);
// The same without the equal.
GATOTU_API bool IsDescendant(FileLocation const& ancestor, FileLocation const& location);

}  // namespace MacintoshPlatform
