// Where a bundle's folder keeps what describes it.
#pragma once

#include <CoreFoundation/CFDictionary.h>

#include <optional>
#include <string>

#include "machine/files.h"

namespace bundle_layout {

// What tells one state of a file from another.
struct FileState {
  machine::ItemKind kind = machine::ItemKind::kOther;
  std::uint64_t device = 0, inode = 0, bytes = 0;
  std::int64_t modified_seconds = 0, changed_seconds = 0;
  std::uint32_t modified_nanoseconds = 0, changed_nanoseconds = 0;

  bool operator==(FileState const&) const = default;
};
// Links are followed. Nothing where there is no file, or it may not be looked at.
std::optional<FileState> StateOf(std::string const& path);
// Whether a change that comes after this moment is sure to show in the state: file systems keep
// time in steps, and two changes within one look alike.
bool IsSettled(FileState const& state);

// What makes a folder a bundle: the first Info.plist or PkgInfo of the layouts in their order. As
// long as the same one is found in the same state, the information dictionary is the same.
struct Description {
  std::size_t layout = 0;
  bool is_info = false;  // Info.plist, else PkgInfo
  FileState state;

  bool operator==(Description const&) const = default;
};
std::optional<Description> FindDescription(std::string const& folder);

// Paths within a layout of a bundle's folder.
std::string InfoPath(std::string const& folder, std::size_t layout);
std::string PackageInfoPath(std::string const& folder, std::size_t layout);
std::string ResourcesPath(std::string const& folder, std::size_t layout);

// A property list whose root is a dictionary, with one reference for the caller; null for all else,
// and for files of more than 16 MiB.
CFDictionaryRef ReadDictionary(std::string const& path);

}  // namespace bundle_layout
