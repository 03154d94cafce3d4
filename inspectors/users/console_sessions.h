// The sessions of the console, as the window server publishes them in the dynamic store.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <list>
#include <string>

#include "evaluator/plugin/exceptions.h"
#include "inspectors/activedirectory/directory/account_name.h"
#include "portable/core_foundation/auto_cf.h"

// There is no list, or it is not what it should be.
class MacUnableToGetSessionList : public DebuggableException {};

namespace MacintoshPlatform {

// One session. What its dictionary lacks, or has as another type, keeps the value below.
struct SessionInfo {
  SessionInfo() = default;
  explicit SessionInfo(CFDictionaryRef session);

  std::int64_t session_id = 0;
  std::uint32_t user_id = static_cast<std::uint32_t>(-2);  // nobody's
  std::string user_name;                                   // UTF-8; none of more than 1024 bytes
};

// UTF-8; false, and `text` left alone, for what is no string, has no such form, or takes more than
// 1024 bytes.
bool GetUserName(CFTypeRef string, std::string& text);

// Makes what asking the store takes; false when that fails. Again it starts anew.
bool InitSessionInfo();
void ShutdownSessionInfo();

// In ascending order of their numbers. `MacUnableToGetSessionList`. Only after `InitSessionInfo`.
std::list<SessionInfo> GetLoggedOnSessions();

// The order of two session dictionaries, by their numbers.
CFComparisonResult SessionIDComparator(void const* left, void const* right, void* context);

// Mac OS X 10.3 forgets to say that the login on the console is done. Where somebody is in front of
// it, the sessions there are replaced by ones that say so; of other systems nothing is changed.
void FinishLoginsOnConsole(CFMutableArrayRef sessions, CFDictionaryRef console_user);

// Who is logged on, for a directory to look up.
using LoggedInUser = AccountName;

// In the order of the sessions, empty where there is no store. A name such as "DOMAIN\name" or
// "name@domain" is taken apart; others have no domain. Throws what refreshing the list throws.
std::list<LoggedInUser> GetLoggedInUsers();

}  // namespace MacintoshPlatform
