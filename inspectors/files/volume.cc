#include "inspectors/files/volume.h"

#include <array>

#include "evaluator/plugin/exceptions.h"
#include "frame/inspector_strings.h"
#include "frame/registration.h"
#include "portable/core_foundation/errors.h"
#include "portable/file_errors.h"
#include "portable/file_name.h"

void VolInfo::GetVolInfo(FSVolumeRefNum volume, ItemCount index) {
  OSErr const code =
      FSGetVolumeInfo(volume, index, &volume_, kFSVolInfoGettableInfo, &info_, &name_, &root_);
  if (code == nsvErr) throw NoSuchObject();
  if (code != noErr) ThrowRealOSError(code);
}

FileLocation VolInfo::RootDirectory() const {
  return FileLocation(MacintoshPlatform::FileLocation(root_));
}

std::uint32_t VolInfo::DateToSeconds(UTCDateTime const& date) {
  if (date.highSeconds != 0) throw NoSuchObject();
  return date.lowSeconds;
}

VolumeLink::VolumeLink(VolInfo const& info) : info_(info) {
  try {
    Get(info_.RootDirectory());
  } catch (CFURLCreateFromFSRefFailed const&) {
    // What was told of the volume holds all the same.
  } catch (FileItemError const&) {
  }
}

VolumeLink VolumeIterator::First() {
  index_ = 0;
  return Next();
}

VolumeLink VolumeIterator::Next() { return VolumeLink(ByIndex, ++index_); }

VolumeLink VolumeIterator::First(unsigned char const* name, unsigned long length) {
  index_ = 0;
  return Next(name, length);
}

VolumeLink VolumeIterator::Next(unsigned char const* name, unsigned long length) {
  while (index_ != INT16_MAX) {
    VolInfo const info(ByIndex, ++index_);
    FileName const wanted(ConstData(name, length));
    if (Equal(wanted, FileName(info.Name()))) return VolumeLink(info);
  }
  throw NoSuchObject();
}

VolumeLink volume_of_index(unsigned long long index) {
  if (index > INT16_MAX) throw NoSuchObject();
  return VolumeLink(ByIndex, static_cast<std::int16_t>(index));
}

namespace {

// Nothing fills it: a volume is asked anew each time, since its free space changes all the time.
std::array<VolumeLink, 10> entries;
std::size_t used_entries = 0;
std::size_t next_entry = 0;

VolumeLink VolumeOfItem(filesystem_object const& object) {
  FSVolumeRefNum const volume = object.Item().VolumeRefNum();
  for (std::size_t i = 0; i < used_entries; ++i) {
    if (entries[i].Info().VolumeRefNum() == volume) return entries[i];
  }
  return VolumeLink(ByRefNum, volume);
}

}  // namespace

void ClearVolCache(Instant&, void*) {
  next_entry = 0;
  used_entries = 0;
}

VolumeLink volume_of_file(file const& file) { return VolumeOfItem(file); }

VolumeLink volume_of_folder(folder const& folder) { return VolumeOfItem(folder); }

bool operator==(VolumeLink const& a, VolumeLink const& b) {
  return a.Info().VolumeRefNum() == b.Info().VolumeRefNum();
}

inspector_string name_of(VolumeLink const& volume) {
  return CopyToInspectorString(ConstData(FileName(volume.Info().Name()).MakeUTF8String()));
}

namespace {

UInt64 Known(UInt64 bytes) {
  if (bytes == kFSVolumeUnknownBytes) throw NoSuchObject();
  return bytes;
}

UInt64 TotalBytes(VolumeLink const& volume) { return Known(volume.Info().Info().totalBytes); }
UInt64 FreeBytes(VolumeLink const& volume) { return Known(volume.Info().Info().freeBytes); }
UInt64 UsedBytes(VolumeLink const& volume) { return TotalBytes(volume) - FreeBytes(volume); }

integer PercentOf(VolumeLink const& volume, UInt64 bytes) {
  UInt64 const total = TotalBytes(volume);
  if (total == 0) throw NoSuchObject();
  return static_cast<integer>(bytes * 100 / total);
}

moment MomentOf(UTCDateTime const& date) {
  return january_1_1904_Local() + integer{VolInfo::DateToSeconds(date)} * second_of();
}

}  // namespace

integer total_space_of(VolumeLink const& volume) {
  return static_cast<integer>(TotalBytes(volume));
}

integer free_space_of(VolumeLink const& volume) { return static_cast<integer>(FreeBytes(volume)); }

integer used_space_of(VolumeLink const& volume) { return static_cast<integer>(UsedBytes(volume)); }

integer percent_free_of(VolumeLink const& volume) { return PercentOf(volume, FreeBytes(volume)); }

integer percent_used_of(VolumeLink const& volume) { return PercentOf(volume, UsedBytes(volume)); }

integer files_of(VolumeLink const& volume) { return volume.Info().Info().fileCount; }

integer directories_of(VolumeLink const& volume) { return volume.Info().Info().folderCount; }

integer alloc_of(VolumeLink const& volume) { return volume.Info().Info().fileCount; }

integer flags_of(VolumeLink const& volume) { return volume.Info().Info().flags; }

moment init_date_of(VolumeLink const& volume) { return MomentOf(volume.Info().Info().createDate); }

moment modification_time_of(VolumeLink const& volume) {
  return MomentOf(volume.Info().Info().modifiedDate);
}

// The version is looked at after a failure too, hence the cleared buffer.
inspector_string type_of(VolumeLink const& volume) {
  constexpr SInt16 kLastPlainVersion = 2;
  GetVolParmsInfoBuffer buffer = {};
  HParamBlockRec request = {};
  request.ioParam.ioVRefNum = volume.Info().VolumeRefNum();
  request.ioParam.ioBuffer = reinterpret_cast<char*>(&buffer);
  request.ioParam.ioReqCount = sizeof buffer;
  OSErr const code = PBHGetVolParmsSync(&request);
  if (code != noErr && buffer.vMVersion > kLastPlainVersion) throw NoSuchObject();
  return AsInspectorString("DRIVE_FIXED");
}

namespace {

CacheRegistration cache(ClearVolCache);

struct AllVolumes {
  AllVolumes(char const* singular, char const* plural)
      : all(singular, plural, nullptr),
        named(singular, plural, nullptr),
        numbered(singular, plural, volume_of_index, nullptr),
        of_file(singular, plural, volume_of_file, nullptr),
        of_folder(singular, plural, volume_of_folder, nullptr) {}

  IteratedGlobalProperty<VolumeIterator, VolumeLink> all;
  IteratedNamedGlobalProperty<VolumeIterator, VolumeLink> named;
  NumberedGlobalProperty<VolumeLink> numbered;
  Property<file, VolumeLink> of_file;
  Property<folder, VolumeLink> of_folder;
};

AllVolumes filesystems("filesystem", "filesystems");
AllVolumes drives("drive", "drives");
AllVolumes volumes("volume", "volumes");

DerivedType<VolumeLink, folder> volume_type;
RelationEqual<VolumeLink, VolumeLink> equal(nullptr);

template <class Result>
using Of = Property<VolumeLink, Result>;

Of<inspector_string> name("name", "names", name_of, nullptr);
Of<integer> size("size", "sizes", total_space_of, nullptr);
Of<integer> total_space("total space", "total spaces", total_space_of, nullptr);
Of<integer> free_space("free space", "free spaces", free_space_of, nullptr);
Of<integer> used_space("used space", "used spaces", used_space_of, nullptr);
Of<integer> free_percent("free percent", "free percents", percent_free_of, nullptr);
Of<integer> used_percent("used percent", "used percents", percent_used_of, nullptr);
Of<integer> file_count("file count", "file counts", files_of, nullptr);
Of<integer> directory_count("directory count", "directory counts", directories_of, nullptr);
Of<integer> block_count("allocation block count", "allocation block counts", alloc_of, nullptr);
Of<moment> init_date("init date", "init dates", init_date_of, nullptr);
Of<moment> modification_time("modification time", "modification times", modification_time_of,
                             nullptr);
Of<integer> flag("flag", "flags", flags_of, nullptr);
Of<inspector_string> type("type", "types", type_of, nullptr);

}  // namespace
