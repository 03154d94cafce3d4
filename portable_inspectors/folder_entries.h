// What an open folder holds, item by item.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "machine/files.h"

// An AppleDouble file beside its item is part of that item, and not an entry.
struct FolderEntry {
  std::string_view name;  // until the next one is read
  machine::ItemKind kind = machine::ItemKind::kOther;
};

// `NoSuchObject` when there is no such folder any more; `MacintoshPlatform::FileLoopFailed` for one
// that cannot be opened, so that it does not pass for an empty one.
std::unique_ptr<machine::Folder> OpenFolder(std::string const& path);

// `MacintoshPlatform::FileLoopFailed` with `fnfErr` for a folder of a recorded machine whose
// entries nobody asked for at the time.
void ThrowIfNotRecorded(std::string const& path, machine::Absence const& absence);

// False after the last one. `MacintoshPlatform::FileLoopFailed` when reading fails.
bool ReadEntry(machine::Folder& open, std::string const& path, FolderEntry& entry);
