// What the login service tells. Its client library takes milliseconds to load, so the library
// FrameworksLogin, which links it, is opened at the first need. Nothing but this is between the
// two.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace machine::live {

struct LoginSession {
  std::string id;
  std::uint32_t user = 0;
  bool is_open = true;  // false while the user is still being logged in
};

struct LoginSessions {
  // Those of people: neither login screens nor what runs in the background.
  std::vector<LoginSession> of_users;
  // The one in front of the first seat, of whatever kind; empty where there is none.
  std::string at_console;
};

struct LoginAnswer {
  char const* call = "";  // the last one made
  int error = 0;          // the system's number where that failed
};

inline constexpr char kAskLoginService[] = "GatotuAskLoginService";
using AskLoginService = void (*)(LoginSessions& sessions, LoginAnswer& answer);

}  // namespace machine::live
