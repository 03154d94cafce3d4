#include "machine/capture/sources.h"
#include "machine/capture/values.h"
#include "machine/system_files.h"

namespace machine::capture {
namespace {

// Names become parts of paths.
bool IsUserName(std::string_view name) {
  return !name.empty() && name.size() <= 255 && name != "." && name != ".." &&
         name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

}  // namespace

Fact<std::string> Users::CurrentUser() const {
  constexpr char const* kKey = "CurrentUser";
  if (choices_.user.empty() && facts_.Knows(kKey)) return facts_.Text(kKey);
  if (choices_.user.empty()) {
    Absence const absence = {Outcome::kAbsent, kKey,
                             std::string(kNotRecorded) + ", and no user was chosen"};
    AnnounceMissing(absence);
    return absence;
  }
  if (IsUserName(choices_.user)) return choices_.user;
  return Absence{Outcome::kMalformed, "the chosen user", choices_.user};
}

Fact<std::string> Users::CurrentHome() const {
  Field const recorded = facts_["CurrentUser"];
  bool const is_recorded = choices_.user.empty() || (recorded.exists() && recorded.Text() &&
                                                     *recorded.Text() == choices_.user);
  if (is_recorded && facts_.Knows("CurrentHome")) return facts_.Text("CurrentHome");
  Fact<std::string> const user = CurrentUser();
  if (!user) return user;
  return HomeOf(*user);
}

Fact<std::string> Users::HomeOf(std::string const& user) const {
  if (!IsUserName(user)) return Absence{Outcome::kMalformed, "user", user};
  std::string const key = KeyOfBytes(user);
  if (facts_.Knows("Users", key)) {
    return facts_.Ask("Users", key, [](Field const& field) { return field["Home"].Text(); });
  }
  return HomeInFiles(user);
}

Fact<std::string> Users::HomeInFiles(std::string const& user) const {
  if (Fact<std::string> home = volume_.HomeOf(user)) return home;
  if (Fact<std::string> home = HomeInAccounts(files_, user)) return home;
  std::string const usual = "/Users/" + user;
  Fact<ItemStatus> const folder = files_.Status(usual, Links::kFollow);
  if (folder && folder->kind == ItemKind::kFolder) return usual;
  return Absence{Outcome::kAbsent, "home of " + user, kNotRecorded};
}

Fact<std::vector<std::string>> Users::UserNames() const {
  std::vector<std::string> names;
  if (auto const* users = facts_["Users"].As<RecordDictionary>()) {
    for (auto const& [key, value] : users->entries()) names.push_back(BytesOfKey(key));
  }
  Fact<std::vector<std::string>> const more = volume_.UserNames();
  if (more) names.insert(names.end(), more->begin(), more->end());
  return names;
}

}  // namespace machine::capture
