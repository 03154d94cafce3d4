// Reading the small texts of /proc, /sys and /etc.
#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>

namespace machine::live {

inline std::string_view Trim(std::string_view text) {
  constexpr std::string_view kWhite(" \t\r\n\0", 5);
  std::size_t const first = text.find_first_not_of(kWhite);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kWhite) - first + 1);
}

// The whole text as a number without sign, or nothing.
template <typename Number>
std::optional<Number> ParseNumber(std::string_view text, int base = 10) {
  Number number = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (error != std::errc() || end != text.data() + text.size() || number < 0) return {};
  return number;
}

// The number at the text's start, whatever follows it.
template <typename Number>
std::optional<Number> ParseLeadingNumber(std::string_view text) {
  Number number = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || number < 0) return {};
  return number;
}

// Takes the first line off the text, without its line feed.
inline std::string_view TakeLine(std::string_view& text) {
  std::size_t const end = text.find('\n');
  std::string_view const line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return line;
}

// The value of a line "key : value" or, with another separator, "key=value"; nothing when the line
// has another key.
inline std::optional<std::string_view> ValueIn(std::string_view line, std::string_view key,
                                               char separator = ':') {
  if (!line.starts_with(key)) return {};
  line.remove_prefix(key.size());
  std::size_t const at = line.find_first_not_of(" \t");
  if (at == std::string_view::npos || line[at] != separator) return {};
  return Trim(line.substr(at + 1));
}

// The value of the first line with that key.
inline std::optional<std::string_view> FindValue(std::string_view text, std::string_view key,
                                                 char separator = ':') {
  while (!text.empty()) {
    if (auto const value = ValueIn(TakeLine(text), key, separator)) return value;
  }
  return {};
}

// Takes the quotes off a value as a shell would, for files of assignments like /etc/machine-info.
inline std::string Unquote(std::string_view text) {
  std::string plain;
  char quote = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char const character = text[i];
    if (character == '\\' && quote != '\'' && i + 1 < text.size()) {
      plain += text[++i];
    } else if (quote == 0 && (character == '"' || character == '\'')) {
      quote = character;
    } else if (character == quote) {
      quote = 0;
    } else {
      plain += character;
    }
  }
  return plain;
}

}  // namespace machine::live
