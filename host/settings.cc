#include "host/settings.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace gatotu::host {
namespace {

constexpr std::size_t kLargestFile = std::size_t{1} << 20;

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlank = " \t\r\v\f";
  std::size_t const begin = text.find_first_not_of(kBlank);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlank) - begin + 1);
}

// The text of a value; nothing when its quotes do not match.
std::optional<std::string_view> ValueOf(std::string_view text) {
  if (text.empty() || text.front() != '"') return text;
  if (text.size() < 2 || text.find('"', 1) != text.size() - 1) return std::nullopt;
  return text.substr(1, text.size() - 2);
}

}  // namespace

std::optional<std::string> ReadSmallFile(std::string const& path, std::string& content) {
  // Not blocking, so that a pipe in the place of a settings file does not hold up the command.
  int const file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) {
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    return std::strerror(errno);
  }
  std::optional<std::string> failure;
  char buffer[4096];
  for (;;) {
    ssize_t const got = ::read(file, buffer, sizeof buffer);
    if (got == 0) break;
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) failure = std::strerror(errno);
    if (got > 0) content.append(buffer, static_cast<std::size_t>(got));
    if (content.size() > kLargestFile) failure = "larger than 1 MiB";
    if (failure) break;
  }
  ::close(file);
  return failure;
}

std::string const* Settings::Find(std::string_view section, std::string_view name) const {
  auto const found = std::find_if(items_.begin(), items_.end(), [&](Item const& item) {
    return item.section == section && item.name == name;
  });
  return found == items_.end() ? nullptr : &found->value;
}

void Settings::Assign(std::string_view section, std::string_view name, std::string_view value) {
  for (Item& item : items_) {
    if (item.section == section && item.name == name) {
      item.value = value;
      return;
    }
  }
  items_.push_back({std::string(section), std::string(name), std::string(value)});
}

std::optional<std::string> Settings::ReadText(std::string_view text, std::string_view origin) {
  Settings read = *this;
  std::string section;
  unsigned number = 0;
  auto const wrong = [&](std::string_view what) {
    return std::string(origin) + ":" + std::to_string(number) + ": " + std::string(what);
  };
  while (!text.empty()) {
    ++number;
    std::size_t const end = std::min(text.find('\n'), text.size());
    std::string_view const line = Trim(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.find('\0') != std::string_view::npos) return wrong("a NUL byte; not a settings file");
    if (line.empty() || line.front() == ';' || line.front() == '#') continue;
    if (line.front() == '[') {
      if (line.back() != ']') return wrong("a section is written [Name]");
      section = Trim(line.substr(1, line.size() - 2));
      if (section.empty()) return wrong("a section without a name");
      continue;
    }
    std::size_t const equals = line.find('=');
    if (equals == std::string_view::npos) return wrong("expected [Section] or name = value");
    std::string_view const name = Trim(line.substr(0, equals));
    if (name.empty()) return wrong("a value without a name");
    if (section.empty()) return wrong("an item before the first [Section]");
    auto const value = ValueOf(Trim(line.substr(equals + 1)));
    if (!value) return wrong("a quoted value ends with its line and holds no other quote");
    read.Assign(section, name, *value);
  }
  items_ = std::move(read.items_);
  return std::nullopt;
}

std::optional<std::string> Settings::ReadFile(std::string const& path) {
  std::string content;
  if (auto const failure = ReadSmallFile(path, content)) return path + ": " + *failure;
  return ReadText(content, path);
}

std::optional<std::string> Settings::ReadAssignment(std::string_view assignment) {
  std::size_t const colon = assignment.find(':');
  std::size_t const equals = assignment.find('=', colon == std::string_view::npos ? 0 : colon);
  if (colon == std::string_view::npos || equals == std::string_view::npos || colon == 0 ||
      equals == colon + 1) {
    return "a setting is written SECTION:NAME=VALUE, not \"" + std::string(assignment) + "\"";
  }
  Assign(assignment.substr(0, colon), assignment.substr(colon + 1, equals - colon - 1),
         assignment.substr(equals + 1));
  return std::nullopt;
}

std::vector<std::string> SettingsFiles() {
  std::vector<std::string> files = {"/etc/gatotu/settings.ini"};
  char const* const configuration = std::getenv("XDG_CONFIG_HOME");
  char const* const home = std::getenv("HOME");
  if (configuration != nullptr && configuration[0] == '/') {
    files.push_back(std::string(configuration) + "/gatotu/settings.ini");
  } else if (home != nullptr && home[0] == '/') {
    files.push_back(std::string(home) + "/.config/gatotu/settings.ini");
  }
  return files;
}

}  // namespace gatotu::host
