#include <cstdlib>
#include <mutex>

#include "machine/live/directory_network.h"
#include "machine/live/text.h"
#include "machine/never_destroyed.h"

namespace machine {
namespace {

struct Kept {
  std::mutex guard;
  live::NumberedSettings settings = {std::make_shared<DirectorySettings>(), 1};
};

Kept& TheKept() {
  static NeverDestroyed<Kept> kept;
  return *kept;
}

std::string Variable(char const* name) {
  char const* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

// The files that the LDAP library reads, in no order.
std::vector<std::string> ClientFiles() {
  std::vector<std::string> files = {"/etc/ldap/ldap.conf"};
  std::string const home = Variable("HOME"), named = Variable("LDAPRC");
  for (std::string const& name : {std::string("ldaprc"), named}) {
    if (name.empty()) continue;
    if (!home.empty()) files.push_back(home + "/" + name);
    if (!home.empty()) files.push_back(home + "/." + name);
    files.push_back(name);
  }
  files.push_back(Variable("LDAPCONF"));
  return files;
}

bool NamesServer(std::string_view text) {
  while (!text.empty()) {
    std::string_view const line = live::Trim(live::TakeLine(text));
    std::size_t const end = line.find_first_of(" \t");
    bool const names_server =
        end != std::string_view::npos && EqualIgnoringCase(line.substr(0, end), "URI");
    if (names_server) return true;
  }
  return false;
}

}  // namespace

void SetDirectorySettings(DirectorySettings settings) {
  auto next = std::make_shared<DirectorySettings const>(std::move(settings));
  std::lock_guard lock(TheKept().guard);
  TheKept().settings = {std::move(next), TheKept().settings.number + 1};
}

namespace live {

NumberedSettings CurrentDirectorySettings() {
  std::lock_guard lock(TheKept().guard);
  return TheKept().settings;
}

bool IsNetworkDirectoryConfigured(Root const& root, DirectorySettings const& settings) {
  if (!settings.uri.empty()) return true;
  if (!Variable("LDAPNOINIT").empty()) return false;
  if (!Variable("LDAPURI").empty()) return true;
  for (std::string const& path : ClientFiles()) {
    if (path.empty()) continue;
    Fact<std::string> const text = root.ReadFile(path);
    if (text && NamesServer(*text)) return true;
  }
  return false;
}

}  // namespace live
}  // namespace machine
