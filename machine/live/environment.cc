#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <unordered_set>

#include "machine/live/sources.h"

namespace machine::live {

Fact<std::string> Environment::Variable(std::string const& name) const {
  if (!root_.is_running()) return AnnounceAbsence(Outcome::kNotSupported, "environment");
  char const* value = name.find('=') == std::string::npos ? std::getenv(name.c_str()) : nullptr;
  if (value == nullptr) return AnnounceAbsence(Outcome::kAbsent, "environment " + name);
  std::string text = value;
  if (CurrentSourceObserver() != nullptr) {
    Announce("environment " + name, Outcome::kAnswered, text.size());
  }
  return text;
}

Fact<std::vector<std::string>> Environment::VariableNames() const {
  if (!root_.is_running()) return AnnounceAbsence(Outcome::kNotSupported, "environment");
  std::vector<std::string> names;
  std::unordered_set<std::string_view> seen;
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    std::string_view const text = *entry;
    std::size_t const equals = text.find('=');
    if (equals == 0 || equals == std::string_view::npos) continue;
    std::string_view const name = text.substr(0, equals);
    if (seen.insert(name).second) names.emplace_back(name);
  }
  Announce("environment", Outcome::kAnswered);
  return names;
}

}  // namespace machine::live
