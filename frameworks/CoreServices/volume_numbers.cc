#include "frameworks/CoreServices/volume_numbers.h"

#include <algorithm>

#include "frameworks/CoreServices/catalog_info.h"
#include "frameworks/CoreServices/file_references.h"
#include "machine/never_destroyed.h"

namespace {

using machine::ItemStatus;
using machine::Links;
using machine::Volume;

constexpr FSVolumeRefNum kFirst = -100;
constexpr std::size_t kMost = 31'900;

std::string FolderOf(std::string const& path) {
  return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

// Climbs as long as the folder above lies on the same mount.
std::string MountFolder(ItemStatus const& status, std::string path) {
  while (path != "/") {
    std::string const above = FolderOf(path);
    auto const folder = MachineFiles().Status(above, Links::kKeep);
    if (!folder || folder->mount != status.mount) break;
    path = above;
  }
  return path;
}

bool IsOn(Volume const& volume, std::uint64_t mount) {
  auto const& others = volume.other_mounts;
  return volume.mount == mount || std::find(others.begin(), others.end(), mount) != others.end();
}

}  // namespace

FSVolumeRefNum VolumeOf(ItemStatus const& status, std::string const& path) {
  return VolumeNumbers::Shared().NumberOf(status, path);
}

VolumeNumbers& VolumeNumbers::Shared() {
  static machine::NeverDestroyed<VolumeNumbers> shared;
  return *shared;
}

VolumeNumbers::Identity VolumeNumbers::IdentityOf(Volume const& volume) {
  bool const is_told = volume.mount != 0;
  return {{volume.mount, is_told ? volume.device : 0},
          is_told ? std::string() : volume.mount_point};
}

FSVolumeRefNum VolumeNumbers::Find(Identity const& identity) const {
  auto const found = numbers_.find(identity);
  return found == numbers_.end() ? FSVolumeRefNum{0} : found->second;
}

VolumeNumbers::Known& VolumeNumbers::KnownAs(FSVolumeRefNum number) {
  return known_[static_cast<std::size_t>(kFirst - number)];
}

FSVolumeRefNum VolumeNumbers::Enter(Volume const& volume) {
  Identity const identity = IdentityOf(volume);
  FSVolumeRefNum number = Find(identity);
  if (number != 0) {
    KnownAs(number).volume = volume;
    return number;
  }
  if (known_.size() == kMost) return 0;
  number = static_cast<FSVolumeRefNum>(kFirst - static_cast<int>(known_.size()));
  known_.push_back({volume, false, false});
  numbers_.emplace(identity, number);
  has_untold_mounts_ |= volume.mount == 0;
  return number;
}

// What changed since is entered. Without a list there is still what holds the root.
machine::SharedVolumes VolumeNumbers::ReadList() {
  if (std::uint64_t const current = machine::CurrentMachineNumber();
      current != machine_ || known_.empty()) {
    known_.clear();
    numbers_.clear();
    list_ = nullptr;
    has_untold_mounts_ = false;
    machine_ = current;
  }
  auto const volumes = machine::CurrentMachine().Volumes().Volumes();
  if (known_.empty() && !volumes) Enter({"System", "/", 0, 0, {}});
  if (!volumes || *volumes == list_) return volumes ? list_ : nullptr;
  list_ = *volumes;
  numbers_of_mounts_.clear();
  for (Known& known : known_) known.is_listed = false;
  for (Volume const& volume : *list_) {
    FSVolumeRefNum const number = Enter(volume);
    if (number != 0) KnownAs(number).is_listed = true;
  }
  return list_;
}

std::optional<NumberedVolume> VolumeNumbers::At(std::size_t place) {
  std::lock_guard lock(guard_);
  machine::SharedVolumes const list = ReadList();
  if (list == nullptr || place >= list->size()) return {};
  Volume const& volume = (*list)[place];
  FSVolumeRefNum const number = Enter(volume);
  if (number == 0) return {};
  return NumberedVolume{number, volume};
}

std::optional<NumberedVolume> VolumeNumbers::WithNumber(FSVolumeRefNum number) {
  std::lock_guard lock(guard_);
  machine::SharedVolumes const list = ReadList();
  bool const is_given = number <= kFirst && kFirst - number < static_cast<int>(known_.size());
  if (!is_given) return {};
  Known const& known = KnownAs(number);
  if (!known.is_listed && !known.is_left_out && list != nullptr) return {};
  return NumberedVolume{number, known.volume};
}

FSVolumeRefNum VolumeNumbers::FindByMount(ItemStatus const& status) const {
  for (Volume const& volume : *list_) {
    if (volume.mount != 0 && IsOn(volume, status.mount)) return Find(IdentityOf(volume));
  }
  for (Volume const& volume : *list_) {
    if (volume.mount != 0 && volume.device == status.device) return Find(IdentityOf(volume));
  }
  return 0;
}

// The nearest volume above, of those whose mounts are not told.
FSVolumeRefNum VolumeNumbers::FindByPath(std::string path) const {
  if (!has_untold_mounts_) return 0;
  for (;; path = FolderOf(path)) {
    FSVolumeRefNum const number = Find({{0, 0}, path});
    if (number != 0 || path.size() <= 1) return number;
  }
}

FSVolumeRefNum VolumeNumbers::EnterLeftOut(ItemStatus const& status, std::string const& path) {
  std::string folder = MountFolder(status, path);
  std::string name = folder.substr(folder.rfind('/') + 1);
  FSVolumeRefNum const number =
      Enter({std::move(name), std::move(folder), status.mount, status.device, {}});
  if (number != 0) KnownAs(number).is_left_out = true;
  return number;
}

FSVolumeRefNum VolumeNumbers::NumberOf(ItemStatus const& status, std::string const& path) {
  std::lock_guard lock(guard_);
  if (machine_ != machine::CurrentMachineNumber() || known_.empty()) ReadList();
  if (FSVolumeRefNum const number = FindByPath(path); number != 0) return number;
  Mount const mount = {status.mount, status.device};
  if (auto const known = numbers_of_mounts_.find(mount); known != numbers_of_mounts_.end()) {
    return known->second;
  }
  ReadList();
  FSVolumeRefNum number = list_ == nullptr ? FSVolumeRefNum{0} : FindByMount(status);
  if (number == 0) number = EnterLeftOut(status, path);
  numbers_of_mounts_.emplace(mount, number);
  return number;
}
