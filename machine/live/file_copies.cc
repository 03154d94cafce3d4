// Copying one item with all that belongs to it.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <vector>

#include "machine/live/attributes.h"
#include "machine/live/files.h"
#include "machine/live/item.h"

namespace machine::live {
namespace {

bool CopyByHand(int from, int to) {
  std::vector<char> piece(std::size_t{1} << 17);
  for (;;) {
    ssize_t const got = ::read(from, piece.data(), piece.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return got == 0;
    for (ssize_t done = 0; done < got;) {
      ssize_t const put = ::write(to, piece.data() + done, static_cast<std::size_t>(got - done));
      if (put < 0 && errno == EINTR) continue;
      if (put < 0) return false;
      done += put;
    }
  }
}

// The kernel shares blocks or copies on its own where it can, but not from everywhere, and it sees
// nothing in files that do not tell their size.
bool CopyContent(int from, int to) {
  constexpr std::size_t kStep = std::size_t{1} << 30;
  for (;;) {
    ssize_t const size = ::copy_file_range(from, nullptr, to, nullptr, kStep, 0);
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return CopyByHand(from, to);
  }
}

struct Copied {
  ItemStatus const& status;
  Place const& from;
  Place const& to;
};

// Without the owner, the bits that lend out its rights are not copied. A folder is to be filled.
mode_t CopiedMode(ItemStatus const& status) {
  mode_t const mode = status.mode & 0777;
  return status.kind == ItemKind::kFolder ? mode | 0700 : mode;
}

// What a copy takes along besides its content. The owner is whoever copies.
bool CopyDetails(Copied const& copied) {
  ItemStatus const& status = copied.status;
  Place const& to = copied.to;
  if (status.kind != ItemKind::kLink) {
    FileDescriptor const item(::openat(to.folder(), to.name(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    // Attributes first: afterwards the mode may forbid to write them.
    if (!item.is_open() ||
        !CopyAttributes(copied.from.PlainPath().c_str(), to.PlainPath().c_str()) ||
        ::chmod(ProcPath(item.number()).c_str(), CopiedMode(status)) != 0) {
      return false;
    }
  }
  timespec const times[] = {{status.access.seconds, status.access.nanoseconds},
                            {status.modification.seconds, status.modification.nanoseconds}};
  return ::utimensat(to.folder(), to.name(), times, AT_SYMLINK_NOFOLLOW) == 0;
}

bool CopyFileContent(Place const& from, Place const& to) {
  FileDescriptor const item(::openat(from.folder(), from.name(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  FileDescriptor const source = ReopenFile(item, O_RDONLY | O_NONBLOCK);
  if (!source.is_open()) return false;
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  FileDescriptor const target(::openat(to.folder(), to.name(), kFlags, 0600));
  if (!target.is_open()) return false;
  if (CopyContent(source.number(), target.number())) return true;
  int const error = errno;
  ::unlinkat(to.folder(), to.name(), 0);
  errno = error;
  return false;
}

bool CopyLink(Place const& from, Place const& to) {
  char target[PATH_MAX];
  ssize_t const size = ::readlinkat(from.folder(), from.name(), target, sizeof target - 1);
  if (size < 0) return false;
  target[size] = '\0';
  return ::symlinkat(target, to.folder(), to.name()) == 0;
}

bool MakeCopy(Copied const& copied) {
  switch (copied.status.kind) {
    case ItemKind::kFile:
      return CopyFileContent(copied.from, copied.to);
    case ItemKind::kLink:
      return CopyLink(copied.from, copied.to);
    case ItemKind::kFolder:
      return ::mkdirat(copied.to.folder(), copied.to.name(), 0700) == 0;
    case ItemKind::kOther:
      break;
  }
  errno = EINVAL;
  return false;
}

bool CopyCompanion(Copied const& copied, std::string const& name, std::string const& new_name) {
  FileDescriptor const source = OpenCompanion(copied.from.folder(), name.c_str());
  if (!source.is_open() || new_name.empty() || !ReadAppleDouble(source.number())) return true;
  constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC;
  FileDescriptor const target(::openat(copied.to.folder(), new_name.c_str(), kFlags, 0600));
  return target.is_open() && CopyContent(source.number(), target.number()) &&
         ::fchmod(target.number(), copied.status.mode & 0666) == 0;
}

}  // namespace

Fact<Done> Files::Copy(std::string const& from, std::string const& to) const {
  if (is_read_only_) return RefuseChange(to);
  Place const source = root_.Locate(from), target = root_.Locate(to);
  ItemStatus status;
  if (!source.is_reached() || !ReadStatus(source.folder(), source.name(), status)) {
    return AnnounceError(errno, from);
  }
  Copied const copied = {status, source, target};
  if (!target.is_reached() || !MakeCopy(copied)) return AnnounceError(errno, to);
  if (!CopyCompanion(copied, CompanionPath(source.name()), CompanionPath(target.name())) ||
      !CopyDetails(copied)) {
    int const error = errno;
    ::unlinkat(target.folder(), target.name(), status.kind == ItemKind::kFolder ? AT_REMOVEDIR : 0);
    return AnnounceError(error, to);
  }
  Announce(from, Outcome::kAnswered, status.kind == ItemKind::kFile ? status.bytes : 0);
  Announce(to, Outcome::kAnswered);
  return Done();
}

}  // namespace machine::live
