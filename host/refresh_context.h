// What the reading of directory records has of the host: nothing but what never changes, and the
// request to stop.
#pragma once

#include <functional>
#include <utility>

#include "host/directory_cache.h"
#include "host/directory_options.h"
#include "inspectors/activedirectory/directory/active_directory_inspector_context.h"

namespace gatotu::host {

// For any thread for which `should_stop` is.
class RefreshContext final : public ActiveDirectoryInspectorContext {
 public:
  RefreshContext(DirectoryOptions const& options, std::function<bool()> should_stop)
      : is_enabled_(options.is_enabled),
        computer_interval_(options.computer_interval),
        user_interval_(options.user_interval),
        cache_(options.cache_folder),
        should_stop_(std::move(should_stop)) {}

  bool AreLookupsEnabled() const override { return is_enabled_; }
  std::uint32_t ComputerRefreshInterval() const override { return computer_interval_; }
  std::uint32_t UserRefreshInterval() const override { return user_interval_; }
  // What is asked for here is about to be written.
  bool FindComputerCache(FileLocation& out) const override {
    return cache_.Prepare(cache_.ComputerFile()) && cache_.FindComputerFile(out);
  }
  bool FindUserCache(std::string const& user_name, FileLocation& out) const override {
    return cache_.Prepare(cache_.UserFile(user_name)) && cache_.FindUserFile(user_name, out);
  }
  // The records are the evaluating thread's.
  ActiveDirectoryLocalComputer* LocalComputer() const override { return nullptr; }
  ActiveDirectoryLocalUser* LocalUser(std::string const&, std::string const&) const override {
    return nullptr;
  }
  ActiveDirectoryLocalUser* LocalUserAt(std::uint32_t) const override { return nullptr; }
  bool ShouldStop() const override { return should_stop_(); }

 private:
  bool const is_enabled_;
  std::uint32_t const computer_interval_, user_interval_;
  DirectoryCache const cache_;
  std::function<bool()> const should_stop_;
};

}  // namespace gatotu::host
