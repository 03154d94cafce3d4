#include "inspectors/activedirectory/directory/account_operations.h"

#include <CoreServices/CoreServices.h>
#include <DirectoryService/DirectoryService.h>

#include "inspectors/activedirectory/directory/active_directory_inspector_context.h"
#include "inspectors/activedirectory/directory/directory_queries.h"
#include "portable/core_foundation/strings.h"

namespace MacintoshPlatform {
namespace {

// Up to the first character that Mac Roman lacks; empty where the machine has no name, which no
// account has either.
std::string MachineName() {
  AutoCFString name;
  name.Seize(CSCopyMachineName());
  return name.Get() == nullptr ? std::string()
                               : MakeString(name.Get(), kCFStringEncodingMacRoman, 0);
}

bool GetDistinguishedName(ADAttributeArgs const& args, std::string& distinguished_name,
                          std::string& error) {
  error = CallODRoutineAndCatchError(GetDNInternal, args, distinguished_name);
  if (error.empty() && distinguished_name.empty()) error = "No distinguishedName found";
  return error.empty();
}

bool GetGroupSids(ADAttributeArgs const& args, std::vector<ActiveDirectoryGroup>& groups,
                  std::string& error) {
  std::vector<ActiveDirectoryGroup> found;
  error = CallODRoutineAndCatchError(GetSIDsInternal, args, found);
  if (error.empty() && found.empty()) error = "No tokenGroups found";
  if (!error.empty()) return false;
  groups = std::move(found);
  return true;
}

std::string NameGroup(ActiveDirectoryGroup& group) {
  ActiveDirectoryGroup answer;
  std::string error = CallODRoutineAndCatchError(GetGroupInternal,
                                                 {group.GetSid(), kDSStdRecordTypeGroups}, answer);
  if (answer.GetName().empty() || answer.GetDistinguishedName().empty()) {
    group.SetErrorMessage("No distinguishedName Found");
    return error;
  }
  group.SetName(answer.GetName());
  group.SetDistinguishedName(answer.GetDistinguishedName());
  return error;
}

bool GetGroups(ActiveDirectoryInspectorContext const* context,
               std::vector<ActiveDirectoryGroup>& groups, std::string& error) {
  if (groups.empty()) {
    if (error.empty()) error = "No SIDs to evaluate";
    return false;
  }
  for (ActiveDirectoryGroup& group : groups) {
    if (context != nullptr && context->ShouldStop()) {
      error = "Client Requested Shutdown";
      return false;
    }
    error = NameGroup(group);
  }
  return error.empty();
}

}  // namespace

bool GetLocalComputerDistinguishedName(ActiveDirectoryInspectorContext const*,
                                       std::string& distinguished_name, std::string& error) {
  return GetDistinguishedName({MachineName(), kDSStdRecordTypeComputers}, distinguished_name,
                              error);
}

bool GetLocalUserDistinguishedName(ActiveDirectoryInspectorContext const*, std::string const& user,
                                   std::string const& /*domain*/, std::string& distinguished_name,
                                   std::string& error) {
  return GetDistinguishedName({user, kDSStdRecordTypeUsers}, distinguished_name, error);
}

bool GetLocalComputerGroupSids(ActiveDirectoryInspectorContext const*,
                               std::vector<ActiveDirectoryGroup>& groups, std::string& error) {
  return GetGroupSids({MachineName(), kDSStdRecordTypeComputers}, groups, error);
}

bool GetLocalUserGroupSids(ActiveDirectoryInspectorContext const*, std::string const& user,
                           std::string const& /*domain*/, std::vector<ActiveDirectoryGroup>& groups,
                           std::string& error) {
  return GetGroupSids({user, kDSStdRecordTypeUsers}, groups, error);
}

bool GetLocalComputerGroups(ActiveDirectoryInspectorContext const* context,
                            std::vector<ActiveDirectoryGroup>& groups, std::string& error) {
  return GetGroups(context, groups, error);
}

bool GetLocalUserGroups(ActiveDirectoryInspectorContext const* context,
                        std::vector<ActiveDirectoryGroup>& groups, std::string& error) {
  return GetGroups(context, groups, error);
}

}  // namespace MacintoshPlatform
