// Preferences that hold for one host, on a machine that does not tell which host it is: their files
// are named "<application>.<host>.plist".
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "frameworks/CoreFoundation/file_state.h"

// The file of each application that has exactly one whose host is a UUID or the 12 digits of a
// network address; an empty name for an application that has several.
using HostFileNames = std::map<std::string, std::string>;

// The names in the folder used last, kept while that stays the same. Threads may share it.
class HostFolder {
 public:
  static HostFolder& Shared();

  // Never null; empty where there is no such folder. Asks for the folder's status.
  std::shared_ptr<HostFileNames const> NamesIn(std::string const& folder);

 private:
  std::mutex guard_;
  std::uint64_t machine_ = 0;
  std::string folder_;
  std::optional<FileState> state_;  // nothing while no folder is kept
  std::shared_ptr<HostFileNames const> names_;
};
