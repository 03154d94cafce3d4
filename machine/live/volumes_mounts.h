// The kernel's table of mounts, as libmount reads it. Reading lies in a library of its own, which
// is opened at the first need.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace machine::live {

struct Mount {
  std::uint64_t number = 0, parent = 0;
  std::uint64_t device = 0;
  std::string root;    // the folder of the file system that is mounted
  std::string point;   // where
  std::string type;    // of the file system
  std::string source;  // as a rule a device
  // A file system that holds no files of anyone.
  bool is_pseudo = false;
  // One that its user alone may look into, who is not the one who asks.
  bool is_private = false;
};

// In the table's order. A line that is no mount is left out.
using MountReader = void (*)(std::string_view table, std::vector<Mount>& mounts);
inline constexpr char kMountReaderName[] = "GatotuReadMounts";

}  // namespace machine::live
