#include "machine/system_files.h"

#include <cerrno>

#include "machine/live/text.h"

namespace machine {
namespace {

using live::ParseNumber;
using live::TakeLine;
using live::Trim;
using live::Unquote;

// Both files have "name:password:number:" in front, passwd then "group:comment:home:shell".
constexpr int kName = 0, kNumber = 2, kHome = 5;

// Nothing where a line ends before it.
std::optional<std::string_view> FieldOf(std::string_view line, int index) {
  for (; index > 0; --index) {
    std::size_t const colon = line.find(':');
    if (colon == std::string_view::npos) return {};
    line.remove_prefix(colon + 1);
  }
  return line.substr(0, line.find(':'));
}

// The first line that is neither empty nor a comment.
std::string_view FirstEntry(std::string_view text) {
  while (!text.empty()) {
    std::string_view const line = Trim(TakeLine(text));
    if (!line.empty() && line.front() != '#') return line;
  }
  return {};
}

std::optional<std::string> AssignedText(std::string_view text, std::string_view key) {
  auto const value = live::FindValue(text, key, '=');
  if (!value) return {};
  std::string plain = Unquote(*value);
  if (plain.empty()) return {};
  return plain;
}

Fact<std::string> ReadOsRelease(FileSource const& files) {
  Fact<std::string> own = files.ReadFile("/etc/os-release", kLargestSystemFile);
  if (own || own.outcome() != Outcome::kAbsent) return own;
  return files.ReadFile("/usr/lib/os-release", kLargestSystemFile);
}

}  // namespace

Fact<Platform> PlatformOfFiles(FileSource const& files) {
  if (files.Status(kSystemVersionPath, Links::kFollow)) return Platform::kMacOS;
  for (char const* path : {"/etc/os-release", "/usr/lib/os-release"}) {
    if (files.Status(path, Links::kFollow)) return Platform::kLinux;
  }
  return Absence{Outcome::kAbsent, "/etc/os-release", {}, ENOENT};
}

Fact<SystemVersion> VersionInOsRelease(FileSource const& files) {
  Fact<std::string> const text = ReadOsRelease(files);
  if (!text) return text.absence();
  SystemVersion version;
  constexpr std::pair<char const*, char const*> kKeys[] = {{"NAME", "ProductName"},
                                                           {"VERSION_ID", "ProductVersion"},
                                                           {"BUILD_ID", "ProductBuildVersion"}};
  for (auto const& [key, name] : kKeys) {
    if (auto value = AssignedText(*text, key)) version.emplace_back(name, *std::move(value));
  }
  return version;
}

Fact<std::string> HostNameInFile(FileSource const& files) {
  constexpr char const* kPath = "/etc/hostname";
  Fact<std::string> const text = files.ReadFile(kPath, kLargestSystemFile);
  if (!text) return text;
  std::string_view const name = FirstEntry(*text);
  if (name.empty()) return Absence{Outcome::kAbsent, kPath, "empty"};
  return std::string(name);
}

Fact<std::string> MachineIdentifier(FileSource const& files) {
  Fact<std::string> const text = files.ReadFile(kMachineIdPath, kLargestSystemFile);
  if (!text) return text;
  std::string_view const identifier = Trim(*text);
  // What systemd writes before the first start.
  if (identifier.empty() || identifier == "uninitialized") {
    return Absence{Outcome::kAbsent, kMachineIdPath, "empty"};
  }
  return std::string(identifier);
}

Fact<std::string> HomeInAccounts(FileSource const& files, std::string const& user) {
  Fact<std::string> const text = files.ReadFile(kUserListPath, kLargestSystemFile);
  if (!text) return text;
  for (std::string_view rest = *text; !rest.empty();) {
    std::string_view const line = TakeLine(rest);
    auto const home = FieldOf(line, kHome);
    if (!home || FieldOf(line, kName) != user) continue;
    if (home->starts_with('/')) return std::string(*home);
    return Absence{Outcome::kMalformed, kUserListPath, user};
  }
  return Absence{Outcome::kAbsent, kUserListPath, user};
}

std::optional<std::string_view> NameInAccounts(std::string_view text, std::uint32_t number) {
  while (!text.empty()) {
    std::string_view const line = TakeLine(text);
    // A number without a colon behind it is none.
    if (!FieldOf(line, kNumber + 1)) continue;
    if (ParseNumber<std::uint32_t>(*FieldOf(line, kNumber)) == number) return FieldOf(line, kName);
  }
  return {};
}

std::string NameOfZoneFile(std::string_view path) {
  constexpr std::string_view kMark = "zoneinfo/";
  std::size_t const at = path.find(kMark);
  if (at == std::string_view::npos) return {};
  std::string_view name = path.substr(at + kMark.size());
  for (std::string_view variant : {"posix/", "right/"}) {
    if (name.starts_with(variant)) name.remove_prefix(variant.size());
  }
  return std::string(name);
}

}  // namespace machine
