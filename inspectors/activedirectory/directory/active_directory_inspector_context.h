// What the host does for the directory inspectors and for the refresh of its records.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "evaluator/plugin/context.h"
#include "portable/file_location.h"

class ActiveDirectoryLocalComputer;
class ActiveDirectoryLocalUser;

// Reached from the host's context by a checked cast. The operations stay in this order, which is
// that of their slots; new ones come last.
class GATOTU_API ActiveDirectoryInspectorContext : public InspectorContext {
 public:
  virtual bool AreLookupsEnabled() const = 0;
  // Seconds between two readings.
  virtual std::uint32_t ComputerRefreshInterval() const = 0;
  // The same; `kNeverRefresh` for users that are read once and never again.
  virtual std::uint32_t UserRefreshInterval() const = 0;
  // Where the record is kept between runs; false, and nothing filled in, where it is not kept. A
  // user's name comes from outside and may hold any byte.
  virtual bool FindComputerCache(FileLocation& out) const = 0;
  virtual bool FindUserCache(std::string const& user_name, FileLocation& out) const = 0;
  // Two slots that hosts have and nobody calls.
  virtual void UnusedSlot5() const {}
  virtual void UnusedSlot6() const {}
  // The host's own records, null where it has none. Inspectors change their cache state and their
  // messages, and copy the rest.
  virtual ActiveDirectoryLocalComputer* LocalComputer() const = 0;
  virtual ActiveDirectoryLocalUser* LocalUser(std::string const& name,
                                              std::string const& domain) const = 0;
  // From 0 on, null after the last.
  virtual ActiveDirectoryLocalUser* LocalUserAt(std::uint32_t index) const = 0;
  virtual bool ShouldStop() const = 0;
  // The first by index of that name, whatever its letter case, or null: what a walk over all finds.
  // A host that does not know better answers nothing, and inspectors walk.
  virtual std::optional<ActiveDirectoryLocalUser*> FirstLocalUser(std::string const&) const {
    return std::nullopt;
  }

  static constexpr std::uint32_t kNeverRefresh = 0xFFFFFFFF;
};
