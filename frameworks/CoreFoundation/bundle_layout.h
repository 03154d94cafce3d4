// Where a bundle's folder keeps what describes it.
#pragma once

#include <CoreFoundation/CFDictionary.h>

#include <cstddef>
#include <span>
#include <string>

namespace bundle_layout {

// What makes a folder a bundle: an Info.plist or a PkgInfo of one of the layouts, in their order.
// All are paths below the folder.
std::span<std::string const> Descriptions();
// In the layout that has the description of this index. Folders are paths without a `/` at their
// end.
std::string PackagePath(std::string const& folder, std::size_t description);
std::string ResourcesPath(std::string const& folder, std::size_t description);

// The information dictionary, null when the description is a PkgInfo; else as the next one.
CFDictionaryRef ReadInfo(std::string const& folder, std::size_t description);
// A property list of the machine in use whose root is a dictionary, with one reference for the
// caller; null for all else, and for files of more than 16 MiB.
CFDictionaryRef ReadDictionary(std::string const& path);

}  // namespace bundle_layout
