// What a host does for directory records, with their cache files in a folder.
#pragma once

#include <climits>
#include <string>

#include "inspectors/activedirectory/directory/active_directory_inspector_context.h"
#include "tests/portable/temporary_folder.h"

// Keeps the computer's record, and those of users whose names are names of files.
class FolderContext : public ActiveDirectoryInspectorContext {
 public:
  explicit FolderContext(TemporaryFolder const& folder) : folder_(folder) {}

  bool keeps_computer = true;
  bool is_enabled = true;
  // Of both kinds.
  std::uint32_t interval = 0;
  // So often the answer is to go on.
  int stops_after = INT_MAX;

  bool AreLookupsEnabled() const override { return is_enabled; }
  std::uint32_t ComputerRefreshInterval() const override { return interval; }
  std::uint32_t UserRefreshInterval() const override { return interval; }
  bool FindComputerCache(FileLocation& out) const override {
    if (keeps_computer) out = folder_.At("computer.xml");
    return keeps_computer;
  }
  bool FindUserCache(std::string const& user_name, FileLocation& out) const override {
    if (user_name.empty() || user_name.find('/') != std::string::npos) return false;
    out = folder_.At("user-" + user_name);
    return true;
  }
  ActiveDirectoryLocalComputer* LocalComputer() const override { return nullptr; }
  ActiveDirectoryLocalUser* LocalUser(std::string const&, std::string const&) const override {
    return nullptr;
  }
  ActiveDirectoryLocalUser* LocalUserAt(std::uint32_t) const override { return nullptr; }
  bool ShouldStop() const override { return stops_asked_++ >= stops_after; }

 private:
  TemporaryFolder const& folder_;
  mutable int stops_asked_ = 0;
};
