// The mounted volumes: all of them, by name, by place in the list, and of a file or folder. A
// volume is the folder at its root, with what was told of it when the value was made.
//
// A volume that is not there is `NoSuchObject`; whatever else the system reports is `OSError`.
#pragma once

#include <CoreServices/CoreServices.h>

#include <cstdint>

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "portable_inspectors/filesystem_object.h"
#include "portable_inspectors/moment.h"

struct ByIndexChoice {};
struct ByRefNumChoice {};
inline constexpr ByIndexChoice ByIndex;
inline constexpr ByRefNumChoice ByRefNum;

// What one question to the system told.
class VolInfo {
 public:
  VolInfo() = default;
  // 1 is the first.
  VolInfo(ByIndexChoice, std::int16_t index) { GetVolInfo(0, static_cast<ItemCount>(index)); }
  VolInfo(ByRefNumChoice, FSVolumeRefNum volume) { GetVolInfo(volume, 0); }

  HFSUniStr255 const& Name() const { return name_; }
  FSVolumeInfo const& Info() const { return info_; }
  FSVolumeRefNum VolumeRefNum() const { return volume_; }
  // `CFURLCreateFromFSRefFailed` where it is not to be reached, as in a capture without files.
  FileLocation RootDirectory() const;

  // The fraction is dropped. `NoSuchObject` for what does not fit 32 bits, after early 2040.
  static std::uint32_t DateToSeconds(UTCDateTime const& date);

 private:
  void GetVolInfo(FSVolumeRefNum volume, ItemCount index);

  HFSUniStr255 name_ = {};
  FSVolumeInfo info_ = {};
  FSVolumeRefNum volume_ = 0;
  FSRef root_ = {};
};

// The folder is empty where the root folder is not to be reached.
class VolumeLink : public folder {
 public:
  VolumeLink() = default;
  explicit VolumeLink(VolInfo const& info);
  VolumeLink(ByIndexChoice, std::int16_t index) : VolumeLink(VolInfo(ByIndex, index)) {}
  VolumeLink(ByRefNumChoice, FSVolumeRefNum volume) : VolumeLink(VolInfo(ByRefNum, volume)) {}

  VolInfo const& Info() const { return info_; }

 private:
  VolInfo info_;
};

template <>
struct InspectorTypeName<VolumeLink> {
  static constexpr char const* kName = "volume";
};

// In the system's order. By name: each volume of exactly that name.
class VolumeIterator {
 public:
  VolumeLink First();
  VolumeLink Next();
  VolumeLink First(unsigned char const* name, unsigned long length);
  VolumeLink Next(unsigned char const* name, unsigned long length);

 private:
  std::int16_t index_ = 0;
};

VolumeLink volume_of_index(unsigned long long index);
VolumeLink volume_of_file(file const& file);
VolumeLink volume_of_folder(folder const& folder);

// The same volume, whatever was told of it when.
bool operator==(VolumeLink const& a, VolumeLink const& b);

// UTF-8.
inspector_string name_of(VolumeLink const& volume);

// In bytes; `NoSuchObject` where the volume does not tell them.
integer total_space_of(VolumeLink const& volume);
integer free_space_of(VolumeLink const& volume);
integer used_space_of(VolumeLink const& volume);

// Rounded down, both, so that together they may be 99. Of a total of 0 there is no part.
integer percent_free_of(VolumeLink const& volume);
integer percent_used_of(VolumeLink const& volume);

integer files_of(VolumeLink const& volume);
integer directories_of(VolumeLink const& volume);
// The count of files: reports compare it with what this has always told.
integer alloc_of(VolumeLink const& volume);
integer flags_of(VolumeLink const& volume);

// The seconds since 1904 in GMT, counted from 1904 in local time, as disks formatted in local time
// have them. Deliberately so: the shift by the zone's offset is part of the answer. A date that the
// volume does not keep is `NoSuchObject`.
moment init_date_of(VolumeLink const& volume);
moment modification_time_of(VolumeLink const& volume);

// "DRIVE_FIXED" of every volume, whatever its medium.
inspector_string type_of(VolumeLink const& volume);

// Of the evaluator: forgets all volumes.
void ClearVolCache(Instant& now, void* context);
