// Copying items, folders with all that is in them.
#include <CoreServices/Files.h>

#include <vector>

#include "frameworks/CoreServices/file_references.h"
#include "frameworks/CoreServices/folder_table.h"

namespace {

using machine::Detail;
using machine::ItemKind;
using machine::ItemStatus;

// A folder whose items are being copied.
struct Level {
  std::unique_ptr<machine::Folder> folder;
  ItemStatus status;
  std::string from, to;
};

OSErr CopyOne(std::string const& from, std::string const& to) {
  auto const done = MachineFiles().Copy(from, to);
  if (done) return noErr;
  return CodeOf(done.absence(), done.absence().source == from ? from : to);
}

// Its items changed a folder's times, and it had to be writable meanwhile.
OSErr Complete(Level const& level) {
  auto const mode = MachineFiles().SetMode(level.to, level.status.mode & 0777);
  if (!mode) return CodeOf(mode.absence(), level.to);
  auto const times =
      MachineFiles().SetTimes(level.to, level.status.access, level.status.modification);
  return times ? OSErr{noErr} : CodeOf(times.absence(), level.to);
}

// No recursion and no more than one folder open at a time, so that depth costs little.
OSErr CopyTree(std::string const& from, std::string const& to, ItemStatus const& status) {
  std::vector<Level> levels;
  auto const enter = [&](std::string const& source, std::string const& target,
                         ItemStatus const& item) -> OSErr {
    if (OSErr const code = CopyOne(source, target); code != noErr) return code;
    if (item.kind != ItemKind::kFolder) return noErr;
    if (!levels.empty()) levels.back().folder->Rest();
    auto folder = MachineFiles().OpenFolder(source);
    if (!folder) return CodeOf(folder.absence(), source);
    levels.push_back({std::move(folder.value()), item, source, target});
    return noErr;
  };
  OSErr code = enter(from, to, status);
  while (code == noErr && !levels.empty()) {
    Level const& level = levels.back();
    auto const entry = level.folder->Next(Detail::kStatus);
    if (!entry) return CodeOf(entry.absence(), level.from);
    if (*entry == nullptr) {
      code = Complete(level);
      levels.pop_back();
    } else if (!(*entry)->is_companion) {
      code = enter(ItemPath(level.from, (*entry)->name), ItemPath(level.to, (*entry)->name),
                   (*entry)->item.status);
    }
  }
  return code;
}

}  // namespace

OSErr FSCopyObject(FSRef const* ref, FSRef const* newParentRef, UniCharCount nameLength,
                   UniChar const* name, FSRef* newRef) {
  FoundItem const found = FindItem(ref, Detail::kStatus);
  if (found.code != noErr) return found.code;
  FoundPlace const place = FindPlace(newParentRef, nameLength, name);
  if (place.code != noErr) return place.code;
  if ((place.path + "/").starts_with(ItemPath(found.path, ""))) {
    return place.path == found.path ? OSErr{dupFNErr} : OSErr{badMovErr};
  }
  OSErr const code = CopyTree(found.path, place.path, found.item.status);
  if (code != noErr || newRef == nullptr) return code;
  return MakeRefAt(place, newRef);
}
