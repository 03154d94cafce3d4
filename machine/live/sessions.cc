#include "machine/live/sessions.h"

#include <pwd.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/capture/values.h"
#include "machine/library_beside.h"
#include "machine/live/name_service.h"
#include "machine/live/sessions_login.h"
#include "machine/live/text.h"

namespace machine::live {
namespace {

struct Account {
  std::string name;
  std::uint32_t group = 0;
};

// The accounts of one answer, each asked once. Nothing where nobody has the number.
class Accounts {
 public:
  std::optional<Account> const& Of(std::uint32_t user) {
    auto const [entry, is_new] = known_.try_emplace(user);
    if (is_new) entry->second = Ask(user);
    return entry->second;
  }

 private:
  static std::optional<Account> Ask(std::uint32_t user) {
    std::optional<Account> account;
    int const error = TakeFromNameService<passwd>(
        [&](passwd const& found) {
          account = {found.pw_name, found.pw_gid};
        },
        [&](passwd& record, std::vector<char>& buffer, passwd*& found) {
          return ::getpwuid_r(user, &record, buffer.data(), buffer.size(), &found);
        });
    Announce("getpwuid", account ? Outcome::kAnswered : OutcomeOf(error));
    return account;
  }

  std::map<std::uint32_t, std::optional<Account>> known_;
};

// The service numbers the sessions that the kernel's audit does not, and marks them with a "c".
std::optional<std::int64_t> NumberOfSession(std::string_view id) {
  bool const is_own = id.starts_with('c');
  if (is_own) id.remove_prefix(1);
  if (id.find_first_not_of("0123456789") != std::string_view::npos) return {};
  if (!is_own) return ParseNumber<std::int64_t>(id);
  auto const number = ParseNumber<std::uint32_t>(id);
  if (!number) return {};
  return (std::int64_t{1} << 32) + *number;
}

RecordDictionary RecordOf(LoginSession const& session, std::int64_t number, bool is_on_console,
                          std::optional<Account> const& account) {
  RecordDictionary record;
  if (account) record.Add("kCGSSessionGroupIDKey", std::int64_t{account->group});
  record.Add("kCGSSessionIDKey", number);
  record.Add("kCGSSessionOnConsoleKey", is_on_console);
  record.Add("kCGSSessionUserIDKey", std::int64_t{session.user});
  if (account) record.Add("kCGSSessionUserNameKey", capture::RecordOfBytes(account->name));
  record.Add("kCGSessionLoginDoneKey", session.is_open);
  return record;
}

void AddUser(RecordDictionary& console, std::uint32_t user, std::optional<Account> const& account) {
  console.Add("UID", std::int64_t{user});
  if (!account) return;
  console.Add("GID", std::int64_t{account->group});
  console.Add("Name", capture::RecordOfBytes(account->name));
}

RecordDictionary ConsoleOf(LoginSessions const& sessions) {
  Accounts accounts;
  RecordDictionary console;
  RecordArray records;
  for (LoginSession const& session : sessions.of_users) {
    bool const is_on_console = session.id == sessions.at_console;
    auto const number = NumberOfSession(session.id);
    if (!number) {
      AnnounceAbsence(Outcome::kNotSupported, "session " + session.id, "no number");
      continue;
    }
    std::optional<Account> const& account = accounts.Of(session.user);
    records.emplace_back(RecordOf(session, *number, is_on_console, account));
    if (is_on_console) AddUser(console, session.user, account);
  }
  console.Add("SessionInfo", std::move(records));
  return console;
}

AskLoginService LoadLoginService() {
  return reinterpret_cast<AskLoginService>(
      OpenLibraryBeside("libFrameworksLogin.so", kAskLoginService));
}

}  // namespace

Fact<RecordDictionary> Sessions::ConsoleUser() const {
  constexpr char kSource[] = "login service";
  if (!root_.is_running()) {
    return AnnounceAbsence(Outcome::kNotSupported, kSource,
                           "nobody is logged on to a recorded tree");
  }
  static AskLoginService const ask = LoadLoginService();
  if (ask == nullptr) return AnnounceAbsence(Outcome::kNotSupported, kSource, "no client library");
  LoginSessions sessions;
  LoginAnswer answer;
  ask(sessions, answer);
  if (answer.error != 0) return AnnounceError(answer.error, kSource, answer.call);
  Announce(kSource, Outcome::kAnswered);
  return ConsoleOf(sessions);
}

}  // namespace machine::live
