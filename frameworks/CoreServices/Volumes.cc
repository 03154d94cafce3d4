// Volumes by the items that lie on them.
#include <CoreServices/Files.h>

#include <mutex>
#include <vector>

#include "frameworks/CoreServices/catalog_info.h"
#include "frameworks/CoreServices/file_names.h"
#include "frameworks/CoreServices/file_references.h"
#include "machine/never_destroyed.h"

namespace {

using machine::Links;

constexpr FSVolumeRefNum kFirstVolume = -100, kLastVolume = -32000;

std::string FolderOf(std::string const& path) {
  return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

// The volumes met so far, the root's first on each machine. A number is never given twice.
class VolumeTable {
 public:
  struct Volume {
    machine::Machine const* machine;
    std::uint64_t mount;
    FSVolumeRefNum number;
    std::string folder;  // where it is mounted
  };

  FSVolumeRefNum NumberOf(machine::ItemStatus const& status, std::string const& path) {
    machine::Machine const* machine = &machine::CurrentMachine();
    std::lock_guard lock(guard_);
    Volume const* volume = Find(machine, status.mount);
    if (volume == nullptr) volume = Add(machine, status, path);
    return volume == nullptr ? FSVolumeRefNum{0} : volume->number;
  }

  // Nothing for a number not given on the machine in use; 0 is the root's.
  std::optional<Volume> WithNumber(FSVolumeRefNum number) {
    machine::Machine const* machine = &machine::CurrentMachine();
    auto const root = MachineFiles().Status("/", Links::kKeep);
    if (!root) return {};
    FSVolumeRefNum const root_number = NumberOf(*root, "/");
    if (number == 0) number = root_number;
    std::lock_guard lock(guard_);
    for (Volume const& volume : volumes_) {
      if (volume.machine == machine && volume.number == number) return volume;
    }
    return {};
  }

 private:
  Volume const* Find(machine::Machine const* machine, std::uint64_t mount) const {
    for (Volume const& volume : volumes_) {
      if (volume.machine == machine && volume.mount == mount) return &volume;
    }
    return nullptr;
  }

  // A machine's root volume is entered before any other, and so has the first number.
  Volume const* Add(machine::Machine const* machine, machine::ItemStatus const& status,
                    std::string const& path) {
    FSVolumeRefNum next = kFirstVolume;
    for (Volume const& volume : volumes_) {
      if (volume.machine == machine) next = std::min<FSVolumeRefNum>(next, volume.number - 1);
    }
    if (next == kFirstVolume && path != "/") {
      auto const root = MachineFiles().Status("/", Links::kKeep);
      if (!root || Add(machine, *root, "/") == nullptr) return nullptr;
      if (root->mount == status.mount) return Find(machine, status.mount);
      --next;
    }
    if (next < kLastVolume) return nullptr;
    volumes_.push_back({machine, status.mount, next, MountFolder(status, path)});
    return &volumes_.back();
  }

  // Climbs as long as the folder above lies on the same volume.
  static std::string MountFolder(machine::ItemStatus const& status, std::string path) {
    while (path != "/") {
      std::string const above = FolderOf(path);
      auto const folder = MachineFiles().Status(above, Links::kKeep);
      if (!folder || folder->mount != status.mount) break;
      path = above;
    }
    return path;
  }

  std::mutex guard_;
  std::vector<Volume> volumes_;
};

VolumeTable& Volumes() {
  static machine::NeverDestroyed<VolumeTable> volumes;
  return *volumes;
}

UInt32 Fitting(std::uint64_t number) {
  return static_cast<UInt32>(std::min<std::uint64_t>(number, 0xFFFFFFFF));
}

OSErr FillSizes(std::string const& folder, FSVolumeInfo& info) {
  auto const space = MachineFiles().Space(folder);
  if (!space) return CodeOf(space.absence(), folder);
  info.totalBytes = space->total_bytes;
  info.freeBytes = space->free_bytes;
  info.blockSize = Fitting(space->block_bytes);
  if (space->block_bytes != 0) {
    info.totalBlocks = Fitting(space->total_bytes / space->block_bytes);
    info.freeBlocks = Fitting(space->free_bytes / space->block_bytes);
  }
  info.fileCount = Fitting(space->files);
  if (space->is_read_only) info.flags |= kFSVolFlagHardwareLockedMask;
  return noErr;
}

}  // namespace

FSVolumeRefNum VolumeOf(machine::ItemStatus const& status, std::string const& path) {
  return Volumes().NumberOf(status, path);
}

OSErr FSGetVolumeInfo(FSVolumeRefNum volume, ItemCount volumeIndex, FSVolumeRefNum* actualVolume,
                      FSVolumeInfoBitmap whichInfo, FSVolumeInfo* info, HFSUniStr255* volumeName,
                      FSRef* rootDirectory) {
  auto const found = volumeIndex == 0 ? Volumes().WithNumber(volume) : std::nullopt;
  if (!found) return nsvErr;
  auto const status = MachineFiles().Status(found->folder, Links::kKeep);
  if (!status || status->mount != found->mount) return nsvErr;
  if (info != nullptr && whichInfo != kFSVolInfoNone) {
    FSVolumeInfo filled = {};
    if (OSErr const code = FillSizes(found->folder, filled); code != noErr) return code;
    if (status->has_birth) filled.createDate = MakeDateTime(status->birth);
    filled.modifiedDate = MakeDateTime(status->modification);
    *info = filled;
  }
  if (actualVolume != nullptr) *actualVolume = found->number;
  if (volumeName != nullptr) {
    std::string const name = found->folder.substr(found->folder.rfind('/') + 1);
    *volumeName = UnicodeName(name.empty() ? "System" : name);
  }
  if (rootDirectory != nullptr) {
    return static_cast<OSErr>(FSPathMakeRef(reinterpret_cast<UInt8 const*>(found->folder.c_str()),
                                            rootDirectory, nullptr));
  }
  return noErr;
}
