// Directory queries as LDAP has them, of the Active Directory kind.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/directory.h"
#include "machine/live/directory_ldap.h"

namespace machine::live {

// The search that finds the records; nothing where no record can match. Of the attributes it asks
// for those that any search tells.
std::optional<LdapSearch> SearchFor(DirectoryQuery const& query);

// Those requested attributes that servers work out for a search of the one record only.
std::vector<std::string> ComputedAttributes(DirectoryQuery const& query);

DirectoryRecord RecordOf(LdapEntry const& entry, std::string const& type, std::string const& node);

// Every byte that could mean something in a filter stands as "\" and two digits.
std::string EscapedForFilter(std::string_view bytes);

}  // namespace machine::live
