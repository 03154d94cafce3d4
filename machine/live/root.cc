#include "machine/live/root.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <climits>
#include <cstring>

#include "machine/live/folder_entries.h"
#include "machine/live/silent_mounts.h"
#include "machine/live/text.h"

namespace machine::live {
namespace {

constexpr std::size_t kLargestFile = std::size_t{16} << 20;

// The path seen from the root's folder.
char const* Relative(std::string const& path) {
  std::size_t const start = path.find_first_not_of('/');
  return start == std::string::npos ? "." : path.c_str() + start;
}

bool IsRegular(int file) {
  struct stat status;
  return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

// Reads to the end; the size that the file system tells means nothing in /proc and /sys.
Outcome ReadAll(int file, std::string& text) {
  char piece[16384];
  for (;;) {
    ssize_t const size = ::read(file, piece, sizeof piece);
    if (size == 0) return Outcome::kAnswered;
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) return OutcomeOf(errno);
    if (text.size() + static_cast<std::size_t>(size) > kLargestFile) return Outcome::kMalformed;
    text.append(piece, static_cast<std::size_t>(size));
  }
}

}  // namespace

Outcome OutcomeOf(int error) {
  switch (error) {
    case EACCES:
    case EPERM:
      return Outcome::kPermissionRefused;
    case ENOSYS:
    case EOPNOTSUPP:
      return Outcome::kNotSupported;
    case ETIMEDOUT:
    case EAGAIN:  // a file that would make its reader wait
      return Outcome::kTimedOut;
    case EIO:
    case ELOOP:
    case EXDEV:
    case EINVAL:
    case EISDIR:
      return Outcome::kMalformed;
    default:
      return Outcome::kAbsent;
  }
}

Absence AnnounceAbsence(Outcome reason, std::string source, std::string where) {
  Announce(source, reason);
  return {reason, std::move(source), std::move(where)};
}

Absence AnnounceError(int error, std::string source, std::string where) {
  Absence absence = AnnounceAbsence(OutcomeOf(error), std::move(source), std::move(where));
  absence.error = error;
  return absence;
}

Root::Root(std::string folder) : is_running_(folder == "/") {
  if (is_running_) {
    silent_mounts_ = std::make_shared<SilentMounts>();
  } else {
    folder_ = FileDescriptor(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  }
}

bool Root::MayHoldSilentMounts(FolderPath const& folder) const {
  return is_running_ && silent_mounts_->MayLieIn(folder, *this);
}

bool Root::IsSilent(std::string_view path) const {
  if (!is_running_ || !silent_mounts_->AreOnTheWayTo(path, *this)) [[likely]]
    return false;
  errno = ETIMEDOUT;
  return true;
}

namespace {

FileDescriptor Reopen(FileDescriptor const& item, int flags) {
  return FileDescriptor(::open(ProcPath(item.number()).c_str(), O_CLOEXEC | O_NOCTTY | flags));
}

// The path without slashes at its end, and its last name, which is empty for the root.
std::pair<std::string_view, std::string_view> Split(std::string_view path) {
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  std::size_t const slash = path.rfind('/') + 1;
  return {path.substr(0, slash), path.substr(slash)};
}

bool IsOrdinaryName(std::string_view name) { return !name.empty() && name != "." && name != ".."; }

bool HasNul(std::string const& path) {
  if (path.find('\0') == std::string::npos) return false;
  errno = EINVAL;
  return true;
}

}  // namespace

FileDescriptor OpenConfined(int folder, char const* path, unsigned long resolve,
                            unsigned long flags) {
  // A path may change while the kernel walks it; it then asks for another try.
  constexpr int kTries = 8;
  open_how how = {};
  how.flags = O_PATH | O_CLOEXEC | flags;
  how.resolve = resolve | RESOLVE_NO_MAGICLINKS;
  for (int i = 0; i < kTries; ++i) {
    FileDescriptor item(static_cast<int>(::syscall(SYS_openat2, folder, path, &how, sizeof how)));
    if (item.is_open() || errno != EAGAIN) return item;
  }
  return {};
}

std::string ProcPath(int item) { return "/proc/self/fd/" + std::to_string(item); }

FileDescriptor ReopenFile(FileDescriptor const& item, int flags) {
  if (!item.is_open()) return {};
  struct stat status;
  if (::fstat(item.number(), &status) != 0) return {};
  if (S_ISREG(status.st_mode)) return Reopen(item, flags);
  errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
  return {};
}

FileDescriptor ReopenFolder(FileDescriptor const& item) {
  return item.is_open() ? Reopen(item, O_RDONLY | O_DIRECTORY) : FileDescriptor();
}

int Place::folder() const { return folder_.is_open() ? folder_.number() : AT_FDCWD; }

std::string Place::PlainPath() const {
  return folder_.is_open() ? ProcPath(folder_.number()) + "/" + name_ : name_;
}

// Longer paths than the kernel takes, piece by piece. Each piece but the first stays within the
// folder it starts from.
FileDescriptor Root::OpenLong(std::string const& path) const {
  FileDescriptor folder;
  for (std::size_t start = 0; start < path.size();) {
    std::size_t end = path.size();
    if (end - start >= PATH_MAX) end = path.rfind('/', start + PATH_MAX - 1);
    if (end == std::string::npos || end <= start) break;
    std::string const piece = path.substr(start, end - start);
    if (is_running_) {
      folder = FileDescriptor(::openat(start == 0 ? AT_FDCWD : folder.number(),
                                       start == 0 ? piece.c_str() : Relative(piece),
                                       O_PATH | O_CLOEXEC));
    } else {
      folder = OpenConfined(start == 0 ? folder_.number() : folder.number(), Relative(piece),
                            start == 0 ? RESOLVE_IN_ROOT : RESOLVE_BENEATH);
    }
    if (!folder.is_open() || end == path.size()) return folder;
    start = end;
  }
  errno = ENAMETOOLONG;
  return {};
}

FileDescriptor Root::OpenItem(std::string const& path) const {
  if (HasNul(path) || IsSilent(path)) return {};
  if (path.size() >= PATH_MAX) return OpenLong(path);
  if (is_running_) return FileDescriptor(::open(path.c_str(), O_PATH | O_CLOEXEC));
  return OpenConfined(folder_.number(), Relative(path), RESOLVE_IN_ROOT);
}

FileDescriptor Root::OpenItemItself(std::string const& path) const {
  Place const place = Locate(path);
  if (!place.is_reached()) return {};
  return FileDescriptor(::openat(place.folder(), place.name(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
}

// A last ".." is part of the walk that the kernel keeps within the root, never a name in the end.
Place Root::Locate(std::string const& path) const {
  if (HasNul(path) || IsSilent(path)) return {};
  auto const [parent, name] = Split(path);
  if (is_running_ && path.size() < PATH_MAX) {
    return {FileDescriptor(), std::string(parent) + std::string(name)};
  }
  bool const has_name = IsOrdinaryName(name);
  FileDescriptor folder = OpenItem(has_name ? std::string(parent) : path);
  if (!folder.is_open()) return {};
  return {std::move(folder), has_name ? std::string(name) : "."};
}

std::string Root::PathOf(FileDescriptor const& item) const {
  auto const read_link = [](int number) -> std::string {
    char path[PATH_MAX];
    ssize_t const size = ::readlink(ProcPath(number).c_str(), path, sizeof path);
    return size > 0 ? std::string(path, static_cast<std::size_t>(size)) : std::string();
  };
  std::string path = read_link(item.number());
  if (is_running_) return path.starts_with('/') ? path : std::string();
  std::string const root = read_link(folder_.number());
  if (root == "/" || path.empty() || root.empty()) return path;
  if (path == root) return "/";
  return path.starts_with(root + "/") ? path.substr(root.size()) : std::string();
}

bool Root::IsCanonicalFolder(std::string const& path) const {
  if (path == "/") return true;
  if (!path.starts_with('/') || IsSilent(path)) return false;
  for (char const* odd : {"//", "/./", "/../"}) {
    if ((path + "/").find(odd) != std::string::npos) return false;
  }
  return OpenConfined(is_running_ ? AT_FDCWD : folder_.number(),
                      is_running_ ? path.c_str() : Relative(path),
                      RESOLVE_NO_SYMLINKS | (is_running_ ? 0 : RESOLVE_IN_ROOT), O_DIRECTORY)
      .is_open();
}

FileDescriptor Root::OpenFile(std::string const& path) const {
  if (!is_running_) return ReopenFile(OpenItem(path), O_RDONLY);
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!file.is_open() || IsRegular(file.number())) return file;
  errno = EINVAL;
  return {};
}

FileDescriptor Root::OpenFolder(std::string const& path) const {
  if (HasNul(path) || IsSilent(path)) return {};
  if (is_running_ && path.size() < PATH_MAX) {
    return FileDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  }
  return ReopenFolder(OpenItem(path));
}

FileDescriptor Root::OpenFileIn(int folder, char const* relative_path) const {
  if (is_running_) return FileDescriptor(::openat(folder, relative_path, O_RDONLY | O_CLOEXEC));
  return ReopenFile(OpenConfined(folder, relative_path, RESOLVE_BENEATH), O_RDONLY);
}

Fact<std::string> Root::ReadFile(std::string const& path) const {
  FileDescriptor const file = OpenFile(path);
  if (!file.is_open()) return AnnounceAbsence(OutcomeOf(errno), path);
  std::string text;
  if (Outcome const outcome = ReadAll(file.number(), text); outcome != Outcome::kAnswered) {
    return AnnounceAbsence(outcome, path);
  }
  Announce(path, Outcome::kAnswered, text.size());
  return text;
}

Fact<std::string> Root::ReadText(std::string const& path) const {
  Fact<std::string> text = ReadFile(path);
  if (!text) return text;
  std::string_view const trimmed = Trim(*text);
  if (trimmed.empty()) return Absence{Outcome::kAbsent, path, "empty"};
  return std::string(trimmed);
}

Fact<std::vector<std::string>> Root::List(std::string const& path) const {
  std::vector<std::string> names;
  FileDescriptor const folder = OpenFolder(path);
  bool const is_read = folder.is_open() && ForEachEntry(folder.number(), [&](char const* name) {
                         if (std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0) {
                           names.emplace_back(name);
                         }
                       });
  if (!is_read) return AnnounceAbsence(OutcomeOf(errno), path);
  Announce(path, Outcome::kAnswered);
  return names;
}

Fact<std::string> Root::ReadLink(std::string const& path) const {
  char target[PATH_MAX];
  ssize_t size = -1;
  if (is_running_) {
    size = ::readlink(path.c_str(), target, sizeof target);
  } else {
    std::size_t const slash = path.rfind('/');
    FileDescriptor const folder = OpenFolder(path.substr(0, slash + 1));
    if (folder.is_open()) {
      size = ::readlinkat(folder.number(), path.c_str() + slash + 1, target, sizeof target);
    }
  }
  if (size < 0) {
    return AnnounceAbsence(errno == EINVAL ? Outcome::kAbsent : OutcomeOf(errno), path, "link");
  }
  Announce(path, Outcome::kAnswered, static_cast<std::uint64_t>(size));
  return std::string(target, static_cast<std::size_t>(size));
}

Fact<std::string> Root::IdentityOf(std::string const& path) const {
  struct stat status;
  int result = -1;
  if (is_running_) {
    result = ::stat(path.c_str(), &status);
  } else {
    FileDescriptor const item = OpenItem(path);
    if (item.is_open()) result = ::fstat(item.number(), &status);
  }
  if (result != 0) return AnnounceAbsence(OutcomeOf(errno), path);
  std::int64_t const parts[] = {static_cast<std::int64_t>(status.st_dev),
                                static_cast<std::int64_t>(status.st_ino), status.st_size,
                                status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
  return std::string(reinterpret_cast<char const*>(parts), sizeof parts);
}

}  // namespace machine::live
