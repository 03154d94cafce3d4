// The node of the network's directory, over LDAP.
#pragma once

#include <memory>
#include <mutex>
#include <string>

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

// Keeps one connection between questions.
class NetworkDirectory {
 public:
  // Offers what the node has, or says why it has nothing.
  Fact<Done> Offer(DirectoryQuery const& query, NumberedSettings const& settings,
                   DirectoryAnswer& answer) const;

 private:
  std::unique_ptr<LdapConnection> TakeConnection(std::uint64_t settings) const;
  void KeepConnection(std::unique_ptr<LdapConnection> connection, std::uint64_t settings) const;

  mutable std::mutex guard_;
  mutable std::unique_ptr<LdapConnection> connection_;
  mutable std::uint64_t connected_with_ = 0;
};

}  // namespace machine::live
