#include <CoreServices/Volumes.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "frameworks/CoreServices/catalog_info.h"
#include "frameworks/CoreServices/file_names.h"
#include "frameworks/CoreServices/file_references.h"
#include "frameworks/CoreServices/folder_table.h"
#include "frameworks/CoreServices/volume_numbers.h"

namespace {

using machine::Fact;
using machine::Outcome;
using machine::VolumeFacts;

// Of the published record, the version that has what we know.
constexpr SInt16 kParmsVersion = 2;
constexpr std::size_t kParmsSize = offsetof(GetVolParmsInfoBuffer, vMExtendedAttributes);

UInt32 Fitting(std::uint64_t number) {
  return static_cast<UInt32>(std::min<std::uint64_t>(number, 0xFFFFFFFF));
}

UTCDateTime DateOf(std::optional<machine::FileTime> const& time) {
  constexpr UTCDateTime kUnknown = {0xFFFF, 0xFFFFFFFF, 0xFFFF};
  return time ? MakeDateTime(*time) : kUnknown;
}

void FillBlocks(VolumeFacts const& facts, FSVolumeInfo& info) {
  std::uint64_t const size = facts.block_bytes.value_or(0);
  if (size == 0) return;
  info.blockSize = Fitting(size);
  info.totalBlocks = Fitting(facts.total_bytes.value_or(0) / size);
  info.freeBlocks = Fitting(facts.free_bytes.value_or(0) / size);
}

FSVolumeInfo MakeVolumeInfo(FSVolumeInfoBitmap fields, VolumeFacts const& facts) {
  FSVolumeInfo info = {};
  auto const is_wanted = [fields](FSVolumeInfoBitmap field) { return (fields & field) != 0; };
  if (is_wanted(kFSVolInfoCreateDate)) info.createDate = DateOf(facts.created);
  if (is_wanted(kFSVolInfoModDate)) info.modifiedDate = DateOf(facts.modified);
  if (is_wanted(kFSVolInfoFileCount)) info.fileCount = Fitting(facts.files.value_or(0));
  if (is_wanted(kFSVolInfoDirCount)) info.folderCount = Fitting(facts.folders.value_or(0));
  if (is_wanted(kFSVolInfoSizes)) {
    info.totalBytes = facts.total_bytes.value_or(kFSVolumeUnknownBytes);
    info.freeBytes = facts.free_bytes.value_or(kFSVolumeUnknownBytes);
  }
  if (is_wanted(kFSVolInfoBlocks)) FillBlocks(facts, info);
  if (is_wanted(kFSVolInfoFlags)) info.flags = facts.flags;
  return info;
}

// The volume itself may be well: this process has no room left, or a capture holds nonsense.
bool IsFailureOfOurs(machine::Absence const& absence) {
  constexpr std::array<int, 3> kNoRoom = {EMFILE, ENFILE, ENOMEM};
  if (absence.error == 0) return absence.reason == Outcome::kMalformed;
  return std::find(kNoRoom.begin(), kNoRoom.end(), absence.error) != kNoRoom.end();
}

bool IsGone(machine::Absence const& absence) {
  bool const is_missing =
      absence.reason == Outcome::kAbsent || absence.reason == Outcome::kNotSupported;
  return absence.error == ENOENT || (absence.error == 0 && is_missing);
}

// One that is on the list and tells nothing is mounted all the same, be its server dead or its
// folder closed to this user, and it must not be the end of the list.
OSErr CodeOfVolume(machine::Absence const& absence, NumberedVolume const& volume, bool is_listed) {
  if (IsFailureOfOurs(absence)) return CodeOf(absence, volume.volume.mount_point);
  return IsGone(absence) && !is_listed ? OSErr{nsvErr} : OSErr{noErr};
}

// The root folder as it was seen already, for looking again may hang.
FSRef MakeRootRef(machine::ItemStatus const& root, std::string const& path) {
  if (path == "/") return MakeRef(fsRtParID, {}, root);
  std::size_t const slash = path.rfind('/');
  UInt32 const folder =
      FolderTable::Shared().NumberOfPath(path.substr(0, std::max<std::size_t>(slash, 1)));
  return MakeRef(folder, std::string_view(path).substr(slash + 1), root);
}

FSRef FindRootRef(VolumeFacts const& facts, std::string const& path) {
  if (facts.root) return MakeRootRef(*facts.root, path);
  FSRef root = {};
  auto const* bytes = reinterpret_cast<UInt8 const*>(path.c_str());
  if (FSPathMakeRef(bytes, &root, nullptr) != noErr) return {};
  return root;
}

}  // namespace

OSErr FSGetVolumeInfo(FSVolumeRefNum volume, ItemCount volumeIndex, FSVolumeRefNum* actualVolume,
                      FSVolumeInfoBitmap whichInfo, FSVolumeInfo* info, HFSUniStr255* volumeName,
                      FSRef* rootDirectory) {
  auto const found = volumeIndex == 0 ? VolumeNumbers::Shared().WithNumber(volume)
                                      : VolumeNumbers::Shared().At(volumeIndex - 1);
  if (!found) return nsvErr;
  std::string const& path = found->volume.mount_point;
  Fact<VolumeFacts> const facts = machine::CurrentMachine().Volumes().FactsOf(found->volume);
  if (!facts) {
    OSErr const code = CodeOfVolume(facts.absence(), *found, volumeIndex != 0);
    if (code != noErr) return code;
  }
  if (info != nullptr) *info = MakeVolumeInfo(whichInfo, facts ? *facts : VolumeFacts());
  if (actualVolume != nullptr) *actualVolume = found->number;
  if (volumeName != nullptr) *volumeName = UnicodeName(found->volume.name);
  if (rootDirectory != nullptr) *rootDirectory = facts ? FindRootRef(*facts, path) : FSRef();
  return noErr;
}

OSErr PBHGetVolParmsSync(HParmBlkPtr paramBlock) {
  if (paramBlock == nullptr || paramBlock->ioParam.ioBuffer == nullptr) return paramErr;
  HIOParam& request = paramBlock->ioParam;
  request.ioActCount = 0;
  auto const found = VolumeNumbers::Shared().WithNumber(request.ioVRefNum);
  request.ioResult = found ? OSErr{noErr} : OSErr{nsvErr};
  if (!found) return nsvErr;
  GetVolParmsInfoBuffer parms = {};
  parms.vMVersion = kParmsVersion;
  request.ioActCount = std::min<ByteCount>(request.ioReqCount, kParmsSize);
  std::memcpy(request.ioBuffer, &parms, request.ioActCount);
  return noErr;
}
