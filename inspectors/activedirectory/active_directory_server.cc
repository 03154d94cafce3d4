#include "inspectors/activedirectory/active_directory_server.h"

#include "evaluator/plugin/entry_points.h"
#include "inspectors/users/console_sessions.h"
#include "portable/ascii.h"

namespace {

using Context = ActiveDirectoryInspectorContext;
using MacintoshPlatform::LoggedInUser;

constexpr char kPending[] = "Data pending request from server";

bool IsSameName(std::string const& left, std::string const& right) {
  return Ascii::EqualIgnoringCase(ConstData(left), ConstData(right));
}

bool AllowsLookups(Context const* context) {
  return context != nullptr && context->AreLookupsEnabled();
}

// Whether the copy is of a record that was read; one that was not is asked for.
template <class Account>
bool CopyOrRequest(Account* record, Account& out) {
  if (record == nullptr) return false;
  bool const is_filled = record->GetCacheState() == kFilledFromDirectory;
  if (!is_filled) {
    record->SetCacheState(kRequestPending);
    record->SetErrorMessage(kPending);
    record->SetGroupsErrorMessage(kPending);
  }
  out = *record;
  return is_filled;
}

ActiveDirectoryLocalUser* FindUser(Context const& context, std::string const& name) {
  if (auto const known = context.FirstLocalUser(name)) return *known;
  for (std::uint32_t index = 0;; ++index) {
    ActiveDirectoryLocalUser* const user = context.LocalUserAt(index);
    if (user == nullptr || IsSameName(user->GetName(), name)) return user;
  }
}

}  // namespace

ActiveDirectoryInspectorContext const* CurrentDirectoryContext() {
  return dynamic_cast<Context const*>(Get_Generic_Inspector_Context());
}

ActiveDirectoryServer const& ActiveDirectoryServer::The() {
  static ActiveDirectoryServer const server;
  return server;
}

bool ActiveDirectoryServer::GetLocalComputer(Context const* context,
                                             ActiveDirectoryLocalComputer& out) const {
  return context != nullptr && CopyOrRequest(context->LocalComputer(), out);
}

bool ActiveDirectoryServer::GetLocalUser(Context const* context, std::string const& name,
                                         std::string const& domain,
                                         ActiveDirectoryLocalUser& out) const {
  return AllowsLookups(context) && CopyOrRequest(context->LocalUser(name, domain), out);
}

bool ActiveDirectoryServer::GetLocalUser(Context const* context, std::string const& name,
                                         ActiveDirectoryLocalUser& out) const {
  return AllowsLookups(context) && CopyOrRequest(FindUser(*context, name), out);
}

bool ActiveDirectoryServer::GetLocalUsers(Context const* context,
                                          std::vector<ActiveDirectoryLocalUser>& list) const {
  list.clear();
  if (!AllowsLookups(context)) return false;
  for (std::uint32_t index = 0;; ++index) {
    ActiveDirectoryLocalUser const* const user = context->LocalUserAt(index);
    if (user == nullptr) return true;
    list.push_back(*user);
  }
}

bool ActiveDirectoryServer::GetLoggedOnUsers(Context const* context,
                                             std::vector<ActiveDirectoryLocalUser>& list) const {
  if (!AllowsLookups(context)) return false;
  std::list<LoggedInUser> const logged_in = MacintoshPlatform::GetLoggedInUsers();
  list.clear();
  for (LoggedInUser const& user : logged_in) {
    ActiveDirectoryLocalUser record;
    if (GetLocalUser(context, user.name, user.domain, record)) list.push_back(std::move(record));
  }
  return true;
}

bool ActiveDirectoryServer::GetLoggedOnUser(Context const* context, std::string const& name,
                                            std::string const& domain,
                                            ActiveDirectoryLocalUser& out) const {
  if (!AllowsLookups(context)) return false;
  for (LoggedInUser const& user : MacintoshPlatform::GetLoggedInUsers()) {
    if (!IsSameName(user.name, name)) continue;
    if (!domain.empty() && !IsSameName(user.domain, domain)) continue;
    return GetLocalUser(context, user.name, user.domain, out);
  }
  return true;
}

bool ActiveDirectoryServer::GetLoggedOnUser(Context const* context, std::string const& name,
                                            ActiveDirectoryLocalUser& out) const {
  return GetLoggedOnUser(context, name, {}, out);
}
