// Changing one item in its place.
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "machine/live/attributes.h"
#include "machine/live/files.h"
#include "machine/live/item.h"

namespace machine::live {
namespace {

// The name of an item's companion if there is one, else empty.
std::string CompanionName(Place const& place) {
  std::string name = CompanionPath(place.name());
  FileDescriptor const file = OpenCompanion(place.folder(), name.c_str());
  if (!file.is_open() || !ReadAppleDouble(file.number())) name.clear();
  return name;
}

// Some file systems cannot refuse to replace; there, look first.
int Rename(Place const& from, Place const& to) {
  int const result =
      ::renameat2(from.folder(), from.name(), to.folder(), to.name(), RENAME_NOREPLACE);
  if (result == 0 || (errno != EINVAL && errno != ENOSYS)) return result;
  ItemStatus status;
  if (ReadStatus(to.folder(), to.name(), status)) {
    errno = EEXIST;
    return -1;
  }
  return ::renameat(from.folder(), from.name(), to.folder(), to.name());
}

int SetImmutable(FileDescriptor const& opened, bool is_immutable) {
  int flags = 0;
  if (!opened.is_open() || ::ioctl(opened.number(), FS_IOC_GETFLAGS, &flags) != 0) return -1;
  flags = is_immutable ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
  return ::ioctl(opened.number(), FS_IOC_SETFLAGS, &flags);
}

bool ChangeLock(FileDescriptor const& item, ItemStatus const& status, bool locked) {
  if (status.kind == ItemKind::kFolder) {
    return status.is_immutable == locked || SetImmutable(ReopenFolder(item), locked) == 0;
  }
  if (status.kind != ItemKind::kFile) {
    errno = EINVAL;
    return false;
  }
  if (status.is_locked() == locked) return true;
  if (status.is_immutable && SetImmutable(ReopenFile(item, O_RDONLY), false) != 0) return false;
  mode_t mode = status.mode & 07777;
  if (locked) {
    mode &= ~mode_t{0222};
  } else if ((mode & 0222) == 0) {
    mode |= 0200;
  }
  return ::chmod(ProcPath(item.number()).c_str(), mode) == 0;
}

// The pattern with the six characters that the library chose.
std::string WithNameOf(std::string pattern, std::string const& made) {
  constexpr std::size_t kPlaceholders = 6;
  return pattern.replace(pattern.size() - kPlaceholders, kPlaceholders, made,
                         made.size() - kPlaceholders);
}

}  // namespace

Absence RefuseChange(std::string path) {
  Absence absence = AnnounceAbsence(Outcome::kNotSupported, std::move(path), "read-only");
  absence.error = EROFS;
  return absence;
}

template <typename Change>
Fact<Done> Files::ChangeItem(std::string const& path, Change&& change) const {
  if (is_read_only_) return RefuseChange(path);
  Place const place = root_.Locate(path);
  if (!place.is_reached() || !change(place)) return AnnounceError(errno, path);
  Announce(path, Outcome::kAnswered);
  return Done();
}

Fact<Done> Files::CreateFile(std::string const& path, std::uint32_t mode) const {
  return ChangeItem(path, [mode](Place const& place) {
    constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    return FileDescriptor(::openat(place.folder(), place.name(), kFlags, mode)).is_open();
  });
}

Fact<Done> Files::CreateFolder(std::string const& path, std::uint32_t mode) const {
  return ChangeItem(path, [mode](Place const& place) {
    return ::mkdirat(place.folder(), place.name(), mode) == 0;
  });
}

Fact<Done> Files::Remove(std::string const& path) const {
  return ChangeItem(path, [](Place const& place) {
    ItemStatus status;
    if (!ReadStatus(place.folder(), place.name(), status)) return false;
    std::string const companion = CompanionName(place);
    int const flags = status.kind == ItemKind::kFolder ? AT_REMOVEDIR : 0;
    if (::unlinkat(place.folder(), place.name(), flags) != 0) return false;
    if (!companion.empty()) ::unlinkat(place.folder(), companion.c_str(), 0);
    return true;
  });
}

Fact<Done> Files::Move(std::string const& from, std::string const& to) const {
  return ChangeItem(from, [&](Place const& source) {
    Place const target = root_.Locate(to);
    if (!target.is_reached()) return false;
    std::string const companion = CompanionName(source);
    if (Rename(source, target) != 0) return false;
    std::string const new_companion = CompanionPath(target.name());
    if (!companion.empty() && !new_companion.empty()) {
      ::renameat(source.folder(), companion.c_str(), target.folder(), new_companion.c_str());
    }
    return true;
  });
}

// The replacement takes on all that the place keeps before it gets there, so that nobody sees a
// mixture. The owner stays where this process may not give files away.
Fact<Done> Files::Replace(std::string const& place, std::string const& replacement) const {
  return ChangeItem(place, [&](Place const& target) {
    Place const source = root_.Locate(replacement);
    ItemStatus kept, status;
    if (!source.is_reached() || !ReadStatus(source.folder(), source.name(), status) ||
        !ReadStatus(target.folder(), target.name(), kept)) {
      return false;
    }
    if (kept.kind != ItemKind::kFile || status.kind != ItemKind::kFile) {
      errno = kept.kind == ItemKind::kFolder ? EISDIR : EINVAL;
      return false;
    }
    bool const has_owner =
        (kept.user == status.user && kept.group == status.group) ||
        ::fchownat(source.folder(), source.name(), kept.user, kept.group, AT_SYMLINK_NOFOLLOW) == 0;
    // A program must not run as someone else than the owner it was made for.
    mode_t const mode = kept.mode & (has_owner ? 07777 : 0777);
    FileDescriptor const item(
        ::openat(source.folder(), source.name(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    return item.is_open() &&
           CopyAttributes(target.PlainPath().c_str(), source.PlainPath().c_str()) &&
           ::chmod(ProcPath(item.number()).c_str(), mode) == 0 &&
           ::renameat(source.folder(), source.name(), target.folder(), target.name()) == 0;
  });
}

Fact<Done> Files::SetLocked(std::string const& path, bool locked) const {
  return ChangeItem(path, [locked](Place const& place) {
    FileDescriptor const item(
        ::openat(place.folder(), place.name(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    ItemStatus status;
    return item.is_open() && ReadStatus(item.number(), "", status) &&
           ChangeLock(item, status, locked);
  });
}

Fact<Done> Files::SetFinderInfo(std::string const& path, FinderInfo const& info) const {
  return ChangeItem(path, [&info](Place const& place) {
    return WriteFinderInfo(place.PlainPath().c_str(), info) == 0;
  });
}

Fact<Done> Files::SetMode(std::string const& path, std::uint32_t mode) const {
  return ChangeItem(path, [mode](Place const& place) {
    FileDescriptor const item(
        ::openat(place.folder(), place.name(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    return item.is_open() && ::chmod(ProcPath(item.number()).c_str(), mode & 07777) == 0;
  });
}

Fact<Done> Files::SetTimes(std::string const& path, FileTime const& access,
                           FileTime const& modification) const {
  return ChangeItem(path, [&](Place const& place) {
    timespec const times[] = {{access.seconds, access.nanoseconds},
                              {modification.seconds, modification.nanoseconds}};
    return ::utimensat(place.folder(), place.name(), times, AT_SYMLINK_NOFOLLOW) == 0;
  });
}

Fact<UniqueFile> Files::MakeUniqueFile(std::string const& pattern) const {
  if (is_read_only_) return RefuseChange(pattern);
  Place const place = root_.Locate(pattern);
  std::string path = place.PlainPath();
  FileDescriptor file(place.is_reached() ? ::mkostemp(path.data(), O_CLOEXEC) : -1);
  if (!file.is_open()) return AnnounceError(errno, pattern);
  UniqueFile made = {WithNameOf(pattern, path), std::move(file)};
  Announce(made.path, Outcome::kAnswered);
  return made;
}

Fact<std::string> Files::MakeUniqueFolder(std::string const& pattern) const {
  if (is_read_only_) return RefuseChange(pattern);
  Place const place = root_.Locate(pattern);
  std::string path = place.PlainPath();
  if (!place.is_reached() || ::mkdtemp(path.data()) == nullptr) {
    return AnnounceError(errno, pattern);
  }
  std::string made = WithNameOf(pattern, path);
  Announce(made, Outcome::kAnswered);
  return made;
}

}  // namespace machine::live
