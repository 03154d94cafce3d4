// Which folders a platform has for which purpose: one table each. A folder is found by the first
// row of its type and domain whose place is there.
#pragma once

#include <CoreServices/Folders.h>

#include <span>

// Sets of domains.
using DomainSet = UInt8;
inline constexpr DomainSet kInSystem = 1, kInLocal = 2, kInUser = 4, kInNetwork = 8,
                           kInClassic = 16;

// What a row's path lies below. Where the machine does not tell it, there is no such folder.
enum class FolderBase : UInt8 {
  kRoot,
  kLibrary,  // of the domain, see `SpecialFolderTable`
  kClassicSystem,
  kHome,
  kDataHome,           // $XDG_DATA_HOME
  kConfigurationHome,  // $XDG_CONFIG_HOME
  kCacheHome,          // $XDG_CACHE_HOME
  kTemporary,          // $TMPDIR
  kKernelModules,      // of the kernel that runs
  kUserDirectory,      // what the variable named by the path says in user-dirs.dirs
};

struct SpecialFolderRow {
  OSType type;
  DomainSet domains;
  FolderBase base;
  char const* path;  // empty for the base itself
};

struct DomainLibrary {
  DomainSet domain;
  FolderBase base;
  char const* path;
};

struct SpecialFolderTable {
  std::span<SpecialFolderRow const> rows;
  std::span<DomainLibrary const> libraries;  // none of the base `kLibrary`
};

extern SpecialFolderTable const kMacOSFolders, kLinuxFolders;
