#include "machine/capture/volumes.h"

#include <algorithm>

#include "machine/capture/recorded_time.h"
#include "machine/capture/values.h"

namespace machine::capture {
namespace {

constexpr char kName[] = "Name", kMountPoint[] = "MountPoint", kMount[] = "Mount";
constexpr char kDevice[] = "Device", kOtherMounts[] = "OtherMounts", kLeftOut[] = "LeftOut";
constexpr char kFlags[] = "Flags", kAbsent[] = "Absent";

// As many as there are reference numbers for.
constexpr std::size_t kMostVolumes = 31'900;

struct NumberKey {
  char const* key;
  std::optional<std::uint64_t> VolumeFacts::*member;
};
constexpr NumberKey kNumbers[] = {{"TotalBytes", &VolumeFacts::total_bytes},
                                  {"FreeBytes", &VolumeFacts::free_bytes},
                                  {"BlockBytes", &VolumeFacts::block_bytes},
                                  {"FileCount", &VolumeFacts::files},
                                  {"FolderCount", &VolumeFacts::folders}};

struct TimeKey {
  char const* key;
  std::optional<FileTime> VolumeFacts::*member;
};
constexpr TimeKey kTimes[] = {{"Created", &VolumeFacts::created},
                              {"Modified", &VolumeFacts::modified}};

void AddFacts(RecordDictionary& entries, VolumeFacts const& facts) {
  for (NumberKey const& row : kNumbers) {
    if (facts.*row.member) entries.Add(row.key, RecordOfNumber(*(facts.*row.member)));
  }
  for (TimeKey const& row : kTimes) {
    if (facts.*row.member) entries.Add(row.key, TextOf(*(facts.*row.member)));
  }
  entries.Add(kFlags, std::int64_t{facts.flags});
}

Fact<std::uint64_t> NumberIn(Field const& field) {
  return field.exists() ? field.Unsigned(UINT64_MAX) : Fact<std::uint64_t>(std::uint64_t{0});
}

// Where mounts have no numbers, items are found by it, and then no "/" may stand at its end.
std::string WithoutEndingSlash(std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

Fact<Volume> VolumeIn(Field const& field) {
  Fact<std::string> const name = field[kName].Text();
  if (!name) return name.absence();
  Fact<std::string> const point = field[kMountPoint].Text();
  if (!point) return point.absence();
  bool const is_path = point->starts_with('/') && point->find('\0') == std::string::npos;
  if (!is_path) return field[kMountPoint].Malformed("not an absolute path");
  Fact<std::uint64_t> const mount = NumberIn(field[kMount]), device = NumberIn(field[kDevice]);
  if (!mount) return mount.absence();
  if (!device) return device.absence();
  Volume volume = {*name, WithoutEndingSlash(*point), *mount, *device, {}};
  for (Field const& other : field[kOtherMounts].Items()) {
    Fact<std::uint64_t> const number = other.Unsigned(UINT64_MAX);
    if (!number) return number.absence();
    volume.other_mounts.push_back(*number);
  }
  return volume;
}

// The first value that is there and no such thing makes all of them malformed.
Fact<VolumeFacts> FactsIn(Field const& field) {
  if (Field const absent = field[kAbsent]; absent.exists()) return AbsenceIn(absent, {});
  VolumeFacts facts;
  for (NumberKey const& row : kNumbers) {
    if (!field[row.key].exists()) continue;
    Fact<std::uint64_t> const number = field[row.key].Unsigned(UINT64_MAX);
    if (!number) return number.absence();
    facts.*row.member = *number;
  }
  for (TimeKey const& row : kTimes) {
    if (!field[row.key].exists()) continue;
    Fact<FileTime> const time = TimeIn(field[row.key]);
    if (!time) return time.absence();
    facts.*row.member = *time;
  }
  if (!field[kFlags].exists()) return facts;
  Fact<std::uint64_t> const flags = field[kFlags].Unsigned(UINT16_MAX);
  if (!flags) return flags.absence();
  facts.flags = static_cast<std::uint16_t>(*flags);
  return facts;
}

}  // namespace

Record RecordOf(RecordedVolume const& recorded) {
  Volume const& volume = recorded.volume;
  RecordDictionary entries;
  entries.Add(kName, RecordOfBytes(volume.name));
  entries.Add(kMountPoint, RecordOfBytes(volume.mount_point));
  if (volume.mount != 0) entries.Add(kMount, RecordOfNumber(volume.mount));
  if (volume.device != 0) entries.Add(kDevice, RecordOfNumber(volume.device));
  RecordArray others;
  for (std::uint64_t const mount : volume.other_mounts) others.push_back(RecordOfNumber(mount));
  if (!others.empty()) entries.Add(kOtherMounts, std::move(others));
  if (recorded.is_left_out) entries.Add(kLeftOut, true);
  if (!recorded.facts) return entries;
  if (*recorded.facts) AddFacts(entries, **recorded.facts);
  if (!*recorded.facts) entries.Add(kAbsent, RecordOf(recorded.facts->absence()));
  return entries;
}

Fact<CapturedVolumes::List> CapturedVolumes::ReadList() const {
  if (!facts_.Knows(kVolumes) && has_files_) {
    Fact<std::string> const label = mac_volume_.Label();
    Volume root = {label ? *label : "System", "/", 0, 0, {}};
    return List{std::make_shared<std::vector<Volume> const>(1, std::move(root)), {}, {}};
  }
  Field const field = facts_[kVolumes];
  if (!field.exists()) return facts_.Missing(kVolumes);
  if (field.As<RecordArray>() == nullptr) return field.Malformed("not an array");
  if (field.As<RecordArray>()->size() > kMostVolumes) return field.Malformed("too many");
  List list;
  std::vector<Volume> volumes;
  for (Field const& item : field.Items()) {
    Fact<Volume> volume = VolumeIn(item);
    if (!volume) list.malformed.push_back(volume.absence());
    if (!volume) continue;
    bool const is_first = list.records.emplace(volume->mount_point, item).second;
    if (!is_first || item[kLeftOut].exists()) continue;
    auto const place = volume->mount_point == "/" ? volumes.begin() : volumes.end();
    volumes.insert(place, *std::move(volume));
  }
  if (list.records.empty() && !list.malformed.empty()) return list.malformed.front();
  list.volumes = std::make_shared<std::vector<Volume> const>(std::move(volumes));
  return list;
}

Fact<CapturedVolumes::List> const& CapturedVolumes::TheList() const {
  std::call_once(is_read_, [this] { list_.emplace(ReadList()); });
  Announce(kVolumes, list_->outcome());
  if (*list_) std::ranges::for_each((*list_)->malformed, AnnounceLeftOut);
  return *list_;
}

Fact<SharedVolumes> CapturedVolumes::Volumes() const {
  Fact<List> const& list = TheList();
  if (!list) return list.absence();
  return list->volumes;
}

Fact<VolumeFacts> CapturedVolumes::FactsOf(Volume const& volume) const {
  Fact<List> const& list = TheList();
  if (!list) return list.absence();
  auto const found = list->records.find(volume.mount_point);
  if (found == list->records.end()) {
    if (volume.mount_point == "/" && !facts_.Knows(kVolumes)) return FactsOfRoot();
    return facts_.Missing(std::string(kVolumes) + "." + volume.mount_point);
  }
  Fact<VolumeFacts> facts = FactsIn(found->second);
  Announce(found->second.path(), facts.outcome());
  return facts;
}

Fact<VolumeFacts> CapturedVolumes::FactsOfRoot() const {
  VolumeFacts facts;
  if (Fact<ItemStatus> const root = files_.Status("/", Links::kKeep)) {
    if (root->has_birth) facts.created = root->birth;
    facts.modified = root->modification;
  }
  Fact<VolumeSpace> const space = files_.Space("/");
  if (!space) return facts;
  facts.total_bytes = space->total_bytes;
  facts.free_bytes = space->free_bytes;
  facts.block_bytes = space->block_bytes;
  facts.files = space->files;
  if (space->is_read_only) facts.flags = kVolumeIsReadOnly;
  return facts;
}

}  // namespace machine::capture
