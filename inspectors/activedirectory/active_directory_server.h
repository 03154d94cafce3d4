// The directory as inspectors see it: the records that the host keeps, handed out as copies.
// Nothing here waits for a directory. A record that was not read yet is marked as asked for, says
// so in both its messages, and is there once the host has refreshed it.
#pragma once

#include <string>
#include <vector>

#include "evaluator/plugin/type_name.h"
#include "inspectors/activedirectory/directory/active_directory_inspector_context.h"
#include "inspectors/activedirectory/directory/active_directory_local_computer.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"

// The host's, null where it has none of this kind.
ActiveDirectoryInspectorContext const* CurrentDirectoryContext();

// Every context may be null: then there is nothing. The questions about users have no answer either
// where the host does not allow look-ups. Names are compared without regard to case.
class ActiveDirectoryServer {
 public:
  static ActiveDirectoryServer const& The();

  // True with the record as the directory gave it. False with one that was just asked for, and
  // with `out` left alone where the host has none.
  bool GetLocalComputer(ActiveDirectoryInspectorContext const* context,
                        ActiveDirectoryLocalComputer& out) const;
  bool GetLocalUser(ActiveDirectoryInspectorContext const* context, std::string const& name,
                    std::string const& domain, ActiveDirectoryLocalUser& out) const;
  // The first of the host's records of that name, whatever its domain.
  bool GetLocalUser(ActiveDirectoryInspectorContext const* context, std::string const& name,
                    ActiveDirectoryLocalUser& out) const;

  // All that the host has, read or not, and none is asked for; empty where there is no answer.
  bool GetLocalUsers(ActiveDirectoryInspectorContext const* context,
                     std::vector<ActiveDirectoryLocalUser>& list) const;

  // These throw what `MacintoshPlatform::GetLoggedInUsers` throws. Of the users on the console,
  // those whose records were read; the list is left alone where there is no answer.
  bool GetLoggedOnUsers(ActiveDirectoryInspectorContext const* context,
                        std::vector<ActiveDirectoryLocalUser>& list) const;
  // The first on the console of that name and, unless it is empty, domain. True, with `out` left
  // alone, also for a user who is not there: callers look at what they got.
  bool GetLoggedOnUser(ActiveDirectoryInspectorContext const* context, std::string const& name,
                       std::string const& domain, ActiveDirectoryLocalUser& out) const;
  bool GetLoggedOnUser(ActiveDirectoryInspectorContext const* context, std::string const& name,
                       ActiveDirectoryLocalUser& out) const;
};

template <>
struct InspectorTypeName<ActiveDirectoryServer> {
  static constexpr char const* kName = "active directory server";
};
