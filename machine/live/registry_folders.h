// The folders that nodes of the registry stand for.
#pragma once

#include <dirent.h>

#include <memory>
#include <string>
#include <string_view>

#include "machine/fact.h"
#include "machine/live/root.h"
#include "machine/registry.h"

namespace machine::live {

// Shared by all nodes of a machine, which may outlive it.
using SharedRoot = std::shared_ptr<Root const>;

inline constexpr std::string_view kServicePlane = "IOService", kDeviceTreePlane = "IODeviceTree";

// Below it every folder is a device, or groups some.
inline constexpr std::string_view kDeviceFolder = "/sys/devices";

std::string_view LastName(std::string_view path);

// Whether a path leads to a folder, and that folder has no other path.
bool IsFolderItself(Root const& root, std::string const& path);

// What a node that has its folder's path for its identity is told apart by: equal for equal paths
// and, in 64 bits, for no others.
std::uint64_t IdentityOfPath(std::string_view path);

// The name of a device's bus or class, as its link "subsystem" has it.
Fact<std::string> SubsystemOf(Root const& root, std::string const& path);

// A folder's entries of one kind, straight from the kernel and some at a time.
class EntryReader {
 public:
  // An open folder, or none: one that has no entries.
  EntryReader(FileDescriptor folder, unsigned char kind)
      : folder_(std::move(folder)), kind_(kind) {}

  // Null after the last, "." and ".." left out. Good until the next call.
  char const* Next();

 private:
  bool Refill();
  bool IsWanted(dirent64 const& entry) const;

  FileDescriptor folder_;
  unsigned char kind_;
  long at_ = 0, size_ = 0;
  alignas(dirent64) char buffer_[8192];
};

}  // namespace machine::live
