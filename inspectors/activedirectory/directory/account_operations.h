// What a refresh asks the directory about an account. Each is true when it brought what was asked,
// and else `error` tells why not: nothing is thrown for what the directory does.
//
// The operations of groups ask the context between two groups whether to stop; the others take it
// to be called alike. All wait for the directory.
#pragma once

#include <string>
#include <vector>

#include "evaluator/plugin/export.h"
#include "inspectors/activedirectory/directory/active_directory_group.h"

class ActiveDirectoryInspectorContext;

namespace MacintoshPlatform {

// The distinguished name; left alone where the question fails, empty where nobody is known by the
// name.
GATOTU_API bool GetLocalComputerDistinguishedName(ActiveDirectoryInspectorContext const* context,
                                                  std::string& distinguished_name,
                                                  std::string& error);
// By the user's name alone: a domain is not asked for.
GATOTU_API bool GetLocalUserDistinguishedName(ActiveDirectoryInspectorContext const* context,
                                              std::string const& user, std::string const& domain,
                                              std::string& distinguished_name, std::string& error);

// The groups, of which only the SIDs are known then; left alone where there are none.
GATOTU_API bool GetLocalComputerGroupSids(ActiveDirectoryInspectorContext const* context,
                                          std::vector<ActiveDirectoryGroup>& groups,
                                          std::string& error);
GATOTU_API bool GetLocalUserGroupSids(ActiveDirectoryInspectorContext const* context,
                                      std::string const& user, std::string const& domain,
                                      std::vector<ActiveDirectoryGroup>& groups,
                                      std::string& error);

// Names the groups by their SIDs. A group that cannot be named says so itself; `error` is that of
// the last group. An error from before is kept where there are no groups.
GATOTU_API bool GetLocalComputerGroups(ActiveDirectoryInspectorContext const* context,
                                       std::vector<ActiveDirectoryGroup>& groups,
                                       std::string& error);
GATOTU_API bool GetLocalUserGroups(ActiveDirectoryInspectorContext const* context,
                                   std::vector<ActiveDirectoryGroup>& groups, std::string& error);

}  // namespace MacintoshPlatform
