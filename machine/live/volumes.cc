#include "machine/live/volumes.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/statvfs.h>

#include <cerrno>

#include "machine/library_beside.h"
#include "machine/live/item.h"
#include "machine/live/silent_mounts.h"
#include "machine/live/volumes_labels.h"
#include "machine/live/worker.h"

namespace machine::live {
namespace {

Volume RootVolume() { return {"System", "/", 0, 0, {}}; }

SharedVolumes Shared(std::vector<Volume> volumes) {
  return std::make_shared<std::vector<Volume> const>(std::move(volumes));
}

// Below a changed root the table need not have what holds it.
void EnsureRoot(std::vector<Volume>& volumes, Volume (*make_root)()) {
  bool const has_root = !volumes.empty() && volumes.front().mount_point == "/";
  if (!has_root) volumes.insert(volumes.begin(), make_root());
}

Volume RunningRootVolume() {
  Volume volume = RootVolume();
  ItemStatus root;
  if (ReadStatus(AT_FDCWD, "/", root)) {
    volume.mount = root.mount;
    volume.device = root.device;
  }
  return volume;
}

void AnnouncePrivate(std::vector<Mount> const& mounts) {
  for (Mount const& mount : mounts) {
    if (mount.is_private) Announce(mount.point, Outcome::kPermissionRefused);
  }
}

// What one look at a mount's root tells. Plain values, for it may come too late.
struct Look {
  int error = 0;
  struct statvfs volume = {};
  ItemStatus root;
};

Look LookAt(FileDescriptor const& folder) {
  Look look;
  bool const is_read = folder.is_open() && ::fstatvfs(folder.number(), &look.volume) == 0 &&
                       ReadStatus(folder.number(), "", look.root);
  if (!is_read) look.error = errno;
  return look;
}

// Another mount, or none, may be there by now. A kernel that does not number its mounts gives a
// device in the number's stead.
bool IsOf(Volume const& volume, ItemStatus const& root) {
  return volume.mount == 0 || volume.mount == root.mount || root.mount == root.device;
}

void FillSizes(struct statvfs const& volume, VolumeFacts& facts) {
  facts.total_bytes = volume.f_blocks * volume.f_frsize;
  facts.free_bytes = volume.f_bavail * volume.f_frsize;
  facts.block_bytes = volume.f_frsize;
  // A file system that makes room for files as they come tells no numbers.
  if (volume.f_files != 0) facts.files = volume.f_files - volume.f_ffree;
  if ((volume.f_flag & ST_RDONLY) != 0) facts.flags = kVolumeIsReadOnly;
}

void FillDates(ItemStatus const& root, VolumeFacts& facts) {
  if (root.has_birth) facts.created = root.birth;
  facts.modified = root.modification;
}

void AnnounceNotKept(Volume const& volume, char const* what) {
  if (CurrentSourceObserver() == nullptr) return;
  Announce(volume.mount_point + " (" + what + ")", Outcome::kNotSupported);
}

}  // namespace

Fact<std::vector<Mount>> ParseMounts(std::string const& table) {
  static auto const read_mounts =
      reinterpret_cast<MountReader>(OpenLibraryBeside("libFrameworksMounts.so", kMountReaderName));
  if (read_mounts == nullptr) {
    return AnnounceAbsence(Outcome::kNotSupported, "libFrameworksMounts.so");
  }
  std::vector<Mount> mounts;
  read_mounts(table, mounts);
  return mounts;
}

bool MountedVolumes::HasChanged() const {
  if (kept_ == nullptr) return true;
  pollfd table = {table_.number(), POLLPRI, 0};
  return ::poll(&table, 1, 0) != 0 || Labels::Version() != labels_version_;
}

Fact<SharedVolumes> MountedVolumes::Volumes() const {
  if (!root_.is_running()) return RecordedVolumes();
  std::lock_guard lock(guard_);
  if (HasChanged()) return ReadVolumes();
  Announce(kMountTable, Outcome::kAnswered);
  return kept_;
}

// The table is opened, and the labels are looked at, before they are read: what changes meanwhile
// is then a change since.
Fact<SharedVolumes> MountedVolumes::ReadVolumes() const {
  kept_ = nullptr;
  table_ = FileDescriptor(::open(kMountTable, O_RDONLY | O_CLOEXEC));
  labels_version_ = Labels::Version();
  Fact<std::string> const table = root_.ReadFile(kMountTable);
  if (!table) return table.absence();
  Fact<std::vector<Mount>> const mounts = ParseMounts(*table);
  if (!mounts) return mounts.absence();
  AnnouncePrivate(*mounts);
  std::vector<Volume> selected = SelectVolumes(*mounts, root_);
  EnsureRoot(selected, RunningRootVolume);
  in_memory_ = FindMountsInMemory(*mounts);
  SharedVolumes volumes = Shared(std::move(selected));
  if (table_.is_open()) kept_ = volumes;
  return volumes;
}

Fact<SharedVolumes> MountedVolumes::RecordedVolumes() const {
  Fact<std::string> const table = root_.ReadFile(kMountTable);
  if (!table) return Shared({RootVolume()});
  Fact<std::vector<Mount>> const mounts = ParseMounts(*table);
  if (!mounts) return mounts.absence();
  std::vector<Volume> volumes = SelectVolumes(*mounts, root_);
  for (Volume& volume : volumes) {
    volume = {std::move(volume.name), std::move(volume.mount_point), 0, 0, {}};
  }
  EnsureRoot(volumes, RootVolume);
  return Shared(std::move(volumes));
}

// The process itself lives by its root, so that is asked without a worker too.
bool MountedVolumes::AnswersFromMemory(Volume const& volume) const {
  std::lock_guard lock(guard_);
  return volume.mount_point == "/" || in_memory_.contains(volume.mount);
}

Fact<VolumeFacts> MountedVolumes::FactsOf(Volume const& volume) const {
  std::string const& path = volume.mount_point;
  if (!root_.is_running()) return FactsOfCopy(volume);
  auto const ask = [path] {
    return LookAt(FileDescriptor(::open(path.c_str(), O_PATH | O_CLOEXEC)));
  };
  std::optional<Look> const look =
      AnswersFromMemory(volume) ? std::optional(ask())
                                : AskWithin(kMountPatience, SubjectOf(path, volume.mount), ask);
  if (!look) return AnnounceAbsence(Outcome::kTimedOut, path);
  if (look->error != 0) return AnnounceError(look->error, path, "volume");
  if (!IsOf(volume, look->root)) return AnnounceAbsence(Outcome::kAbsent, path, "not mounted");
  Announce(path, Outcome::kAnswered);
  VolumeFacts facts;
  FillSizes(look->volume, facts);
  FillDates(look->root, facts);
  facts.root = look->root;
  AnnounceNotKept(volume, "count of folders");
  return facts;
}

// What is mounted elsewhere is no part of the tree.
Fact<VolumeFacts> MountedVolumes::FactsOfCopy(Volume const& volume) const {
  VolumeFacts facts;
  if (volume.mount_point != "/") {
    AnnounceNotKept(volume, "sizes and dates");
    return facts;
  }
  Look const look = LookAt(root_.OpenItem("/"));
  if (look.error != 0) return AnnounceError(look.error, "/", "volume");
  Announce("/", Outcome::kAnswered);
  FillSizes(look.volume, facts);
  FillDates(look.root, facts);
  AnnounceNotKept(volume, "count of folders");
  return facts;
}

}  // namespace machine::live
