#include "machine/live/files.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <climits>

#include "machine/live/item.h"
#include "machine/live/name_service.h"
#include "machine/system_files.h"

namespace machine::live {

bool Files::IsLink(std::string const& path) const {
  Place const place = root_.Locate(path);
  ItemStatus status;
  return place.is_reached() && ReadStatus(place.folder(), place.name(), status) &&
         status.kind == ItemKind::kLink;
}

std::string Files::Resolve(std::string const& path) const {
  FileDescriptor const item = root_.OpenItem(path);
  if (!item.is_open()) return {};
  std::string resolved = root_.PathOf(item);
  if (resolved.empty()) errno = ENOENT;
  return resolved;
}

Fact<ItemStatus> Files::Status(std::string const& path, Links links) const {
  ItemStatus status;
  Place const place = root_.Locate(path);
  bool is_read = place.is_reached() && ReadStatus(place.folder(), place.name(), status);
  if (is_read && links == Links::kFollow && status.kind == ItemKind::kLink) {
    FileDescriptor const item = root_.OpenItem(path);
    is_read = item.is_open() && ReadStatus(item.number(), "", status);
  }
  if (!is_read) return AnnounceError(errno, path);
  Announce(path, Outcome::kAnswered);
  return status;
}

Fact<Item> Files::Describe(std::string const& path, Links links) const {
  Item item;
  Place const place = root_.Locate(path);
  if (!place.is_reached() || !ReadStatus(place.folder(), place.name(), item.status)) {
    return AnnounceError(errno, path);
  }
  if (links == Links::kFollow && item.status.kind == ItemKind::kLink) {
    Announce(path, Outcome::kAnswered);
    std::string const target = Resolve(path);
    if (target.empty()) return AnnounceError(errno, path);
    return Describe(target, Links::kKeep);
  }
  Announce(path, Outcome::kAnswered);
  std::string const plain_path = place.PlainPath();
  bool const has_named_forks =
      item.status.kind == ItemKind::kFile && HasNamedForks(plain_path.c_str());
  ReadFinderDetails({place.folder(), place.name(), plain_path.c_str(), path}, has_named_forks, true,
                    item);
  return item;
}

Fact<std::string> Files::ReadLink(std::string const& path) const {
  Place const place = root_.Locate(path);
  char target[PATH_MAX];
  ssize_t const size =
      place.is_reached() ? ::readlinkat(place.folder(), place.name(), target, sizeof target) : -1;
  if (size < 0) return AnnounceError(errno, path, "link");
  Announce(path, Outcome::kAnswered, static_cast<std::uint64_t>(size));
  return std::string(target, static_cast<std::size_t>(size));
}

Fact<std::string> Files::CanonicalFolder(std::string const& path) const {
  if (root_.IsCanonicalFolder(path)) return path;
  FileDescriptor const folder = root_.OpenItem(path);
  ItemStatus status;
  if (!folder.is_open() || !ReadStatus(folder.number(), "", status)) {
    return AnnounceError(errno, path);
  }
  if (status.kind != ItemKind::kFolder) return AnnounceError(ENOTDIR, path);
  std::string canonical = root_.PathOf(folder);
  // What is too long for the kernel to spell stays as it was written.
  if (canonical.empty() && path.size() >= PATH_MAX) return path;
  if (canonical.empty()) return AnnounceError(ENOENT, path);
  return canonical;
}

Fact<std::string> Files::WorkingFolder() const {
  constexpr char const* kSource = "working folder";
  if (!root_.is_running()) return AnnounceAbsence(Outcome::kNotSupported, kSource);
  char path[PATH_MAX];
  if (::getcwd(path, sizeof path) == nullptr) return AnnounceError(errno, kSource);
  Announce(kSource, Outcome::kAnswered);
  return std::string(path);
}

Fact<VolumeSpace> Files::Space(std::string const& path) const {
  FileDescriptor const item = root_.OpenItemItself(path);
  struct statvfs volume;
  if (!item.is_open() || ::fstatvfs(item.number(), &volume) != 0) {
    return AnnounceError(errno, path, "volume");
  }
  Announce(path, Outcome::kAnswered);
  return VolumeSpace{.total_bytes = volume.f_blocks * volume.f_frsize,
                     .free_bytes = volume.f_bavail * volume.f_frsize,
                     .block_bytes = volume.f_frsize,
                     .files = volume.f_files - volume.f_ffree,
                     .is_read_only = (volume.f_flag & ST_RDONLY) != 0};
}

Fact<std::string> Files::NameInList(char const* list, std::uint32_t number) const {
  Fact<std::string> const file = root_.ReadFile(list);
  if (!file) return file.absence();
  if (auto const name = NameInAccounts(*file, number)) return std::string(*name);
  return AnnounceAbsence(Outcome::kAbsent, list, std::to_string(number));
}

Fact<std::string> Files::UserName(std::uint32_t user) const {
  if (!root_.is_running()) return NameInList("/etc/passwd", user);
  return AskNameService("getpwuid", &passwd::pw_name,
                        [user](passwd& record, std::vector<char>& buffer, passwd*& found) {
                          return ::getpwuid_r(user, &record, buffer.data(), buffer.size(), &found);
                        });
}

Fact<std::string> Files::GroupName(std::uint32_t group) const {
  if (!root_.is_running()) return NameInList("/etc/group", group);
  return AskNameService("getgrgid", &::group::gr_name,
                        [group](::group& record, std::vector<char>& buffer, ::group*& found) {
                          return ::getgrgid_r(group, &record, buffer.data(), buffer.size(), &found);
                        });
}

}  // namespace machine::live
