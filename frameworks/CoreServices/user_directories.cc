#include "frameworks/CoreServices/user_directories.h"

#include <algorithm>

namespace {

std::string_view WithoutBlanks(std::string_view text) {
  std::size_t const first = text.find_first_not_of(" \t");
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

bool Take(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

// Up to the closing quote; nothing without one.
std::optional<std::string> Unquoted(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') return plain;
    if (text[i] == '\\' && i + 1 < text.size()) ++i;
    plain += text[i];
  }
  return {};
}

std::optional<std::string> ValueOf(std::string_view line, std::string_view variable,
                                   std::string const& home) {
  line = WithoutBlanks(line);
  if (!Take(line, variable)) return {};
  line = WithoutBlanks(line);
  if (!Take(line, "=")) return {};
  line = WithoutBlanks(line);
  if (!Take(line, "\"")) return {};
  bool const is_below_home = Take(line, "$HOME");
  auto path = Unquoted(line);
  if (!path || !(path->starts_with('/') || (is_below_home && path->empty()))) return {};
  return is_below_home ? home + *path : *path;
}

}  // namespace

std::optional<std::string> UserDirectoryIn(std::string_view text, std::string_view variable,
                                           std::string const& home) {
  std::optional<std::string> found;
  while (!text.empty()) {
    std::string_view const line = text.substr(0, text.find('\n'));
    if (auto value = ValueOf(line, variable, home)) found = std::move(value);
    text.remove_prefix(std::min(text.size(), line.size() + 1));
  }
  return found;
}
