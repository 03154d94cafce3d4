#include "machine/capture/volumes_recording.h"

#include <algorithm>

namespace machine::capture {

RecordedVolume& RecordedVolumes::At(Volume const& volume) {
  for (RecordedVolume& known : volumes_) {
    if (known.volume.mount_point == volume.mount_point) return known;
  }
  volumes_.push_back({volume, true, {}});
  return volumes_.back();
}

// The last list counts; what is not on it is known as left out.
void RecordedVolumes::KeepVolumes(Fact<SharedVolumes> const& volumes) {
  std::lock_guard lock(guard_);
  bool const is_known = list_ && *list_ && volumes && **list_ == *volumes;
  if (is_known) return;
  list_ = volumes;
  if (!volumes) return;
  std::vector<RecordedVolume> listed;
  for (Volume const& volume : **volumes) {
    listed.push_back({volume, false, std::move(At(volume).facts)});
  }
  for (RecordedVolume& known : volumes_) {
    bool const is_listed = std::any_of(listed.begin(), listed.end(), [&](RecordedVolume& other) {
      return other.volume.mount_point == known.volume.mount_point;
    });
    if (is_listed || !known.facts) continue;
    known.is_left_out = true;
    listed.push_back(std::move(known));
  }
  volumes_ = std::move(listed);
}

void RecordedVolumes::KeepFacts(Volume const& volume, Fact<VolumeFacts> const& facts) {
  std::lock_guard lock(guard_);
  At(volume).facts = facts;
}

Fact<Record> RecordedVolumes::Whole() const {
  std::lock_guard lock(guard_);
  if (!list_) return Absence{Outcome::kAbsent, kVolumes, kNotRecorded};
  if (!*list_) return list_->absence();
  RecordArray array;
  for (RecordedVolume const& known : volumes_) array.push_back(RecordOf(known));
  return Record(std::move(array));
}

Fact<SharedVolumes> RecordingVolumes::Volumes() const {
  Fact<SharedVolumes> volumes = asked_.Volumes();
  recorded_.KeepVolumes(volumes);
  return volumes;
}

Fact<VolumeFacts> RecordingVolumes::FactsOf(Volume const& volume) const {
  Fact<VolumeFacts> facts = asked_.FactsOf(volume);
  recorded_.KeepFacts(volume, facts);
  return facts;
}

namespace {

// Where pseudo file systems are usually mounted, which no list of volumes has.
constexpr char const* kPseudoMounts[] = {"/dev", "/proc", "/run", "/sys"};

// The folder of a volume that does not answer is left alone.
void AskVolume(Machine const& machine, Volume const& volume) {
  if (machine.Volumes().FactsOf(volume)) {
    machine.Files().Describe(volume.mount_point, Links::kKeep);
  }
}

}  // namespace

void AskVolumes(Machine const& machine) {
  Fact<SharedVolumes> const volumes = machine.Volumes().Volumes();
  if (!volumes) return;
  for (Volume const& volume : **volumes) AskVolume(machine, volume);
  Fact<ItemStatus> const root = machine.Files().Status("/", Links::kKeep);
  for (std::string const path : kPseudoMounts) {
    Fact<ItemStatus> const status = machine.Files().Status(path, Links::kKeep);
    bool const is_mounted = root && status && status->mount != root->mount;
    bool const is_listed =
        std::ranges::find(**volumes, path, &Volume::mount_point) != (*volumes)->end();
    if (is_mounted && !is_listed) {
      AskVolume(machine, {path.substr(1), path, status->mount, status->device, {}});
    }
  }
}

}  // namespace machine::capture
