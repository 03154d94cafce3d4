#include "machine/capture/path_walk.h"

#include <algorithm>
#include <cerrno>
#include <climits>

#include "machine/live/root.h"

namespace machine::capture {
namespace {

// The names of a path, one after the other.
class Names {
 public:
  explicit Names(std::string path) : path_(std::move(path)) {}

  // Empty when there is none left.
  std::string Take() {
    std::size_t const start = std::min(path_.find_first_not_of('/', at_), path_.size());
    at_ = std::min(path_.find('/', start), path_.size());
    return path_.substr(start, at_ - start);
  }
  bool is_empty() const { return path_.find_first_not_of('/', at_) == std::string::npos; }
  void PutInFront(std::string const& path) {
    path_ = path + path_.substr(at_);
    at_ = 0;
  }

 private:
  std::string path_;
  std::size_t at_ = 0;
};

Absence Failure(int error, std::string const& path) {
  return {live::OutcomeOf(error), path, {}, error};
}

}  // namespace

Fact<std::string> WalkPath(ItemsOnTheWay& items, std::string const& path, Links links) {
  constexpr int kMostLinks = 40;  // the kernel's
  if (path.find('\0') != std::string::npos) return Failure(EINVAL, path);
  std::string at;
  Names names(path);
  for (int links_followed = 0;;) {
    std::string const name = names.Take();
    if (name.empty()) return at.empty() ? "/" : at;
    if (name == ".") continue;
    if (name == "..") {
      at.resize(at.empty() ? 0 : at.rfind('/'));
      continue;
    }
    std::string next = at + "/" + name;
    bool const is_last = names.is_empty();
    if (is_last && links == Links::kKeep) return next;
    Fact<ItemKind> const kind = items.KindOf(next);
    if (!kind) return kind.absence();
    if (*kind == ItemKind::kLink) {
      Fact<std::string> const target = items.TargetOf(next);
      if (!target) return target.absence();
      if (target->empty()) return Failure(ENOENT, path);
      if (target->size() >= PATH_MAX) return Failure(ENAMETOOLONG, path);
      if (++links_followed > kMostLinks) return Failure(ELOOP, path);
      if (target->front() == '/') at.clear();
      names.PutInFront(*target);
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
