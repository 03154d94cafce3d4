// What the settings' section `Directory` says of how directory records are read and kept.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "host/settings.h"
#include "machine/directory.h"

namespace gatotu::host {

struct DirectoryOptions {
  bool is_enabled = true;
  // Seconds; that of users may be `ActiveDirectoryInspectorContext::kNeverRefresh`.
  std::uint32_t computer_interval = 12 * 60 * 60;
  std::uint32_t user_interval = 12 * 60 * 60;
  // Absolute; empty where nothing is kept between runs.
  std::string cache_folder;
  // Listed beside those that the machine knows of: "name", "DOMAIN\name" or "name@domain".
  std::vector<std::string> users;
  machine::DirectorySettings source;
};

// Or what is wrong, naming the item.
std::variant<DirectoryOptions, std::string> ReadDirectoryOptions(Settings const& settings);

// /var/lib for the superuser, else below $XDG_STATE_HOME or ~/.local/state; empty without either.
std::string DefaultDirectoryCacheFolder();

}  // namespace gatotu::host
