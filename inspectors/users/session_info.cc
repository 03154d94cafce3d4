#include "inspectors/users/session_info.h"

#include <algorithm>
#include <utility>

#include "machine/machine.h"

namespace {

bool is_initialized = false;
std::list<SessionInfo> sessions;
std::uint64_t machine_of_sessions = 0;

bool AreSameSession(SessionInfo const& left, SessionInfo const& right) {
  return left.SessionID() == right.SessionID() && left.UserID() == right.UserID();
}

}  // namespace

bool SessionInfo::Initialize() {
  if (!is_initialized) is_initialized = MacintoshPlatform::InitSessionInfo();
  return is_initialized;
}

void SessionInfo::Shutdown() {
  MacintoshPlatform::ShutdownSessionInfo();
  is_initialized = false;
  sessions.clear();
}

bool SessionInfo::RefreshList() {
  std::list<SessionInfo> current;
  for (auto& session : MacintoshPlatform::GetLoggedOnSessions()) {
    current.emplace_back(std::move(session));
  }
  // The same numbers on another machine are other sessions.
  std::uint64_t const machine = machine::CurrentMachineNumber();
  bool const is_same_machine = std::exchange(machine_of_sessions, machine) == machine;
  if (is_same_machine && std::equal(current.begin(), current.end(), sessions.begin(),
                                    sessions.end(), AreSameSession)) {
    return false;
  }
  sessions = std::move(current);
  return true;
}

std::list<SessionInfo> const& SessionInfo::GetList() { return sessions; }

void SessionInfo::GetLoginCounts(unsigned long& total, unsigned long& second) {
  total = sessions.size();
  second = 0;
}
