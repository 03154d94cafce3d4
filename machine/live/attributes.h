// Extended attributes that keep what a Macintosh knows of an item. Paths are the running system's
// and a last link is not followed.
#pragma once

#include <optional>
#include <string>

#include "machine/files.h"

namespace machine::live {

// The attributes' full names, empty where the item has none of the kind.
struct AppleAttributes {
  std::string finder_info, resource_fork;
};

// The item by its folder and name too, which newer kernels answer faster.
AppleAttributes FindAppleAttributes(int folder, char const* name, char const* path);
// Nothing when it is gone or has no bytes.
std::optional<FinderInfo> ReadFinderInfo(char const* path, std::string const& attribute);
std::optional<std::uint64_t> AttributeSize(char const* path, std::string const& attribute);
std::optional<std::string> ReadAttribute(char const* path, std::string const& attribute);

// As lsetxattr.
int WriteFinderInfo(char const* path, FinderInfo const& info);
int WriteResourceFork(char const* path, std::string const& content);

// Gives an item what another has. Attributes that this process may not set, or that mean nothing
// on the other file system, are left out, but not what a Macintosh keeps: then false, with `errno`.
bool CopyAttributes(char const* from, char const* to);

}  // namespace machine::live
