#include "machine/live/sessions_login.h"

#include <systemd/sd-login.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

#include "machine/export.h"

namespace machine::live {
namespace {

// The service makes this seat whatever the machine has, and always.
constexpr char kFirstSeat[] = "seat0";

struct Freer {
  void operator()(void* memory) const { std::free(memory); }
};
using Text = std::unique_ptr<char, Freer>;

// Names as the service hands them out, ended by a null.
class Names {
 public:
  explicit Names(char** names) : names_(names) {}
  ~Names() {
    for (char** name = names_; name != nullptr && *name != nullptr; ++name) std::free(*name);
    std::free(names_);
  }
  Names(Names const&) = delete;
  Names& operator=(Names const&) = delete;

  template <typename Visit>
  void ForEach(Visit&& visit) const {
    for (char** name = names_; name != nullptr && *name != nullptr; ++name) visit(*name);
  }

 private:
  char** const names_;
};

// Nothing where it vanished meanwhile.
Text TextOf(char const* id, int (*ask)(char const*, char**)) {
  char* text = nullptr;
  return Text(ask(id, &text) < 0 ? nullptr : text);
}

std::optional<LoginSession> SessionOfUser(char const* id) {
  Text const kind = TextOf(id, ::sd_session_get_class);
  if (kind == nullptr || std::strcmp(kind.get(), "user") != 0) return {};
  uid_t user = 0;
  if (::sd_session_get_uid(id, &user) < 0) return {};
  Text const state = TextOf(id, ::sd_session_get_state);
  bool const is_opening = state != nullptr && std::strcmp(state.get(), "opening") == 0;
  return LoginSession{id, user, !is_opening};
}

// Without the service there is no seat either, only no answer that looks like one.
LoginAnswer AskForService() {
  char const* const call = "sd_get_seats";
  int const count = ::sd_get_seats(nullptr);
  return {call, count < 0 ? -count : count == 0 ? ENOENT : 0};
}

LoginAnswer AskForSessions(LoginSessions& sessions) {
  char const* const call = "sd_get_sessions";
  char** ids = nullptr;
  int const count = ::sd_get_sessions(&ids);
  if (count < 0) return {call, -count};
  Names(ids).ForEach([&](char const* id) {
    if (auto session = SessionOfUser(id)) sessions.of_users.push_back(*std::move(session));
  });
  return {call, 0};
}

LoginAnswer AskForConsole(LoginSessions& sessions) {
  char const* const call = "sd_seat_get_active";
  char* id = nullptr;
  int const error = -::sd_seat_get_active(kFirstSeat, &id, nullptr);
  Text const owned(id);
  bool const is_empty = error == ENXIO || error == ENODATA || error == ENOENT;
  if (error > 0 && !is_empty) return {call, error};
  if (error <= 0 && id != nullptr) sessions.at_console = id;
  return {call, 0};
}

}  // namespace

extern "C" MACHINE_API void GatotuAskLoginService(LoginSessions& sessions, LoginAnswer& answer) {
  answer = AskForService();
  if (answer.error == 0) answer = AskForSessions(sessions);
  if (answer.error == 0) answer = AskForConsole(sessions);
}

}  // namespace machine::live
