#include "frameworks/CoreFoundation/host_file_names.h"

#include <algorithm>
#include <string_view>

#include "machine/machine.h"
#include "machine/never_destroyed.h"

namespace {

bool IsHexadecimal(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

bool IsHost(std::string_view text) {
  constexpr std::string_view kUuid = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
  std::string_view const form = text.size() == 12 ? kUuid.substr(24) : kUuid;
  return std::equal(text.begin(), text.end(), form.begin(), form.end(),
                    [](char c, char form) { return form == 'x' ? IsHexadecimal(c) : c == form; });
}

// Nothing for names of another form.
std::optional<std::string_view> ApplicationOf(std::string_view name) {
  constexpr std::string_view kSuffix = ".plist";
  if (!name.ends_with(kSuffix)) return {};
  name.remove_suffix(kSuffix.size());
  std::size_t const dot = name.rfind('.');
  if (dot == std::string_view::npos || !IsHost(name.substr(dot + 1))) return {};
  return name.substr(0, dot);
}

HostFileNames ReadNames(std::string const& folder) {
  // More than any user has; a folder with more is no place of preferences.
  constexpr int kMostEntries = 20000;
  HostFileNames names;
  auto const open = machine::CurrentMachine().Files().OpenFolder(folder);
  if (!open) return names;
  for (int i = 0; i < kMostEntries; ++i) {
    auto const entry = open.value()->Next(machine::Detail::kKind);
    if (!entry) return {};
    if (*entry == nullptr) return names;
    std::string_view const name = (*entry)->name;
    auto const application = ApplicationOf(name);
    if (!application) continue;
    auto const [place, is_new] = names.try_emplace(std::string(*application), name);
    if (!is_new) place->second.clear();
  }
  machine::Announce(folder, machine::Outcome::kMalformed);
  return {};
}

}  // namespace

HostFolder& HostFolder::Shared() {
  static machine::NeverDestroyed<HostFolder> folder;
  return *folder;
}

std::shared_ptr<HostFileNames const> HostFolder::NamesIn(std::string const& folder) {
  std::lock_guard lock(guard_);
  std::uint64_t const number = machine::CurrentMachineNumber();
  auto const state = FileState::Of(folder);
  bool const is_same =
      machine_ == number && folder_ == folder && state && state_ && state_->StillHolds(*state);
  if (is_same) return names_;
  machine_ = number;
  folder_ = folder;
  state_ = state;
  names_ = std::make_shared<HostFileNames const>(state ? ReadNames(folder) : HostFileNames());
  return names_;
}
