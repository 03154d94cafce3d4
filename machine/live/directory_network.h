// The node of the network's directory, over LDAP.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "machine/directory_records.h"
#include "machine/files.h"
#include "machine/live/directory_ldap.h"
#include "machine/live/root.h"

namespace machine::live {

// A snapshot of `SetDirectorySettings` and its number.
struct NumberedSettings {
  std::shared_ptr<DirectorySettings const> settings;
  std::uint64_t number = 0;
};
NumberedSettings CurrentDirectorySettings();

// Whether a server is configured, without loading the LDAP library.
bool IsNetworkDirectoryConfigured(Root const& root, DirectorySettings const& settings);

// Keeps one connection between questions. A server that let a question run out of time is not asked
// again for as long, unless the settings change: an account of 1,000 groups would wait for it with
// each of them.
class NetworkDirectory {
 public:
  // Offers what the node has, or says why it has nothing.
  Fact<Done> Offer(DirectoryQuery const& query, NumberedSettings const& settings,
                   DirectoryAnswer& answer) const;

 private:
  using Clock = std::chrono::steady_clock;
  using Records = Fact<DirectoryRecords>;

  // Of the server that the settings of this number lead to.
  struct Known {
    std::uint64_t settings = 0;
    std::unique_ptr<LdapConnection> connection;
    Clock::time_point silent_until;
  };

  Records Ask(DirectoryQuery const& query, LdapSearch const& search,
              NumberedSettings const& settings) const;
  bool IsSilent(NumberedSettings const& settings) const;
  void SetSilentUntil(Clock::time_point time, NumberedSettings const& settings) const;
  std::unique_ptr<LdapConnection> TakeConnection(NumberedSettings const& settings) const;
  void KeepConnection(std::unique_ptr<LdapConnection> connection,
                      NumberedSettings const& settings) const;
  // To be called and used under the guard.
  Known& KnownWith(NumberedSettings const& settings) const;

  mutable std::mutex guard_;
  mutable Known known_;
};

}  // namespace machine::live
