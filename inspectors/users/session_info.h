// One session, and the list of all that is kept between questions. For the evaluating thread only.
#pragma once

#include <list>

#include "inspectors/users/console_sessions.h"

class SessionInfo {
 public:
  explicit SessionInfo(MacintoshPlatform::SessionInfo platform) : platform_(std::move(platform)) {}

  std::int64_t SessionID() const { return platform_.session_id; }
  std::uint32_t UserID() const { return platform_.user_id; }
  std::string const& UserName() const { return platform_.user_name; }

  // Whether the sessions can be asked for; tried until it once succeeds.
  static bool Initialize();
  // Forgets the list, and that it was initialised.
  static void Shutdown();

  // Whether the list was replaced. It is kept as it is while the numbers of sessions and users are
  // the same, whatever the users' names. Throws what `GetLoggedOnSessions` throws.
  static bool RefreshList();
  // In ascending order of the sessions' numbers.
  static std::list<SessionInfo> const& GetList();
  // The second count is always 0.
  static void GetLoginCounts(unsigned long& total, unsigned long& second);

 private:
  MacintoshPlatform::SessionInfo platform_;
};
