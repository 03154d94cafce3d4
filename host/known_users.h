// Which users of a machine there may be directory records of.
#pragma once

#include <string>
#include <vector>

#include "machine/machine.h"

namespace gatotu::host {

// A user as a directory knows them.
struct AccountName {
  std::string name, domain;  // bytes of any kind; the domain may be empty

  bool operator==(AccountName const&) const = default;
  auto operator<=>(AccountName const&) const = default;
};

// "DOMAIN\name" or "name@domain" taken apart; what is neither is a name.
AccountName TakeApart(std::string const& text);

// More than a machine has; a list of more is broken off.
inline constexpr std::size_t kMostKnownUsers = 10'000;

// In the order of the console's sessions. Who they belong to is empty where nobody can tell.
std::vector<AccountName> UsersOfSessions(machine::Machine const& machine);

// Those of the local node that stand for people: from the system's first ordinary number up.
std::vector<AccountName> LocalUsers(machine::Machine const& machine);

}  // namespace gatotu::host
