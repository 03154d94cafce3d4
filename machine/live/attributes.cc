#include "machine/live/attributes.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <vector>

namespace machine::live {
namespace {

constexpr std::string_view kSpaces[] = {"user.", "osx.", "trusted."};  // the first wins
constexpr std::string_view kFinderInfo = "com.apple.FinderInfo";
constexpr std::string_view kResourceFork = "com.apple.ResourceFork";

constexpr std::size_t kFewNames = 1024, kMostNames = 1 << 16;  // bytes; the latter the kernel's

// Lists by folder and name since Linux 6.13, which saves the walk through /proc.
ssize_t ListIn(int folder, char const* name, char const* path, char* names, std::size_t size) {
  constexpr long kListAttributesAt = 465;
  static std::atomic<bool> is_known = true;
  if (is_known.load(std::memory_order_relaxed)) {
    long const listed =
        ::syscall(kListAttributesAt, folder, name, AT_SYMLINK_NOFOLLOW, names, size);
    if (listed >= 0 || errno == ERANGE) return listed;
    // A filter that does not know the call may refuse it with another error.
    if (errno == ENOSYS || errno == EPERM) is_known = false;
    if (is_known) return listed;
  }
  return ::llistxattr(path, names, size);
}

// Calls `visit(name)` for every attribute that `list(names, size)` tells; NUL-terminated.
template <typename List, typename Visit>
void ForEachAttribute(List&& list, Visit&& visit) {
  char few[kFewNames];
  std::vector<char> many;
  char* names = few;
  ssize_t size = list(names, kFewNames);
  if (size < 0 && errno == ERANGE) {
    many.resize(kMostNames);
    names = many.data();
    size = list(names, kMostNames);
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

AppleAttributes FindAppleAttributes(int folder, char const* name, char const* path) {
  AppleAttributes found;
  auto const list = [&](char* names, std::size_t size) {
    return ListIn(folder, name, path, names, size);
  };
  ForEachAttribute(list, [&](std::string_view attribute) {
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

int WriteResourceFork(char const* path, std::string const& content) {
  std::string const attribute = std::string(kSpaces[0]) + std::string(kResourceFork);
  return ::lsetxattr(path, attribute.c_str(), content.data(), content.size(), 0);
}

bool CopyAttributes(char const* from, char const* to) {
  int error = 0;
  auto const list = [from](char* names, std::size_t size) {
    return ::llistxattr(from, names, size);
  };
  ForEachAttribute(list, [&](std::string_view name) {
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
