#include <algorithm>
#include <ctime>

#include "machine/live/directory_ldap_library.h"

namespace machine::live {
namespace {

Outcome OutcomeOfLdap(int error) {
  switch (error) {
    case LDAP_TIMEOUT:
    case LDAP_TIMELIMIT_EXCEEDED:
      return Outcome::kTimedOut;
    case LDAP_INVALID_CREDENTIALS:
    case LDAP_INSUFFICIENT_ACCESS:
    case LDAP_INAPPROPRIATE_AUTH:
    case LDAP_STRONG_AUTH_REQUIRED:
    case LDAP_CONFIDENTIALITY_REQUIRED:
    case LDAP_AUTH_UNKNOWN:
    case LDAP_LOCAL_ERROR:
    case LDAP_SIZELIMIT_EXCEEDED:
    case LDAP_ADMINLIMIT_EXCEEDED:
      return Outcome::kPermissionRefused;
    case LDAP_DECODING_ERROR:
    case LDAP_PROTOCOL_ERROR:
      return Outcome::kMalformed;
    default:
      return Outcome::kAbsent;
  }
}

sigset_t BrokenPipe() {
  sigset_t set;
  ::sigemptyset(&set);
  ::sigaddset(&set, SIGPIPE);
  return set;
}

}  // namespace

BrokenPipesKept::BrokenPipesKept() {
  sigset_t pending, set = BrokenPipe();
  ::sigpending(&pending);
  was_pending_ = ::sigismember(&pending, SIGPIPE) == 1;
  ::pthread_sigmask(SIG_BLOCK, &set, &before_);
}

BrokenPipesKept::~BrokenPipesKept() {
  sigset_t const set = BrokenPipe();
  timespec const at_once = {};
  if (!was_pending_) ::sigtimedwait(&set, nullptr, &at_once);
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

// Zero would mean "for ever" to some of its readers.
timeval TimeLeft(Patience const& patience) {
  auto const left = std::max<std::int64_t>(patience.Left().count(), 1);
  return {left / 1000, left % 1000 * 1000};
}

Fact<LdapMessage> NextMessage(LDAP* handle, int number, Patience const& patience,
                              std::string const& source) {
  while (!patience.is_over()) {
    constexpr long kBetweenLooks = 50'000;
    timeval time = std::min(
        TimeLeft(patience), timeval{0, kBetweenLooks},
        [](timeval const& left, timeval const& right) { return timercmp(&left, &right, <); });
    LDAPMessage* message = nullptr;
    int const kind = ::ldap_result(handle, number, LDAP_MSG_ONE, &time, &message);
    if (kind > 0) return LdapMessage(message);
    if (kind < 0) {
      int error = LDAP_SERVER_DOWN;
      ::ldap_get_option(handle, LDAP_OPT_RESULT_CODE, &error);
      return FailureOf(handle, error == LDAP_SUCCESS ? LDAP_SERVER_DOWN : error, source);
    }
  }
  ::ldap_abandon_ext(handle, number, nullptr, nullptr);
  return Absence{Outcome::kTimedOut, source, "no answer in time"};
}

Absence FailureOf(LDAP* handle, int error, std::string const& source) {
  std::string why = ::ldap_err2string(error);
  char* more = nullptr;
  if (handle != nullptr) ::ldap_get_option(handle, LDAP_OPT_DIAGNOSTIC_MESSAGE, &more);
  if (more != nullptr && *more != '\0') why.append(": ").append(more);
  ::ldap_memfree(more);
  return {OutcomeOfLdap(error), source, why};
}

}  // namespace machine::live
