#include "machine/live/item.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>

#include "machine/live/attributes.h"
#include "machine/live/root.h"

namespace machine::live {
namespace {

ItemKind KindOf(unsigned mode) {
  if (S_ISREG(mode)) return ItemKind::kFile;
  if (S_ISDIR(mode)) return ItemKind::kFolder;
  return S_ISLNK(mode) ? ItemKind::kLink : ItemKind::kOther;
}

FileTime TimeOf(statx_timestamp const& time) { return {time.tv_sec, time.tv_nsec}; }

void AnnounceAttribute(std::string_view path, std::string const& attribute, std::uint64_t bytes) {
  if (CurrentSourceObserver() != nullptr) {
    Announce(std::string(path) + " (" + attribute + ")", Outcome::kAnswered, bytes);
  }
}

}  // namespace

bool ReadStatus(int folder, char const* name, ItemStatus& status) {
  constexpr unsigned kWanted = STATX_BASIC_STATS | STATX_BTIME | STATX_MNT_ID;
  struct statx got;
  int const flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | (*name == '\0' ? AT_EMPTY_PATH : 0);
  if (::statx(folder, name, flags, kWanted, &got) != 0) return false;
  status.kind = KindOf(got.stx_mode);
  status.is_immutable = (got.stx_attributes & STATX_ATTR_IMMUTABLE) != 0;
  status.has_birth = (got.stx_mask & STATX_BTIME) != 0;
  status.mode = got.stx_mode;
  status.user = got.stx_uid;
  status.group = got.stx_gid;
  status.links = got.stx_nlink;
  status.device = makedev(got.stx_dev_major, got.stx_dev_minor);
  status.inode = got.stx_ino;
  // A kernel that does not number its mounts leaves the device to tell volumes apart.
  status.mount = (got.stx_mask & STATX_MNT_ID) != 0 ? got.stx_mnt_id : status.device;
  status.bytes = got.stx_size;
  status.allocated_bytes = got.stx_blocks * 512;
  status.birth = status.has_birth ? TimeOf(got.stx_btime) : FileTime();
  status.modification = TimeOf(got.stx_mtime);
  status.change = TimeOf(got.stx_ctime);
  status.access = TimeOf(got.stx_atime);
  return true;
}

FileDescriptor OpenCompanion(int folder, char const* name) {
  if (*name == '\0') return {};
  FileDescriptor const item(::openat(folder, name, O_PATH | O_NOFOLLOW | O_CLOEXEC));
  return ReopenFile(item, O_RDONLY | O_NONBLOCK);
}

std::optional<AppleDouble> ReadCompanion(int folder, char const* name, std::string_view path) {
  FileDescriptor const file = OpenCompanion(folder, name);
  if (!file.is_open()) return {};
  std::optional<AppleDouble> const found = ReadAppleDouble(file.number());
  if (found && CurrentSourceObserver() != nullptr) {
    Announce(CompanionPath(path), found->is_malformed ? Outcome::kMalformed : Outcome::kAnswered,
             found->bytes_read);
  }
  return found;
}

void ReadFinderDetails(ItemPaths const& paths, bool has_named_forks, bool may_have_companion,
                       Item& item) {
  if (!MayHaveFinderInfo(item.status.kind)) return;
  bool const is_file = item.status.kind == ItemKind::kFile;
  AppleAttributes const attributes =
      FindAppleAttributes(paths.folder, paths.name, paths.plain_path);
  bool has_resource_fork = !is_file;
  if (!attributes.finder_info.empty()) {
    if (auto const info = ReadFinderInfo(paths.plain_path, attributes.finder_info)) {
      item.has_finder_info = true;
      item.finder_info = *info;
      AnnounceAttribute(paths.path, attributes.finder_info, info->size());
    }
  }
  if (is_file && !attributes.resource_fork.empty()) {
    if (auto const size = AttributeSize(paths.plain_path, attributes.resource_fork)) {
      has_resource_fork = true;
      item.resource_bytes = *size;
      AnnounceAttribute(paths.path, attributes.resource_fork, 0);
    }
  }
  if (is_file && !has_resource_fork && has_named_forks) {
    ItemStatus fork;
    has_resource_fork =
        ReadStatus(paths.folder, (std::string(paths.name) + kNamedFork).c_str(), fork);
    if (has_resource_fork) item.resource_bytes = fork.bytes;
  }
  if (!may_have_companion || (item.has_finder_info && has_resource_fork)) return;
  auto const companion = ReadCompanion(paths.folder, CompanionPath(paths.name).c_str(), paths.path);
  if (!companion) return;
  if (!item.has_finder_info && companion->finder_info) {
    item.has_finder_info = true;
    item.finder_info = *companion->finder_info;
  }
  if (!has_resource_fork) item.resource_bytes = companion->resource_bytes;
}

bool HasNamedForks(char const* plain_path) {
  constexpr long kHfs = 0x4244, kHfsPlus = 0x482b;
  struct statfs volume;
  return ::statfs(plain_path, &volume) == 0 && (volume.f_type == kHfs || volume.f_type == kHfsPlus);
}

std::string PathIn(std::string_view folder, std::string_view name) {
  std::string path(folder);
  if (!path.ends_with('/')) path += '/';
  return path.append(name);
}

// An AppleDouble file has no companion of its own.
std::string CompanionPath(std::string_view path) {
  std::size_t const start = path.rfind('/') + 1;
  std::string_view const name = path.substr(start);
  if (name.empty() || name == "." || name == ".." || IsCompanionName(name)) return {};
  return std::string(path).insert(start, kCompanionPrefix);
}

}  // namespace machine::live
