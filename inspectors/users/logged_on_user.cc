#include "inspectors/users/logged_on_user.h"

#include <SystemConfiguration/SystemConfiguration.h>

#include "evaluator/plugin/exceptions.h"
#include "frame/inspector_strings.h"
#include "frame/registration.h"
#include "portable/core_foundation/auto_cf.h"

logged_on_user::logged_on_user(SessionInfo its_session)
    : user(GetODObjectOfType(kUsersRecordType, its_session.UserName())),
      session(std::move(its_session)) {}

logged_on_user LoggedOnUsers::First() {
  if (!SessionInfo::Initialize()) throw NoSuchObject();
  SessionInfo::RefreshList();
  sessions_ = SessionInfo::GetList();
  position_ = sessions_.begin();
  return Next();
}

logged_on_user LoggedOnUsers::Next() {
  if (position_ == sessions_.end()) throw NoSuchObject();
  return logged_on_user(*position_++);
}

namespace {

std::string ConsoleUserName() {
  uid_t user_id = 0;
  gid_t group_id = 0;
  AutoCFString console_user;
  console_user.Seize(SCDynamicStoreCopyConsoleUser(nullptr, &user_id, &group_id));
  std::string name;
  if (!MacintoshPlatform::GetUserName(console_user.Get(), name)) throw NoSuchObject();
  return name;
}

}  // namespace

logged_on_user CurrentUser() {
  std::string const name = ConsoleUserName();
  if (!SessionInfo::Initialize()) throw NoSuchObject();
  SessionInfo::RefreshList();
  for (SessionInfo const& session : SessionInfo::GetList()) {
    if (session.UserName() == name) return logged_on_user(session);
  }
  throw NoSuchObject();
}

boolean Active(logged_on_user const&) { return true; }
boolean Remote(logged_on_user const&) { return false; }
user MakeThisAUser(logged_on_user const& user) { return user; }

inspector_string LoggedOnUserSessionID(logged_on_user const& user) {
  char const text[] = {static_cast<char>(user.session.SessionID()), '\0'};
  return CopyToInspectorString(ConstData(text));
}

namespace {

DerivedType<logged_on_user, user, kNoFingerprinting> logged_on_user_type;
IteratedGlobalProperty<LoggedOnUsers, logged_on_user> logged_on_users("logged on user",
                                                                      "logged on users", nullptr);
GlobalProperty<logged_on_user> current_user("current user", "current users", CurrentUser, nullptr);
Property<logged_on_user, boolean> active("active", "actives", Active, nullptr);
Property<logged_on_user, boolean> remote("remote", "remotes", Remote, nullptr);
Property<logged_on_user, user> user_of_session("user", "users", MakeThisAUser, nullptr);
Property<logged_on_user, inspector_string> session_id("session id", "session ids",
                                                      LoggedOnUserSessionID, nullptr);

}  // namespace
