#include "machine/live/silent_mounts.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <ctime>
#include <filesystem>

#include "machine/live/folder_path.h"
#include "machine/live/item.h"
#include "machine/live/root.h"
#include "machine/live/volumes.h"
#include "machine/live/worker.h"

namespace machine::live {
namespace {

constexpr std::int64_t kSecond = 1'000'000'000;

// A tick of the kernel is exact enough, and this is the cheapest of its clocks.
std::int64_t Now() {
  timespec now = {};
  ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return now.tv_sec * kSecond + now.tv_nsec;
}

// To read the whole table takes a library, which most processes need not load for this.
bool NamesForeignType(std::string_view table) {
  constexpr std::string_view kBeforeType = " - ";
  std::size_t at = table.find(kBeforeType);
  for (; at != std::string_view::npos; at = table.find(kBeforeType, at)) {
    at += kBeforeType.size();
    if (IsServedByOthers(table.substr(at, table.find(' ', at) - at))) return true;
  }
  return false;
}

bool LiesIn(std::string_view path, std::string_view point) {
  return path.starts_with(point) && (path.size() == point.size() || path[point.size()] == '/');
}

// A path without ".." and the like needs no other spelling, and that costs more than all the rest.
bool IsPlain(std::string_view path) {
  return path.find("/.") == std::string_view::npos && path.find("//") == std::string_view::npos;
}

// Of the file system itself, since a folder may be told from memory.
void LookAt(std::string const& point) {
  FileDescriptor const folder(::open(point.c_str(), O_PATH | O_CLOEXEC));
  struct statvfs volume;
  if (folder.is_open()) ::fstatvfs(folder.number(), &volume);
}

}  // namespace

// The file of the table is opened before it is read: what changes meanwhile is then a change since.
void SilentMounts::ReadTable(Root const& root) {
  pollfd changes = {table_.number(), POLLPRI, 0};
  if (table_.is_open() && ::poll(&changes, 1, 0) == 0) return;
  Unobserved const unobserved;
  table_ = FileDescriptor(::open(kMountTable, O_RDONLY | O_CLOEXEC));
  watched_.clear();
  Fact<std::string> const table = root.ReadFile(kMountTable);
  if (!table || !NamesForeignType(*table)) return;
  Fact<std::vector<Mount>> const mounts = ParseMounts(*table);
  if (!mounts) return;
  for (Mount& mount : FindMountsOfOthers(*mounts)) {
    watched_.push_back({std::move(mount.point), mount.number});
  }
}

bool SilentMounts::HasAny(Root const& root, std::int64_t now) {
  if (now >= good_until_.load(std::memory_order_acquire)) [[unlikely]] {
    std::lock_guard lock(guard_);
    ReadTable(root);
    has_any_.store(!watched_.empty(), std::memory_order_relaxed);
    good_until_.store(now + kSecond, std::memory_order_release);
  }
  return has_any_.load(std::memory_order_relaxed);
}

std::vector<SilentMounts::Watched> SilentMounts::DoubtfulOnTheWayTo(std::string_view path,
                                                                    std::int64_t now) {
  std::vector<Watched> mounts;
  std::lock_guard lock(guard_);
  for (Watched const& mount : watched_) {
    if (now >= mount.good_until && LiesIn(path, mount.point)) mounts.push_back(mount);
  }
  return mounts;
}

// The subject is that of whoever else asks the mount, so that a silent one is waited for once.
bool SilentMounts::Answers(Watched const& mount) {
  auto const look = [point = mount.point] { LookAt(point); };
  if (!RunWithin(kMountPatience, SubjectOf(mount.point, mount.number), look)) return false;
  std::lock_guard lock(guard_);
  for (Watched& watched : watched_) {
    if (watched.number == mount.number) watched.good_until = Now() + kSecond;
  }
  return true;
}

bool SilentMounts::AreOnTheWayTo(std::string_view path, Root const& root) {
  std::int64_t const now = Now();
  if (!HasAny(root, now)) return false;
  auto const mounts =
      IsPlain(path)
          ? DoubtfulOnTheWayTo(path, now)
          : DoubtfulOnTheWayTo(std::filesystem::path(path).lexically_normal().native(), now);
  return !std::all_of(mounts.begin(), mounts.end(),
                      [this](Watched const& mount) { return Answers(mount); });
}

bool SilentMounts::MayLieIn(FolderPath const& folder, Root const& root) {
  if (!HasAny(root, Now())) return false;
  std::string const start = PathIn(folder.Text(), "");
  std::lock_guard lock(guard_);
  return std::any_of(watched_.begin(), watched_.end(), [&start](Watched const& mount) {
    return mount.point.rfind('/') + 1 == start.size() && mount.point.starts_with(start);
  });
}

}  // namespace machine::live
