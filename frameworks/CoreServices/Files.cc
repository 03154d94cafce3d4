// Finding items: catalogue information, references from names and paths, and back.
#include <CoreServices/Files.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "frameworks/CoreServices/catalog_info.h"
#include "frameworks/CoreServices/file_names.h"
#include "frameworks/CoreServices/file_references.h"
#include "frameworks/CoreServices/folder_table.h"

namespace {

using machine::Detail;
using machine::ItemKind;
using machine::Links;

// The path without slashes at its end; its folder and its last name.
struct SplitPath {
  std::string folder, name;
};

SplitPath Split(std::string_view path) {
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  std::size_t const slash = path.rfind('/');
  return {std::string(path.substr(0, std::max<std::size_t>(slash, 1))),
          std::string(path.substr(slash + 1))};
}

bool IsOrdinaryName(std::string_view name) { return !name.empty() && name != "." && name != ".."; }

// Where a path leads, its folder without links.
FoundPlace PlaceOfPath(std::string const& path) {
  FoundPlace place;
  SplitPath split = Split(path);
  bool const has_name = IsOrdinaryName(split.name);
  auto canonical = MachineFiles().CanonicalFolder(has_name ? split.folder : path);
  if (!canonical) {
    // A folder that the path itself ends in may be the one missing.
    place.code = CodeOf(canonical.absence(), path);
    if (has_name && place.code == fnfErr) place.code = dirNFErr;
    return place;
  }
  if (!has_name) split = Split(*canonical);
  if (has_name) split.folder = *canonical;
  if (split.name.size() > 255) {
    place.code = bdNamErr;
    return place;
  }
  place.name = split.name;
  place.path = place.name.empty() ? "/" : ItemPath(split.folder, split.name);
  place.folder =
      place.name.empty() ? UInt32{fsRtParID} : FolderTable::Shared().NumberOfPath(split.folder);
  return place;
}

OSErr FindPath(std::string path, Links links, FSRef* ref, Boolean* is_folder) {
  constexpr int kMostLinks = 40;
  for (int i = 0; i < kMostLinks; ++i) {
    FoundPlace const place = PlaceOfPath(path);
    if (place.code != noErr) return place.code;
    auto const status = MachineFiles().Status(place.path, Links::kKeep);
    if (!status) return CodeOf(status.absence(), place.path);
    if (status->kind != ItemKind::kLink || links == Links::kKeep) {
      *ref = MakeRef(place.folder, place.name, *status);
      if (is_folder != nullptr) *is_folder = status->kind == ItemKind::kFolder;
      return noErr;
    }
    auto const target = MachineFiles().ReadLink(place.path);
    if (!target) return CodeOf(target.absence(), place.path);
    path = target->starts_with('/') ? *target : ItemPath(Split(place.path).folder, *target);
  }
  return fnfErr;
}

}  // namespace

OSErr FSGetCatalogInfo(FSRef const* ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo* catalogInfo,
                       HFSUniStr255* outName, FSSpec* fsSpec, FSRef* parentRef) {
  if (catalogInfo == nullptr) whichInfo = kFSCatInfoNone;
  FoundItem const found = FindItem(ref, DetailFor(whichInfo));
  if (found.code != noErr) return found.code;
  FSRef const item = *ref;
  if (parentRef != nullptr) {
    if (OSErr const code = MakeParentRef(item, parentRef); code != noErr) return code;
  }
  if (catalogInfo != nullptr) {
    *catalogInfo = MakeCatalogInfo(whichInfo, item, found.item, found.path);
  }
  if (outName != nullptr) *outName = UnicodeName(item.name);
  if (fsSpec != nullptr) *fsSpec = MakeSpec(item, VolumeOf(found.item.status, found.path));
  return noErr;
}

OSErr FSCompareFSRefs(FSRef const* ref1, FSRef const* ref2) {
  bool const is_same = ref1->device == ref2->device && ref1->inode == ref2->inode;
  return is_same ? OSErr{noErr} : OSErr{errFSRefsDifferent};
}

OSErr FSMakeFSRefUnicode(FSRef const* parentRef, UniCharCount nameLength, UniChar const* name,
                         TextEncoding, FSRef* newRef) {
  FoundPlace const place = FindPlace(parentRef, nameLength, name);
  return place.code == noErr ? MakeRefAt(place, newRef) : place.code;
}

OSErr FSpMakeFSRef(FSSpec const* source, FSRef* newRef) {
  std::string const name(reinterpret_cast<char const*>(source->name + 1), source->name[0]);
  FoundPlace place = {noErr, "/", source->parID, name};
  if (source->parID != fsRtParID) {
    auto folder = FolderTable::Shared().PathOf(source->parID);
    if (!folder) return dirNFErr;
    bool const is_name = IsOrdinaryName(name) && name.find('/') == std::string::npos;
    if (!is_name || name.find('\0') != std::string::npos) return bdNamErr;
    place.path = ItemPath(*std::move(folder), name);
  } else {
    place.name.clear();  // the root, whatever its volume is called
  }
  return MakeRefAt(place, newRef);
}

OSStatus FSPathMakeRefWithOptions(UInt8 const* path, FSPathMakeRefOptions options, FSRef* ref,
                                  Boolean* isDirectory) {
  if (path == nullptr || *path != '/' || ref == nullptr) return paramErr;
  Links const links =
      (options & kFSPathMakeRefDoNotFollowLeafSymlink) != 0 ? Links::kKeep : Links::kFollow;
  return FindPath(reinterpret_cast<char const*>(path), links, ref, isDirectory);
}

OSStatus FSPathMakeRef(UInt8 const* path, FSRef* ref, Boolean* isDirectory) {
  return FSPathMakeRefWithOptions(path, kFSPathMakeRefDefaultOptions, ref, isDirectory);
}

OSStatus FSRefMakePath(FSRef const* ref, UInt8* path, UInt32 maxPathSize) {
  FoundItem const found = FindItem(ref, Detail::kStatus);
  if (found.code != noErr) return found.code;
  if (found.path.size() >= maxPathSize) return bdNamErr;
  std::memcpy(path, found.path.c_str(), found.path.size() + 1);
  return noErr;
}
