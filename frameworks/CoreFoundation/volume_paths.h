// HFS paths: the name of a volume and the components of a path, with `:` between. A `:` inside a
// POSIX component is a `/` in the HFS form and the other way round; `..` is an empty component.
// Paths are bytes as on disk.
#pragma once

#include <string>
#include <string_view>

namespace volume_paths {

// Of an absolute path, by the mount points of the machine in use, which are read anew at each call.
std::string HfsPathOf(std::string_view posix_path);
// ":a:b" of "a/b".
std::string RelativeHfsPathOf(std::string_view posix_path);

// False for an absolute path on a volume that is not there. A path that begins with a `:` is
// relative, and so is its POSIX form.
bool PosixPathOf(std::string_view hfs_path, std::string& posix_path);

}  // namespace volume_paths
