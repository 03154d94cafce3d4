// What a search of many entries does not tell of each, asked of the entry itself.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "machine/live/directory_ldap.h"

namespace machine::live {

LdapSearch SearchOfEntry(std::string const& name, std::vector<std::string> attributes);

// Adds the attributes, and the rest of those values of which a server sent only the first: of long
// lists it sends "member;range=0-1499" and wants to be asked for what is behind. Why not, where it
// failed.
std::optional<Absence> CompleteEntry(LdapConnection& connection,
                                     std::vector<std::string> const& attributes,
                                     Patience const& patience, LdapEntry& entry);

}  // namespace machine::live
