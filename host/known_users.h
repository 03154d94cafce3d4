// Which users of a machine there may be directory records of.
#pragma once

#include <cstddef>
#include <vector>

#include "inspectors/activedirectory/directory/account_name.h"
#include "machine/machine.h"

namespace gatotu::host {

// More than a machine has; a list of more is broken off.
inline constexpr std::size_t kMostKnownUsers = 10'000;

// In the order of the console's sessions. Who they belong to is empty where nobody can tell.
std::vector<AccountName> UsersOfSessions(machine::Machine const& machine);

// Those of the local node that stand for people: from the system's first ordinary number up.
std::vector<AccountName> LocalUsers(machine::Machine const& machine);

}  // namespace gatotu::host
