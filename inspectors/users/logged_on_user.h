// Who is logged on to the console: users of the directory with the session they are in.
#pragma once

#include <list>

#include "inspectors/users/session_info.h"
#include "inspectors/users/user.h"

struct logged_on_user : user {
  // Looks the session's user up; throws what the directory throws.
  explicit logged_on_user(SessionInfo session);

  SessionInfo session;
};

template <>
struct InspectorTypeName<logged_on_user> {
  static constexpr char const* kName = "logged on user";
};

// The sessions as they were when the iteration began, each with its user.
class LoggedOnUsers {
 public:
  // `MacUnableToGetSessionList` where there is no list.
  logged_on_user First();
  logged_on_user Next();

 private:
  std::list<SessionInfo> sessions_;
  std::list<SessionInfo>::const_iterator position_ = sessions_.end();
};

// In the first session whose user has the name of the one in front of the console.
logged_on_user CurrentUser();

// Every session of the console counts as active, and none as remote.
boolean Active(logged_on_user const& user);
boolean Remote(logged_on_user const& user);
user MakeThisAUser(logged_on_user const& user);
// Not the number's digits but one byte, its low eight bits; empty where they are 0.
inspector_string LoggedOnUserSessionID(logged_on_user const& user);
