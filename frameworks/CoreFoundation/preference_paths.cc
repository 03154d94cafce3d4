#include "frameworks/CoreFoundation/preference_paths.h"

#include <string_view>

#include "frameworks/CoreFoundation/file_system_text.h"
#include "machine/machine.h"

namespace {

using machine::Outcome;

constexpr std::string_view kFolder = "/Library/Preferences/", kSuffix = ".plist";

// What can stand in a file's name without leading anywhere else.
bool IsNamePart(std::string const& text) {
  return !text.empty() && text.find_first_of(std::string_view("/\0", 2)) == std::string::npos;
}

}  // namespace

PreferencePaths::PreferencePaths(CFStringRef application) {
  if (application == nullptr) return;
  std::string name = file_system_text::BytesOf(application);
  if (IsNamePart(name)) {
    name_ = std::move(name);
  } else {
    machine::Announce("preferences of " + name, Outcome::kMalformed);
  }
}

std::optional<std::string> PreferencePaths::PathOf(PreferencePlace const& place) {
  bool const is_own = place.application == PreferenceApplication::kOwn;
  if (is_own && !name_) return {};
  std::string const name = is_own ? *name_ : ".GlobalPreferences";
  std::string folder(kFolder);
  if (place.user == PreferenceUser::kCurrent) {
    if (!HasHome()) return {};
    folder.insert(0, **home_);
    if (place.host == PreferenceHost::kCurrent) return FileByHost(folder + "ByHost", name);
  }
  return folder.append(name).append(kSuffix);
}

bool PreferencePaths::HasHome() {
  if (!home_) {
    home_ = machine::CurrentMachine().Users().CurrentHome();
    if (*home_ && !(**home_).starts_with('/')) {
      home_ = machine::Absence{Outcome::kMalformed, "home of the current user", {}};
    }
    if (!*home_) machine::Announce("~/Library/Preferences", home_->outcome());
  }
  return home_->has_value();
}

std::optional<std::string> PreferencePaths::FileByHost(std::string const& folder,
                                                       std::string const& name) {
  if (!host_) host_ = machine::CurrentMachine().Names().HostIdentifier();
  if (*host_ && !IsNamePart(**host_)) {
    machine::Announce("host identifier", Outcome::kMalformed);
    return {};
  }
  if (*host_) return (folder + "/" + name).append(".").append(**host_).append(kSuffix);
  if (host_files_ == nullptr) host_files_ = HostFolder::Shared().NamesIn(folder);
  auto const file = host_files_->find(name);
  if (file == host_files_->end() || file->second.empty()) return {};
  return folder + "/" + file->second;
}
