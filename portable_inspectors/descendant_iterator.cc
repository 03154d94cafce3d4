#include "portable_inspectors/descendant_iterator.h"

#include <CoreServices/CoreServices.h>

#include <algorithm>
#include <cerrno>

#include "evaluator/plugin/entry_points.h"
#include "portable/file_errors.h"
#include "portable_inspectors/folder_entries.h"
#include "portable_inspectors/machine_files.h"

namespace {

// Folders above the current one that keep their file descriptor.
constexpr std::size_t kMostOpen = 64;

}  // namespace

void descendant_iterator::Init() { *this = descendant_iterator(); }

void descendant_iterator::AddLocation(FileLocation const& location) {
  starts_.push_back(location.POSIXPath());
}

FileItem descendant_iterator::NextWithFilter(Filter filter) {
  while (Advance()) {
    Check_For_Inspector_Interruption();
    int decision = kSkip;
    FileItem item;
    try {
      if (item.TryToGet(MakeFileLocation(ConstData(path_)))) decision = filter(item);
    } catch (FileIOError const&) {
    }
    is_folder_ = is_folder_ && (decision & kDescend) != 0;
    if ((decision & kAdd) != 0) return item;
  }
  throw NoSuchObject();
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
  if (std::exchange(is_folder_, false)) EnterItem();
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
  is_folder_ = entry.kind == machine::ItemKind::kFolder;
  return true;
}

// `path_` is that of the folder.
void descendant_iterator::Enter(std::unique_ptr<machine::Folder> open) {
  levels_.push_back({std::move(open), path_.size()});
  if (levels_.size() > kMostOpen) levels_[levels_.size() - kMostOpen - 1].open->Rest();
}

machine::Fact<std::unique_ptr<machine::Folder>> descendant_iterator::OpenItem() {
  auto found = levels_.back().open->OpenFolder(NameInPath(path_));
  // No more files may be open, which must not pass for an empty folder.
  if (found || (found.absence().error != EMFILE && found.absence().error != ENFILE)) return found;
  for (Level const& level : levels_) level.open->Rest();
  return levels_.back().open->OpenFolder(NameInPath(path_));
}

void descendant_iterator::EnterItem() {
  auto found = OpenItem();
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
    if (!found) continue;
    Enter(std::move(found).value());
    return true;
  }
  return false;
}
