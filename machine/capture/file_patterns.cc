#include "machine/capture/file_patterns.h"

#include <fnmatch.h>

#include <set>
#include <utility>

#include "machine/live/item.h"

namespace machine::capture {
namespace {

constexpr std::string_view kAnyFolders = "**";

bool IsLiteral(std::string const& part) { return part.find_first_of("*?[\\") == std::string::npos; }

// Folders that are still to be looked into, each with the part that is next. Where `**` stands
// twice, one place is come by in many ways.
class Search {
 public:
  Search(FileSource const& files, PatternParts const& parts, PatternVisitor& visitor)
      : files_(files), parts_(parts), visitor_(visitor) {}

  void Run() {
    GoOn("/", 0);
    while (!waiting_.empty() && !visitor_.HasEnough()) {
      auto const [path, at] = std::move(waiting_.back());
      waiting_.pop_back();
      LookInto(path, at);
    }
  }

 private:
  bool IsLast(std::size_t at) const { return at + 1 == parts_.size(); }

  void GoOn(std::string path, std::size_t at) {
    auto const [place, is_new] = known_.emplace(std::move(path), at);
    if (is_new) waiting_.push_back(*place);
  }

  void LookInto(std::string const& path, std::size_t at) {
    std::string const& part = parts_[at];
    if (IsLiteral(part)) return Take(live::PathIn(path, part), at, ItemKind::kFolder);
    if (part == kAnyFolders && !IsLast(at)) GoOn(path, at + 1);
    auto const folder = files_.OpenFolder(path);
    if (!folder) return Refuse(path, folder.absence());
    for (;;) {
      Fact<FolderEntry const*> const next = (*folder)->Next(Detail::kAll);
      if (!next) return Refuse(path, next.absence());
      if (*next == nullptr || visitor_.HasEnough()) return;
      Enter(path, **next, at);
    }
  }

  void Enter(std::string const& path, FolderEntry const& entry, std::size_t at) {
    std::string const child = live::PathIn(path, entry.name);
    ItemKind const kind = entry.item.status.kind;
    if (parts_[at] == kAnyFolders) {
      if (entry.name.front() == '.') return;
      if (IsLast(at)) visitor_.Matched(child);
      if (kind == ItemKind::kFolder) GoOn(child, at);
    } else if (::fnmatch(parts_[at].c_str(), entry.name.data(), FNM_PERIOD) == 0) {
      Take(child, at, kind);
    }
  }

  void Take(std::string const& path, std::size_t at, ItemKind kind) {
    if (IsLast(at)) {
      visitor_.Matched(path);
    } else if (kind == ItemKind::kFolder) {
      GoOn(path, at + 1);
    }
  }

  // That a name is missing, or is no folder's, is no refusal: then nothing matches.
  void Refuse(std::string const& path, Absence const& why) {
    if (why.reason != Outcome::kAbsent) visitor_.Refused(path, why);
  }

  FileSource const& files_;
  PatternParts const& parts_;
  PatternVisitor& visitor_;
  std::vector<std::pair<std::string, std::size_t>> waiting_;
  std::set<std::pair<std::string, std::size_t>> known_;
};

}  // namespace

std::optional<PatternParts> PartsOfPattern(std::string_view pattern) {
  if (!pattern.starts_with('/')) return {};
  PatternParts parts;
  while (!pattern.empty()) {
    std::size_t const end = std::min(pattern.find('/'), pattern.size());
    std::string part(pattern.substr(0, end));
    pattern.remove_prefix(std::min(end + 1, pattern.size()));
    bool const is_repeated = part == kAnyFolders && !parts.empty() && parts.back() == kAnyFolders;
    if (!part.empty() && !is_repeated) parts.push_back(std::move(part));
  }
  return parts;
}

void FindMatches(FileSource const& files, PatternParts const& parts, PatternVisitor& visitor) {
  if (parts.empty()) return visitor.Matched("/");
  Search(files, parts, visitor).Run();
}

}  // namespace machine::capture
