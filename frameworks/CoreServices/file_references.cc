#include "frameworks/CoreServices/file_references.h"

#include <cerrno>
#include <cstring>

#include "frameworks/CoreServices/file_names.h"
#include "frameworks/CoreServices/folder_table.h"

namespace {

using machine::Detail;
using machine::Fact;
using machine::ItemKind;
using machine::ItemStatus;
using machine::Links;
using machine::Outcome;

struct ErrorCode {
  int error;
  OSErr code;
};

constexpr ErrorCode kCodes[] = {
    {ENOTDIR, dirNFErr},      {ELOOP, fnfErr},       {ENAMETOOLONG, bdNamErr},
    {EILSEQ, bdNamErr},       {EEXIST, dupFNErr},    {ENOTEMPTY, fBsyErr},
    {EBUSY, fBsyErr},         {ENOSPC, dskFulErr},   {EDQUOT, dskFulErr},
    {EFBIG, dskFulErr},       {EROFS, vLckdErr},     {EACCES, afpAccessDenied},
    {EPERM, afpAccessDenied}, {ETXTBSY, opWrErr},    {EXDEV, diffVolErr},
    {EISDIR, notAFileErr},    {EMFILE, tmfoErr},     {ENFILE, tmfoErr},
    {ENOMEM, memFullErr},     {EBADF, wrPermErr},    {ENXIO, notAFileErr},
    {EOPNOTSUPP, permErr},    {EINVAL, notAFileErr},
};

OSErr CodeOfReason(Outcome reason) {
  switch (reason) {
    case Outcome::kAbsent:
      return fnfErr;
    case Outcome::kPermissionRefused:
      return afpAccessDenied;
    default:
      return ioErr;
  }
}

std::string_view FolderOf(std::string_view path) {
  return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

std::string_view NameOf(FSRef const& ref) {
  return {ref.name, ::strnlen(ref.name, sizeof ref.name - 1)};
}

}  // namespace

OSErr CodeOf(machine::Absence const& absence, std::string const& path) {
  if (absence.error == ENOENT) {
    auto const folder = MachineFiles().Status(std::string(FolderOf(path)), Links::kFollow);
    return folder ? fnfErr : dirNFErr;
  }
  // What cannot be changed although it is ours is locked.
  if (absence.error == EPERM) {
    auto const status = MachineFiles().Status(path, Links::kKeep);
    if (status && status->is_immutable) return fLckdErr;
  }
  for (ErrorCode const& row : kCodes) {
    if (row.error == absence.error) return row.code;
  }
  return absence.error == 0 ? CodeOfReason(absence.reason) : OSErr{ioErr};
}

std::optional<std::string> PathOf(FSRef const& ref) {
  if (NameOf(ref).empty()) {
    if (ref.folder == fsRtParID) return "/";
    return {};
  }
  auto folder = FolderTable::Shared().PathOf(ref.folder);
  if (!folder) return {};
  return ItemPath(*std::move(folder), NameOf(ref));
}

UInt32 NumberOf(FSRef const& folder) {
  return FolderTable::Shared().NumberOf(folder.folder, NameOf(folder));
}

FoundItem FindItem(FSRef const* ref, Detail detail) {
  FoundItem found;
  auto path = ref == nullptr ? std::nullopt : PathOf(*ref);
  if (!path) {
    found.code = ref == nullptr ? OSErr{paramErr} : OSErr{fnfErr};
    return found;
  }
  found.path = *std::move(path);
  if (detail == Detail::kAll) {
    auto item = MachineFiles().Describe(found.path, Links::kKeep);
    if (item) found.item = *item;
    if (!item) found.code = CodeOf(item.absence(), found.path);
  } else {
    auto status = MachineFiles().Status(found.path, Links::kKeep);
    if (status) found.item.status = *status;
    if (!status) found.code = CodeOf(status.absence(), found.path);
  }
  ItemStatus const& status = found.item.status;
  bool const is_same = status.device == ref->device && status.inode == ref->inode;
  if (found.code == noErr && !is_same) found.code = fnfErr;
  return found;
}

FoundItem FindFolder(FSRef const* ref) {
  FoundItem found = FindItem(ref, Detail::kStatus);
  if (found.code == fnfErr) found.code = dirNFErr;
  if (found.code == noErr && found.item.status.kind != ItemKind::kFolder) {
    found.code = errFSNotAFolder;
  }
  return found;
}

FoundPlace FindPlace(FSRef const* parent, UniCharCount length, UniChar const* name) {
  FoundPlace place;
  if (name == nullptr) {
    place.code = paramErr;
    return place;
  }
  FoundItem folder = FindFolder(parent);
  auto bytes = NameOnDisk(name, length);
  place.code = folder.code == noErr && !bytes ? OSErr{bdNamErr} : folder.code;
  if (place.code != noErr) return place;
  place.folder = NumberOf(*parent);
  place.path = ItemPath(std::move(folder.path), *bytes);
  place.name = *std::move(bytes);
  return place;
}

FSRef MakeRef(UInt32 folder, std::string_view name, ItemStatus const& status) {
  FSRef ref = {};
  ref.device = status.device;
  ref.inode = status.inode;
  ref.folder = folder;
  name.copy(ref.name, sizeof ref.name - 1);
  return ref;
}

OSErr MakeRefAt(FoundPlace const& place, FSRef* ref) {
  auto const status = MachineFiles().Status(place.path, Links::kKeep);
  if (!status) return CodeOf(status.absence(), place.path);
  *ref = MakeRef(place.folder, place.name, *status);
  return noErr;
}

OSErr MakeParentRef(FSRef const& ref, FSRef* parent) {
  auto const place = FolderTable::Shared().Find(ref.folder);
  if (!place) {
    *parent = FSRef{};
    return noErr;
  }
  std::string const path = *FolderTable::Shared().PathOf(ref.folder);
  return MakeRefAt({noErr, path, place->parent, place->name}, parent);
}

FSSpec MakeSpec(FSRef const& ref, FSVolumeRefNum volume) {
  FSSpec fs_spec = {};
  std::string_view const name = NameOf(ref);
  fs_spec.vRefNum = volume;
  fs_spec.parID = ref.folder;
  fs_spec.name[0] = static_cast<unsigned char>(name.size());
  std::memcpy(fs_spec.name + 1, name.data(), name.size());
  return fs_spec;
}
