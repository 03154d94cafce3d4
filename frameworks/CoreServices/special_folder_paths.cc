#include "frameworks/CoreServices/special_folder_paths.h"

#include <algorithm>

#include "frameworks/CoreServices/folder_table.h"
#include "frameworks/CoreServices/user_directories.h"
#include "machine/machine.h"

namespace {

using machine::Absence;
using machine::Announce;
using machine::Outcome;
using Path = machine::Fact<std::string>;

bool IsAbsolutePath(std::string const& text) {
  return text.starts_with('/') && text.find('\0') == std::string::npos;
}

Absence Malformed(std::string source) {
  Announce(source, Outcome::kMalformed);
  return {Outcome::kMalformed, std::move(source), {}};
}

Path Below(Path folder, std::string_view path) {
  if (!folder || path.empty()) return folder;
  return ItemPath(*std::move(folder), path);
}

Path Home() {
  Path home = machine::CurrentMachine().Users().CurrentHome();
  if (home && !IsAbsolutePath(*home)) return Malformed("home of the current user");
  return home;
}

// A path that is not absolute counts as none.
Path Variable(std::string const& name) {
  Path value = machine::CurrentMachine().Environment().Variable(name);
  if (!value || IsAbsolutePath(*value)) return value;
  std::string source = "environment " + name;
  Announce(source, value->empty() ? Outcome::kAbsent : Outcome::kMalformed);
  return Absence{Outcome::kAbsent, std::move(source), {}};
}

// Only of an environment that can be asked is a variable known not to be set.
Path BaseDirectory(char const* variable, std::string_view default_below_home) {
  Path value = Variable(variable);
  if (value || value.outcome() != Outcome::kAbsent) return value;
  return Below(Home(), default_below_home);
}

Path ConfigurationHome() { return BaseDirectory("XDG_CONFIG_HOME", ".config"); }

Path KernelModules() {
  Path release = machine::CurrentMachine().System().KernelRelease();
  if (!release) return release;
  bool const is_name = release->find_first_of(std::string_view("/\0", 2)) == std::string::npos &&
                       !release->empty() && *release != "." && *release != "..";
  if (!is_name) return Malformed("kernel release");
  return Below("/usr/lib/modules", *release);
}

Path UserDirectory(std::string_view variable) {
  constexpr std::size_t kMostBytes = std::size_t{1} << 20;
  Path const file = Below(ConfigurationHome(), "user-dirs.dirs");
  Path home = Home();
  if (!file || !home) return file ? home : file;
  auto const text = machine::CurrentMachine().Files().ReadFile(*file, kMostBytes);
  if (!text) return text;
  auto folder = UserDirectoryIn(*text, variable, *home);
  if (folder && IsAbsolutePath(*folder)) return *std::move(folder);
  Outcome const reason = folder ? Outcome::kMalformed : Outcome::kAbsent;
  std::string const source = *file + " " + std::string(variable);
  Announce(source, reason);
  return Absence{reason, *file, std::string(variable)};
}

Path PathBelow(FolderBase base, char const* path) {
  switch (base) {
    case FolderBase::kRoot:
      return path;
    case FolderBase::kClassicSystem:
      return Below("/System Folder", path);
    case FolderBase::kHome:
      return Below(Home(), path);
    case FolderBase::kDataHome:
      return Below(BaseDirectory("XDG_DATA_HOME", ".local/share"), path);
    case FolderBase::kConfigurationHome:
      return Below(ConfigurationHome(), path);
    case FolderBase::kCacheHome:
      return Below(BaseDirectory("XDG_CACHE_HOME", ".cache"), path);
    case FolderBase::kTemporary:
      return Below(Variable("TMPDIR"), path);
    case FolderBase::kKernelModules:
      return Below(KernelModules(), path);
    case FolderBase::kUserDirectory:
      return UserDirectory(path);
    case FolderBase::kLibrary:
      break;
  }
  return Absence{Outcome::kNotSupported, "library of the domain", {}};
}

}  // namespace

Path PathOfSpecialFolder(SpecialFolderTable const& table, SpecialFolderRow const& row,
                         DomainSet domain) {
  if (row.base != FolderBase::kLibrary) return PathBelow(row.base, row.path);
  auto const library = std::find_if(table.libraries.begin(), table.libraries.end(),
                                    [&](auto const& each) { return each.domain == domain; });
  if (library == table.libraries.end()) return PathBelow(FolderBase::kLibrary, row.path);
  return Below(PathBelow(library->base, library->path), row.path);
}
