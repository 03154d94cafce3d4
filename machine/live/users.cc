#include <pwd.h>
#include <unistd.h>

#include "machine/live/name_service.h"
#include "machine/live/sources.h"

namespace machine::live {
namespace {

Absence NoCurrentUser() {
  return AnnounceAbsence(Outcome::kNotSupported, "current user", "nobody uses a recorded tree");
}

Fact<std::string> TextOfThisUser(char* passwd::*text) {
  return AskNameService(
      "getpwuid", text, [](passwd& record, std::vector<char>& buffer, passwd*& found) {
        return ::getpwuid_r(::geteuid(), &record, buffer.data(), buffer.size(), &found);
      });
}

Fact<std::string> AbsoluteOnly(Fact<std::string> home) {
  if (!home || home->starts_with('/')) return home;
  return Absence{Outcome::kMalformed, "name service", "home " + *home};
}

}  // namespace

Fact<std::string> Users::CurrentUser() const {
  if (!root_.is_running()) return NoCurrentUser();
  return TextOfThisUser(&passwd::pw_name);
}

Fact<std::string> Users::CurrentHome() const {
  if (!root_.is_running()) return NoCurrentUser();
  Fact<std::string> home = Environment(root_).Variable("HOME");
  if (home && home->starts_with('/')) return home;
  return AbsoluteOnly(TextOfThisUser(&passwd::pw_dir));
}

Fact<std::string> Users::HomeOf(std::string const& user) const {
  if (!root_.is_running()) return HomeInAccounts(files_, user);
  if (user.find('\0') != std::string::npos) return AnnounceError(EINVAL, "getpwnam");
  auto const ask = [&](passwd& record, std::vector<char>& buffer, passwd*& found) {
    return ::getpwnam_r(user.c_str(), &record, buffer.data(), buffer.size(), &found);
  };
  return AbsoluteOnly(AskNameService("getpwnam", &passwd::pw_dir, ask));
}

}  // namespace machine::live
