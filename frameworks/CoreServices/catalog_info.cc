#include "frameworks/CoreServices/catalog_info.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <span>

#include "frameworks/CoreServices/file_references.h"

namespace {

using machine::Detail;
using machine::FinderInfo;
using machine::ItemKind;
using machine::ItemStatus;

constexpr std::int64_t kSecondsFrom1904To1970 = 2'082'844'800;
constexpr std::uint32_t kNanoseconds = 1'000'000'000;

// The widths of the numbers in the records, two for each item: Finder and extended information.
constexpr int kFileFields[] = {4, 4, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 4};
constexpr int kFolderFields[] = {2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 4};

UInt32 CountEntries(std::string const& path) {
  UInt32 count = 0;
  auto folder = MachineFiles().OpenFolder(path);
  if (!folder) return 0;
  for (;;) {
    auto const entry = (*folder.value()).Next(Detail::kKind);
    if (!entry || *entry == nullptr) return count;
    ++count;
  }
}

void FillDates(ItemStatus const& status, FSCatalogInfoBitmap fields, FSCatalogInfo& info) {
  auto const is_wanted = [fields](FSCatalogInfoBitmap field) { return (fields & field) != 0; };
  if (is_wanted(kFSCatInfoCreateDate) && status.has_birth) {
    info.createDate = MakeDateTime(status.birth);
  }
  if (is_wanted(kFSCatInfoContentMod)) info.contentModDate = MakeDateTime(status.modification);
  if (is_wanted(kFSCatInfoAttrMod)) info.attributeModDate = MakeDateTime(status.change);
  if (is_wanted(kFSCatInfoAccessDate)) info.accessDate = MakeDateTime(status.access);
}

void FillFinderInfo(machine::Item const& item, FSCatalogInfoBitmap fields, FSCatalogInfo& info) {
  if (!item.has_finder_info) return;
  FinderInfo const native = ExchangeFinderInfo(item.finder_info, item.status.kind);
  static_assert(sizeof info.finderInfo + sizeof info.extFinderInfo == sizeof native);
  if ((fields & kFSCatInfoFinderInfo) != 0) {
    std::memcpy(info.finderInfo, native.data(), sizeof info.finderInfo);
  }
  if ((fields & kFSCatInfoFinderXInfo) != 0) {
    std::memcpy(info.extFinderInfo, native.data() + sizeof info.finderInfo,
                sizeof info.extFinderInfo);
  }
}

void FillSizes(machine::Item const& item, FSCatalogInfoBitmap fields, FSCatalogInfo& info) {
  if (item.status.kind == ItemKind::kFolder) return;
  if ((fields & kFSCatInfoDataSizes) != 0) {
    info.dataLogicalSize = item.status.bytes;
    info.dataPhysicalSize = item.status.allocated_bytes;
  }
  // What an attribute takes on the disk is not told.
  if ((fields & kFSCatInfoRsrcSizes) != 0) {
    info.rsrcLogicalSize = info.rsrcPhysicalSize = item.resource_bytes;
  }
}

}  // namespace

Detail DetailFor(FSCatalogInfoBitmap fields) {
  constexpr FSCatalogInfoBitmap kBeside =
      kFSCatInfoFinderInfo | kFSCatInfoFinderXInfo | kFSCatInfoRsrcSizes;
  return (fields & kBeside) != 0 ? Detail::kAll : Detail::kStatus;
}

FSCatalogInfo MakeCatalogInfo(FSCatalogInfoBitmap fields, FSRef const& ref,
                              machine::Item const& item, std::string const& path) {
  FSCatalogInfo info = {};
  ItemStatus const& status = item.status;
  bool const is_folder = status.kind == ItemKind::kFolder;
  auto const is_wanted = [fields](FSCatalogInfoBitmap field) { return (fields & field) != 0; };
  if (is_wanted(kFSCatInfoNodeFlags)) {
    info.nodeFlags = static_cast<UInt16>((status.is_locked() ? kFSNodeLockedMask : 0) |
                                         (is_folder ? kFSNodeIsDirectoryMask : 0));
  }
  if (is_wanted(kFSCatInfoVolume)) info.volume = VolumeOf(status, path);
  if (is_wanted(kFSCatInfoParentDirID)) info.parentDirID = ref.folder;
  if (is_wanted(kFSCatInfoNodeID)) {
    info.nodeID = is_folder ? NumberOf(ref) : static_cast<UInt32>(status.inode);
  }
  if (is_wanted(kFSCatInfoPermissions)) {
    info.permissions.userID = status.user;
    info.permissions.groupID = status.group;
    info.permissions.mode = status.mode;
  }
  if (is_wanted(kFSCatInfoValence) && is_folder) info.valence = CountEntries(path);
  FillDates(status, fields, info);
  FillFinderInfo(item, fields, info);
  FillSizes(item, fields, info);
  return info;
}

UTCDateTime MakeDateTime(machine::FileTime const& time) {
  std::int64_t const seconds = time.seconds + kSecondsFrom1904To1970;
  if (seconds < 0 || seconds >= std::int64_t{1} << 48) return {};
  return {static_cast<UInt16>(seconds >> 32), static_cast<UInt32>(seconds),
          static_cast<UInt16>((std::uint64_t{time.nanoseconds} << 16) / kNanoseconds)};
}

machine::FileTime TimeOf(UTCDateTime const& date) {
  std::int64_t const seconds =
      static_cast<std::int64_t>(std::uint64_t{date.highSeconds} << 32 | date.lowSeconds);
  return {seconds - kSecondsFrom1904To1970,
          static_cast<std::uint32_t>((std::uint64_t{date.fraction} * kNanoseconds) >> 16)};
}

FinderInfo ExchangeFinderInfo(FinderInfo const& info, ItemKind kind) {
  FinderInfo exchanged = info;
  if constexpr (std::endian::native == std::endian::little) {
    std::span<int const> fields = kFileFields;
    if (kind == ItemKind::kFolder) fields = kFolderFields;
    unsigned char* field = exchanged.data();
    for (int width : fields) {
      std::reverse(field, field + width);
      field += width;
    }
  }
  return exchanged;
}
