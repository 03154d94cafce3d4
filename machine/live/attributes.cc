#include "machine/live/attributes.h"

#include <sys/xattr.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <vector>

namespace machine::live {
namespace {

constexpr std::string_view kSpaces[] = {"user.", "osx.", "trusted."};  // the first wins
constexpr std::string_view kFinderInfo = "com.apple.FinderInfo";
constexpr std::string_view kResourceFork = "com.apple.ResourceFork";

// Calls `visit(name)` for every attribute; the names are NUL-terminated.
template <typename Visit>
void ForEachAttribute(char const* path, Visit&& visit) {
  char few[1024];
  std::vector<char> many;
  char* names = few;
  ssize_t size = ::llistxattr(path, few, sizeof few);
  if (size < 0 && errno == ERANGE) {
    many.resize(1 << 16);  // the kernel's own bound
    names = many.data();
    size = ::llistxattr(path, names, many.size());
  }
  for (ssize_t at = 0; at < size;) {
    std::string_view const name(names + at);
    visit(name);
    at += static_cast<ssize_t>(name.size()) + 1;
  }
}

// The place of an attribute's space among those known, or their count.
std::size_t SpaceOf(std::string_view attribute, std::string_view name) {
  auto const* space = std::find_if(std::begin(kSpaces), std::end(kSpaces), [&](auto prefix) {
    return attribute.size() == prefix.size() + name.size() && attribute.starts_with(prefix) &&
           attribute.ends_with(name);
  });
  return static_cast<std::size_t>(space - kSpaces);
}

void KeepBetter(std::string_view attribute, std::string_view name, std::string& kept) {
  std::size_t const space = SpaceOf(attribute, name);
  if (space < std::size(kSpaces) && (kept.empty() || space < SpaceOf(kept, name))) {
    kept = attribute;
  }
}

}  // namespace

AppleAttributes FindAppleAttributes(char const* path) {
  AppleAttributes found;
  ForEachAttribute(path, [&](std::string_view attribute) {
    KeepBetter(attribute, kFinderInfo, found.finder_info);
    KeepBetter(attribute, kResourceFork, found.resource_fork);
  });
  return found;
}

std::optional<FinderInfo> ReadFinderInfo(char const* path, std::string const& attribute) {
  std::optional<std::string> const value = ReadAttribute(path, attribute);
  if (!value || value->empty()) return {};
  FinderInfo info{};
  std::memcpy(info.data(), value->data(), std::min(value->size(), info.size()));
  return info;
}

std::optional<std::uint64_t> AttributeSize(char const* path, std::string const& attribute) {
  ssize_t const size = ::lgetxattr(path, attribute.c_str(), nullptr, 0);
  if (size < 0) return {};
  return static_cast<std::uint64_t>(size);
}

// It may grow between the question and the answer.
std::optional<std::string> ReadAttribute(char const* path, std::string const& attribute) {
  constexpr int kTries = 8;
  for (int i = 0; i < kTries; ++i) {
    std::optional<std::uint64_t> const size = AttributeSize(path, attribute);
    if (!size) return {};
    std::string value(*size, '\0');
    if (value.empty()) return value;
    ssize_t const got = ::lgetxattr(path, attribute.c_str(), value.data(), value.size());
    if (got >= 0) {
      value.resize(static_cast<std::size_t>(got));
      return value;
    }
    if (errno != ERANGE) return {};
  }
  return {};
}

int WriteFinderInfo(char const* path, FinderInfo const& info) {
  std::string const attribute = std::string(kSpaces[0]) + std::string(kFinderInfo);
  return ::lsetxattr(path, attribute.c_str(), info.data(), info.size(), 0);
}

bool CopyAttributes(char const* from, char const* to) {
  int error = 0;
  ForEachAttribute(from, [&](std::string_view name) {
    std::string const attribute(name);
    std::optional<std::string> const value = ReadAttribute(from, attribute);
    bool const is_wanted = name.find("com.apple.") != std::string_view::npos;
    bool const is_set =
        value && ::lsetxattr(to, attribute.c_str(), value->data(), value->size(), 0) == 0;
    if (!is_set && is_wanted) error = errno;
  });
  errno = error;
  return error == 0;
}

}  // namespace machine::live
