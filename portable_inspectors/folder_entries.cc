#include "portable_inspectors/folder_entries.h"

#include <CoreServices/CoreServices.h>

#include <cstring>

#include "portable/file_errors.h"
#include "portable_inspectors/machine_files.h"

namespace {

[[noreturn]] void ThrowListingFailure(std::string const& path, machine::Absence const& absence) {
  ThrowIfNotRecorded(path, absence);
  if (absence.reason == machine::Outcome::kAbsent) throw NoSuchObject();
  bool const is_refused = absence.reason == machine::Outcome::kPermissionRefused;
  int const code = is_refused ? afpAccessDenied : ioErr;
  throw MacintoshPlatform::FileLoopFailed(ConstData(path), code);
}

bool IsAppleDouble(std::string const& path) {
  constexpr unsigned char kMagic[] = {0x00, 0x05, 0x16, 0x07};
  auto const open = MachineFiles().OpenFork(path, machine::Fork::kData, machine::Access::kRead);
  if (!open) return false;
  unsigned char start[sizeof(kMagic)];
  machine::Fact<std::size_t> const size = (*open)->ReadAt(0, start, sizeof(start));
  return size && *size == sizeof(kMagic) && std::memcmp(start, kMagic, sizeof(kMagic)) == 0;
}

// The entry's name tells that it may be one, so that no other is looked into.
bool IsCompanion(std::string const& folder_path, machine::FolderEntry const& entry) {
  constexpr std::string_view kPrefix = "._";
  if (!entry.name.starts_with(kPrefix) || entry.name.size() == kPrefix.size()) return false;
  if (entry.item.status.kind != machine::ItemKind::kFile) return false;
  std::string const item = JoinPath(folder_path, entry.name.substr(kPrefix.size()));
  return MachineFiles().Status(item, machine::Links::kKeep).has_value() &&
         IsAppleDouble(JoinPath(folder_path, entry.name));
}

}  // namespace

void ThrowIfNotRecorded(std::string const& path, machine::Absence const& absence) {
  if (absence.is_not_recorded()) throw MacintoshPlatform::FileLoopFailed(ConstData(path), fnfErr);
}

std::unique_ptr<machine::Folder> OpenFolder(std::string const& path) {
  if (path.empty()) throw NoSuchObject();
  machine::Fact<std::unique_ptr<machine::Folder>> open = MachineFiles().OpenFolder(path);
  if (!open) ThrowListingFailure(path, open.absence());
  return std::move(open).value();
}

bool ReadEntry(machine::Folder& open, std::string const& path, FolderEntry& entry) {
  for (;;) {
    machine::Fact<machine::FolderEntry const*> const read = open.Next(machine::Detail::kKind);
    if (!read) ThrowListingFailure(path, read.absence());
    machine::FolderEntry const* const found = *read;
    if (found == nullptr) return false;
    if (IsCompanion(path, *found)) continue;
    entry = {found->name, found->item.status.kind};
    return true;
  }
}
