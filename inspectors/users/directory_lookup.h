// What the users' inspectors ask of the directory.
#pragma once

#include <string>

#include "inspectors/activedirectory/directory/record_lookup.h"

class ActiveDirectoryInspectorContext;
class ActiveDirectoryLocalUser;

inline constexpr char kUsersRecordType[] = "dsRecTypeStandard:Users";

// The host's record of a local user, as the Active Directory server object answers; the context may
// be null. False when there is none or it was not read yet.
bool GetActiveDirectoryUser(ActiveDirectoryInspectorContext const* context, std::string const& name,
                            ActiveDirectoryLocalUser& found);
