#include "machine/capture/path_walk.h"

#include <algorithm>
#include <cerrno>

#include "machine/live/root.h"

namespace machine::capture {
namespace {

// Takes the first name off; empty when there is none left.
std::string TakeName(std::string& rest) {
  std::size_t const start = std::min(rest.find_first_not_of('/'), rest.size());
  std::size_t const end = std::min(rest.find('/', start), rest.size());
  std::string name = rest.substr(start, end - start);
  rest.erase(0, end);
  return name;
}

Absence Failure(int error, std::string const& path) {
  return {live::OutcomeOf(error), path, {}, error};
}

}  // namespace

Fact<std::string> WalkPath(ItemsOnTheWay& items, std::string const& path, Links links) {
  constexpr int kMostLinks = 40;  // the kernel's
  if (path.find('\0') != std::string::npos) return Failure(EINVAL, path);
  std::string at, rest = path;
  for (int links_followed = 0;;) {
    std::string const name = TakeName(rest);
    if (name.empty()) return at.empty() ? "/" : at;
    if (name == ".") continue;
    if (name == "..") {
      at.resize(at.empty() ? 0 : at.rfind('/'));
      continue;
    }
    std::string next = at + "/" + name;
    bool const is_last = rest.find_first_not_of('/') == std::string::npos;
    if (is_last && links == Links::kKeep) return next;
    Fact<ItemKind> const kind = items.KindOf(next);
    if (!kind) {
      Absence absence = kind.absence();
      absence.source = path;
      return absence;
    }
    if (*kind == ItemKind::kLink) {
      Fact<std::string> const target = items.TargetOf(next);
      if (!target) return target.absence();
      if (target->empty()) return Failure(ENOENT, path);
      if (++links_followed > kMostLinks) return Failure(ELOOP, path);
      if (target->front() == '/') at.clear();
      rest = *target + rest;
      continue;
    }
    if (!is_last && *kind != ItemKind::kFolder) return Failure(ENOTDIR, path);
    at = std::move(next);
  }
}

SplitPath::SplitPath(std::string const& path) {
  std::size_t const slash = path.rfind('/');
  folder = slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
  name = path.substr(slash + 1);
}

}  // namespace machine::capture
