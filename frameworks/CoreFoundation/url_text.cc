#include "frameworks/CoreFoundation/url_text.h"

namespace url_text {
namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

bool IsAlphanumeric(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

bool IsOneOf(char c, std::string_view set) { return set.find(c) != std::string_view::npos; }

bool EndsWithComponent(std::string_view path, std::string_view component) {
  if (!path.ends_with(component)) return false;
  return path.size() == component.size() || path[path.size() - component.size() - 1] == '/';
}

}  // namespace

bool IsWellFormed(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    char const c = text[i];
    if (c <= ' ' || c == 0x7F || IsOneOf(c, "\"<>\\^`{|}")) return false;
    if (c != '%') continue;
    if (i + 2 >= text.size() || HexValue(text[i + 1]) < 0 || HexValue(text[i + 2]) < 0) {
      return false;
    }
  }
  return true;
}

std::string Escape(std::string_view path, bool is_relative) {
  std::string text;
  text.reserve(path.size());
  for (char const c : path) {
    bool const is_plain = IsAlphanumeric(c) || (c != '\0' && IsOneOf(c, "/-_.~!$&'()*+,=@"));
    if (is_plain || (c == ':' && !is_relative)) {
      text.push_back(c);
    } else {
      auto const byte = static_cast<unsigned char>(c);
      text.append({'%', kHexDigits[byte >> 4], kHexDigits[byte & 15]});
    }
  }
  return text;
}

std::string Unescape(std::string_view text) {
  std::string path;
  path.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      path.push_back(text[i]);
    } else {
      path.push_back(static_cast<char>(HexValue(text[i + 1]) << 4 | HexValue(text[i + 2])));
      i += 2;
    }
  }
  return path;
}

std::size_t SchemeLength(std::string_view text) {
  std::size_t const colon = text.find(':');
  if (colon == std::string_view::npos || colon == 0 || text[0] <= '9') return 0;
  for (char const c : text.substr(0, colon)) {
    if (!IsAlphanumeric(c) && !IsOneOf(c, "+-.")) return 0;
  }
  return colon + 1;
}

std::string_view WithoutTrailingSlashes(std::string_view path) {
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  return path;
}

std::string_view LastComponent(std::string_view path) {
  path = WithoutTrailingSlashes(path);
  std::size_t const slash = path.rfind('/');
  return slash == std::string_view::npos || path.size() == 1 ? path : path.substr(slash + 1);
}

bool IsFolderPath(std::string_view path) {
  return path.ends_with('/') || EndsWithComponent(path, ".") || EndsWithComponent(path, "..");
}

std::string DeleteLastComponent(std::string_view path) {
  path = WithoutTrailingSlashes(path);
  while (path.size() > 1 && EndsWithComponent(path, ".")) {
    path = WithoutTrailingSlashes(path.substr(0, path.size() - 1));
  }
  if (path == "/") return "/../";
  if (path == "." || path.empty()) return "../";
  if (EndsWithComponent(path, "..")) return std::string(path) + "/../";
  std::size_t const slash = path.rfind('/');
  return slash == std::string_view::npos ? "./" : std::string(path.substr(0, slash + 1));
}

}  // namespace url_text
