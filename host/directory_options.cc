#include "host/directory_options.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <utility>

#include "host/time_limit.h"
#include "inspectors/activedirectory/directory/active_directory_inspector_context.h"

namespace gatotu::host {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::seconds;

constexpr std::string_view kSection = "Directory";
constexpr seconds kLongestQuestion{600};

struct Nonsense {
  std::string message;
};

// The items of the section, each understood or refused.
class Reader {
 public:
  explicit Reader(Settings const& settings) : settings_(settings) {}

  // Null where it is not set.
  std::string const* Text(std::string_view name) const { return settings_.Find(kSection, name); }
  std::string TextOr(std::string_view name, std::string otherwise) const {
    std::string const* const text = Text(name);
    return text == nullptr ? otherwise : *text;
  }

  [[noreturn]] static void Refuse(std::string_view name, std::string const& why) {
    throw Nonsense{std::string(kSection).append(":").append(name).append(": ").append(why)};
  }

  void Take(std::string_view name, bool& value) const {
    std::string const* const text = Text(name);
    if (text == nullptr) return;
    value = *text == "yes" || *text == "true" || *text == "1";
    if (value || *text == "no" || *text == "false" || *text == "0") return;
    Refuse(name, "\"" + *text + "\" is neither yes nor no");
  }

  void TakeInterval(std::string_view name, std::uint32_t& interval) const {
    std::string const* const text = Text(name);
    if (text == nullptr) return;
    auto const duration = ParseDuration(*text);
    if (!duration || *duration < seconds(1)) {
      Refuse(name, "\"" + *text + "\" is no duration of a second or more, such as 12h");
    }
    interval = static_cast<std::uint32_t>(std::chrono::duration_cast<seconds>(*duration).count());
  }

  void TakeTimeLimit(std::string_view name, milliseconds& limit) const {
    std::string const* const text = Text(name);
    if (text == nullptr) return;
    auto const duration = ParseDuration(*text);
    if (!duration || *duration < milliseconds(1) || *duration > kLongestQuestion) {
      Refuse(name, "\"" + *text + "\" is no duration from 1ms to 10m");
    }
    limit = std::chrono::duration_cast<milliseconds>(*duration);
  }

 private:
  Settings const& settings_;
};

void TakeCacheFolder(Reader const& reader, std::string& folder) {
  constexpr char kName[] = "CacheFolder";
  folder = reader.TextOr(kName, DefaultDirectoryCacheFolder());
  if (!folder.empty() && folder.front() != '/') {
    Reader::Refuse(kName, "\"" + folder + "\" is no absolute path");
  }
}

// Separated by commas, with white space that does not count.
std::vector<std::string> NamesIn(std::string_view text) {
  constexpr std::string_view kBlank = " \t";
  std::vector<std::string> names;
  while (!text.empty()) {
    std::size_t const end = std::min(text.find(','), text.size());
    std::string_view name = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    name.remove_prefix(std::min(name.find_first_not_of(kBlank), name.size()));
    name = name.substr(0, name.find_last_not_of(kBlank) + 1);
    if (!name.empty()) names.emplace_back(name);
  }
  return names;
}

bool IsDirectoryUri(std::string_view uri) {
  for (std::string_view const scheme : {"ldap://", "ldaps://", "ldapi://"}) {
    if (uri.starts_with(scheme)) return true;
  }
  return false;
}

void TakeUri(Reader const& reader, std::string& uri) {
  constexpr char kName[] = "URI";
  uri = reader.TextOr(kName, {});
  if (uri.empty() || IsDirectoryUri(uri)) return;
  Reader::Refuse(kName, "\"" + uri + "\" is no URI such as ldaps://dc1.example.com");
}

// A name without a password would be let in as nobody, and look as if it had been asked for. Who
// may not read the password, on a machine that is set up for its superuser, asks as themselves.
void TakeBind(Reader const& reader, machine::DirectorySettings& source) {
  constexpr char kName[] = "BindName", kFile[] = "BindPasswordFile";
  source.bind_name = reader.TextOr(kName, {});
  std::string const file = reader.TextOr(kFile, {});
  if (source.bind_name.empty() && file.empty()) return;
  if (source.bind_name.empty()) Reader::Refuse(kFile, "there is no Directory:BindName");
  if (file.empty()) Reader::Refuse(kName, "there is no Directory:BindPasswordFile");
  if (file.front() != '/') Reader::Refuse(kFile, "\"" + file + "\" is no absolute path");
  if (::access(file.c_str(), R_OK) != 0 && errno == EACCES) return source.bind_name.clear();
  std::string text;
  if (auto const failure = ReadSmallFile(file, text)) Reader::Refuse(kFile, file + ": " + *failure);
  source.bind_password = text.substr(0, text.find_first_of("\r\n"));
  if (source.bind_password.empty()) Reader::Refuse(kFile, file + ": no password in the first line");
}

DirectoryOptions Read(Reader const& reader) {
  DirectoryOptions options;
  reader.Take("Enabled", options.is_enabled);
  reader.TakeInterval("ComputerInterval", options.computer_interval);
  if (reader.TextOr("UserInterval", {}) == "never") {
    options.user_interval = ActiveDirectoryInspectorContext::kNeverRefresh;
  } else {
    reader.TakeInterval("UserInterval", options.user_interval);
  }
  TakeCacheFolder(reader, options.cache_folder);
  options.users = NamesIn(reader.TextOr("Users", {}));
  TakeUri(reader, options.source.uri);
  options.source.base = reader.TextOr("Base", {});
  TakeBind(reader, options.source);
  reader.Take("AllowClearLoopback", options.source.allows_clear_loopback);
  reader.TakeTimeLimit("TimeLimit", options.source.time_limit);
  return options;
}

std::string Variable(char const* name) {
  char const* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

std::variant<DirectoryOptions, std::string> ReadDirectoryOptions(Settings const& settings) {
  try {
    return Read(Reader(settings));
  } catch (Nonsense const& nonsense) {
    return nonsense.message;
  }
}

std::string DefaultDirectoryCacheFolder() {
  constexpr char kFolder[] = "/gatotu/directory";
  if (::geteuid() == 0) return std::string("/var/lib") + kFolder;
  std::string const state = Variable("XDG_STATE_HOME"), home = Variable("HOME");
  if (state.starts_with('/')) return state + kFolder;
  return home.starts_with('/') ? home + "/.local/state" + kFolder : "";
}

}  // namespace gatotu::host
