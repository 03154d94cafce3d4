// Creating, deleting, moving and setting items.
#include <CoreServices/Files.h>

#include <cerrno>
#include <cstring>

#include "frameworks/CoreServices/catalog_info.h"
#include "frameworks/CoreServices/file_references.h"
#include "frameworks/CoreServices/folder_table.h"

namespace {

using machine::Detail;
using machine::Done;
using machine::Fact;
using machine::FinderInfo;
using machine::ItemKind;

// Of another name than what it calls, which takes an absence: that would turn into a fact.
OSErr ResultOf(Fact<Done> const& done, std::string const& path) {
  return done ? OSErr{noErr} : CodeOf(done.absence(), path);
}

// What the file or folder created is to have.
struct Settings {
  FSCatalogInfoBitmap fields;
  FSCatalogInfo const* info;

  std::uint32_t ModeOr(std::uint32_t mode) const {
    if (info == nullptr || (fields & kFSCatInfoPermissions) == 0) return mode;
    return info->permissions.mode & 07777;
  }
};

// What is already there stays where only one half is set. Nothing is written that says nothing.
OSErr SetFinderInfo(FoundItem const& found, Settings const& settings) {
  FinderInfo native = ExchangeFinderInfo(found.item.finder_info, found.item.status.kind);
  if ((settings.fields & kFSCatInfoFinderInfo) != 0) {
    std::memcpy(native.data(), settings.info->finderInfo, sizeof settings.info->finderInfo);
  }
  if ((settings.fields & kFSCatInfoFinderXInfo) != 0) {
    std::memcpy(native.data() + sizeof settings.info->finderInfo, settings.info->extFinderInfo,
                sizeof settings.info->extFinderInfo);
  }
  FinderInfo const info = ExchangeFinderInfo(native, found.item.status.kind);
  if (info == found.item.finder_info) return noErr;
  return ResultOf(MachineFiles().SetFinderInfo(found.path, info), found.path);
}

OSErr SetTimes(FoundItem const& found, Settings const& settings) {
  bool const sets_access = (settings.fields & kFSCatInfoAccessDate) != 0;
  bool const sets_content = (settings.fields & kFSCatInfoContentMod) != 0;
  return ResultOf(
      MachineFiles().SetTimes(
          found.path, sets_access ? TimeOf(settings.info->accessDate) : found.item.status.access,
          sets_content ? TimeOf(settings.info->contentModDate) : found.item.status.modification),
      found.path);
}

// A lock is opened first and closed last.
OSErr Apply(FoundItem const& found, Settings const& settings) {
  auto const is_wanted = [&](FSCatalogInfoBitmap fields) {
    return (settings.fields & fields) != 0;
  };
  bool const sets_lock = is_wanted(kFSCatInfoNodeFlags);
  bool const locks = sets_lock && (settings.info->nodeFlags & kFSNodeLockedMask) != 0;
  OSErr code = noErr;
  if (sets_lock && !locks) {
    code = ResultOf(MachineFiles().SetLocked(found.path, false), found.path);
  }
  if (code == noErr && is_wanted(kFSCatInfoFinderInfo | kFSCatInfoFinderXInfo)) {
    code = SetFinderInfo(found, settings);
  }
  if (code == noErr && is_wanted(kFSCatInfoPermissions)) {
    code =
        ResultOf(MachineFiles().SetMode(found.path, settings.info->permissions.mode), found.path);
  }
  if (code == noErr && is_wanted(kFSCatInfoContentMod | kFSCatInfoAccessDate)) {
    code = SetTimes(found, settings);
  }
  if (code == noErr && locks) {
    code = ResultOf(MachineFiles().SetLocked(found.path, true), found.path);
  }
  return code;
}

// The results of a creation, once the item has what it is to have.
OSErr Finish(FoundPlace const& place, Settings const& settings, FSRef* new_ref, FSSpec* new_spec) {
  FSRef ref;
  OSErr code = MakeRefAt(place, &ref);
  if (code == noErr && settings.info != nullptr) {
    code = FSSetCatalogInfo(&ref, settings.fields & kFSCatInfoSettableInfo, settings.info);
  }
  if (code != noErr) {
    MachineFiles().Remove(place.path);
    return code;
  }
  if (new_ref != nullptr) *new_ref = ref;
  if (new_spec != nullptr) {
    FSCatalogInfo info = {};
    FSGetCatalogInfo(&ref, kFSCatInfoVolume, &info, nullptr, nullptr, nullptr);
    *new_spec = MakeSpec(ref, info.volume);
  }
  return noErr;
}

}  // namespace

OSErr FSCreateFileUnicode(FSRef const* parentRef, UniCharCount nameLength, UniChar const* name,
                          FSCatalogInfoBitmap whichInfo, FSCatalogInfo const* catalogInfo,
                          FSRef* newRef, FSSpec* newSpec) {
  FoundPlace const place = FindPlace(parentRef, nameLength, name);
  if (place.code != noErr) return place.code;
  Settings const settings = {whichInfo, catalogInfo};
  OSErr const code =
      ResultOf(MachineFiles().CreateFile(place.path, settings.ModeOr(0666)), place.path);
  return code == noErr ? Finish(place, settings, newRef, newSpec) : code;
}

OSErr FSCreateDirectoryUnicode(FSRef const* parentRef, UniCharCount nameLength, UniChar const* name,
                               FSCatalogInfoBitmap whichInfo, FSCatalogInfo const* catalogInfo,
                               FSRef* newRef, FSSpec* newSpec, UInt32* newDirID) {
  FoundPlace const place = FindPlace(parentRef, nameLength, name);
  if (place.code != noErr) return place.code;
  Settings const settings = {whichInfo, catalogInfo};
  OSErr code = ResultOf(MachineFiles().CreateFolder(place.path, settings.ModeOr(0777)), place.path);
  if (code == noErr) code = Finish(place, settings, newRef, newSpec);
  if (code == noErr && newDirID != nullptr) {
    *newDirID = FolderTable::Shared().NumberOf(place.folder, place.name);
  }
  return code;
}

OSErr FSDeleteObject(FSRef const* ref) {
  FoundItem const found = FindItem(ref, Detail::kStatus);
  if (found.code != noErr) return found.code;
  return ResultOf(MachineFiles().Remove(found.path), found.path);
}

OSErr FSMoveRenameObjectUnicode(FSRef const* ref, FSRef const* newParentRef,
                                UniCharCount nameLength, UniChar const* name, TextEncoding,
                                FSRef* newRef) {
  FoundItem const found = FindItem(ref, Detail::kStatus);
  if (found.code != noErr) return found.code;
  FoundPlace const place = FindPlace(newParentRef, nameLength, name);
  if (place.code != noErr) return place.code;
  FSRef const from = *ref;
  if (found.path != place.path) {
    Fact<Done> const done = MachineFiles().Move(found.path, place.path);
    if (!done && done.absence().error == EINVAL) return badMovErr;
    if (!done) return ResultOf(done, done.absence().error == ENOENT ? place.path : found.path);
    if (found.item.status.kind == ItemKind::kFolder) {
      FolderTable::Shared().Move({from.folder, from.name}, {place.folder, place.name});
    }
  }
  if (newRef != nullptr) *newRef = MakeRef(place.folder, place.name, found.item.status);
  return noErr;
}

OSErr FSSetCatalogInfo(FSRef const* ref, FSCatalogInfoBitmap whichInfo,
                       FSCatalogInfo const* catalogInfo) {
  FoundItem const found = FindItem(ref, DetailFor(whichInfo));
  return found.code == noErr ? Apply(found, {whichInfo, catalogInfo}) : found.code;
}

OSStatus FSReplaceObject(FSRef const* originalObject, FSRef const* replacementObject,
                         CFStringRef newName, CFStringRef temporaryName,
                         FSRef const* temporaryDirectory, OptionBits flags, FSRef* resultObject) {
  if (newName != nullptr || temporaryName != nullptr || temporaryDirectory != nullptr ||
      flags != 0) {
    return paramErr;
  }
  FoundItem const place = FindItem(originalObject, Detail::kStatus);
  if (place.code != noErr) return place.code;
  FoundItem const replacement = FindItem(replacementObject, Detail::kStatus);
  if (replacement.code != noErr) return replacement.code;
  OSErr const code = ResultOf(MachineFiles().Replace(place.path, replacement.path), place.path);
  if (code == noErr && resultObject != nullptr) {
    *resultObject = MakeRef(originalObject->folder, originalObject->name, replacement.item.status);
  }
  return code;
}
