#include "portable_inspectors/descendant_iterator.h"

#include <CoreServices/CoreServices.h>

#include <algorithm>
#include <cerrno>

#include "evaluator/plugin/entry_points.h"
#include "portable/file_errors.h"
#include "portable_inspectors/folder_entries.h"
#include "portable_inspectors/machine_files.h"

namespace {

// Folders that keep their file descriptor: so many in all, so many while a filter, which may open
// files of its own and takes a lack of them for an error, is asked.
constexpr std::size_t kMostOpen = 64;
constexpr std::size_t kMostOpenBesideFilter = 4;

}  // namespace

void descendant_iterator::Init() { *this = descendant_iterator(); }

void descendant_iterator::AddLocation(FileLocation const& location) {
  starts_.push_back(location.POSIXPath());
}

FileItem descendant_iterator::NextWithFilter(Filter filter, Glance glance) {
  while (Advance()) {
    Check_For_Inspector_Interruption();
    FileItem item;
    auto const glanced = GlanceAtItem(glance);
    int const decision = glanced ? *glanced : Ask(filter, item);
    is_to_be_entered_ = is_to_be_entered_ && (decision & kDescend) != 0;
    if ((decision & kAdd) != 0) return item;
  }
  throw NoSuchObject();
}

// That no more files may be open must pass neither for an empty folder nor for an unreadable file.
template <typename Open>
auto descendant_iterator::WithFreeFiles(Open const& open) {
  auto found = open();
  if (found || (found.absence().error != EMFILE && found.absence().error != ENFILE)) return found;
  for (Level const& level : levels_) level.open->Rest();
  return open();
}

descendant_iterator::DescendAndAddFlags descendant_iterator::Ask(Filter filter, FileItem& item) {
  std::size_t const depth = levels_.size();
  for (std::size_t up = kMostOpenBesideFilter; up < kMostOpen && up < depth; ++up) {
    levels_[depth - 1 - up].open->Rest();
  }
  try {
    return item.TryToGet(MakeFileLocation(ConstData(path_))) ? filter(item) : kSkip;
  } catch (FileIOError const&) {
    return kSkip;
  }
}

std::optional<descendant_iterator::DescendAndAddFlags> descendant_iterator::GlanceAtItem(
    Glance glance) {
  if (glance == nullptr) return std::nullopt;
  std::string_view const name = NameInPath(path_);
  if (kind_ == machine::ItemKind::kFolder) return glance({name, true, ConstData()});
  unsigned char buffer[kStartBytes];
  machine::Fact<std::size_t> const size = ReadStart(buffer);
  return size ? glance({name, false, ConstData(buffer, *size)}) : kSkip;
}

// The machine opens nothing but regular files, so that no pipe and no device holds the walk up.
machine::Fact<std::size_t> descendant_iterator::ReadStart(unsigned char* buffer) {
  if (kind_ == machine::ItemKind::kFile) {
    auto start = WithFreeFiles(
        [&] { return levels_.back().open->ReadStart(NameInPath(path_), buffer, kStartBytes); });
    if (start.outcome() != machine::Outcome::kNotSupported) return start;
  }
  auto const file = WithFreeFiles(
      [&] { return MachineFiles().OpenFork(path_, machine::Fork::kData, machine::Access::kRead); });
  if (!file) return file.absence();
  return (*file)->ReadAt(0, buffer, kStartBytes);
}

filesystem_object descendant_iterator::First(folder const& start) {
  Init();
  path_ = start.Path();
  Enter(OpenFolder(path_));
  return Next(start);
}

filesystem_object descendant_iterator::Next(folder const&) {
  if (!Advance()) throw NoSuchObject();
  return filesystem_object(path_);
}

bool descendant_iterator::Advance() {
  if (std::exchange(is_to_be_entered_, false)) EnterItem();
  while (!levels_.empty() || EnterNextStart()) {
    if (ReadLevel()) return true;
    levels_.pop_back();
  }
  return false;
}

bool descendant_iterator::ReadLevel() {
  Level const& level = levels_.back();
  path_.resize(level.path_size);
  FolderEntry entry;
  try {
    if (!ReadEntry(*level.open, path_, entry)) return false;
  } catch (MacintoshPlatform::FileLoopFailed const& error) {
    bool const is_not_recorded = error.GetCode() == fnfErr;
    if (is_not_recorded || (starts_.empty() && levels_.size() == 1)) throw;
    return false;
  } catch (NoSuchObject const&) {
    return false;
  }
  AppendName(path_, entry.name);
  kind_ = entry.kind;
  is_to_be_entered_ = kind_ == machine::ItemKind::kFolder;
  return true;
}

// `path_` is that of the folder.
void descendant_iterator::Enter(std::unique_ptr<machine::Folder> open) {
  levels_.push_back({std::move(open), path_.size()});
  if (levels_.size() > kMostOpen) levels_[levels_.size() - kMostOpen - 1].open->Rest();
}

void descendant_iterator::EnterItem() {
  auto found = WithFreeFiles([&] { return levels_.back().open->OpenFolder(NameInPath(path_)); });
  if (!found) return ThrowIfNotRecorded(path_, found.absence());
  machine::ItemStatus const& status = (*found)->Status();
  bool const is_inside_itself =
      std::any_of(levels_.begin(), levels_.end(),
                  [&](Level const& level) { return level.open->Status().is_same_item(status); });
  if (!is_inside_itself) Enter(std::move(found).value());
}

bool descendant_iterator::EnterNextStart() {
  while (next_start_ < starts_.size()) {
    path_ = starts_[next_start_++];
    if (path_.empty()) continue;
    auto found = MachineFiles().OpenFolder(path_);
    if (!found) ThrowIfNotRecorded(path_, found.absence());
    if (!found) continue;
    Enter(std::move(found).value());
    return true;
  }
  return false;
}
