#include "machine/live/root.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <climits>
#include <cstring>

#include "machine/live/folder_entries.h"
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

Root::Root(std::string folder) : is_running_(folder == "/") {
  if (!is_running_) {
    folder_ = FileDescriptor(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  }
}

// A path may change while the kernel walks it; it then asks for another try.
FileDescriptor Root::OpenConfined(int folder, char const* path, unsigned long resolve) const {
  constexpr int kTries = 8;
  open_how how = {};
  how.flags = O_PATH | O_CLOEXEC;
  how.resolve = resolve | RESOLVE_NO_MAGICLINKS;
  for (int i = 0; i < kTries; ++i) {
    FileDescriptor item(static_cast<int>(::syscall(SYS_openat2, folder, path, &how, sizeof how)));
    if (item.is_open() || errno != EAGAIN) return item;
  }
  return {};
}

namespace {

// Opens for reading what was found and looked at already, so that nothing is opened that must not
// be: a pipe would hang and a device may do anything.
FileDescriptor Reopen(FileDescriptor const& item, int flags) {
  char path[32];
  std::snprintf(path, sizeof path, "/proc/self/fd/%d", item.number());
  return FileDescriptor(::open(path, O_RDONLY | O_CLOEXEC | flags));
}

FileDescriptor ReopenRegular(FileDescriptor const& item) {
  if (!item.is_open()) return {};
  if (IsRegular(item.number())) return Reopen(item, O_NOCTTY);
  errno = EINVAL;
  return {};
}

}  // namespace

FileDescriptor Root::OpenFile(std::string const& path) const {
  if (!is_running_) {
    return ReopenRegular(OpenConfined(folder_.number(), Relative(path), RESOLVE_IN_ROOT));
  }
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!file.is_open() || IsRegular(file.number())) return file;
  errno = EINVAL;
  return {};
}

FileDescriptor Root::OpenFolder(std::string const& path) const {
  constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
  if (is_running_) return FileDescriptor(::open(path.c_str(), kFlags));
  FileDescriptor const item = OpenConfined(folder_.number(), Relative(path), RESOLVE_IN_ROOT);
  return item.is_open() ? Reopen(item, O_DIRECTORY) : FileDescriptor();
}

FileDescriptor Root::OpenFileIn(int folder, char const* relative_path) const {
  if (is_running_) return FileDescriptor(::openat(folder, relative_path, O_RDONLY | O_CLOEXEC));
  return ReopenRegular(OpenConfined(folder, relative_path, RESOLVE_BENEATH));
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
    FileDescriptor const item = OpenConfined(folder_.number(), Relative(path), RESOLVE_IN_ROOT);
    if (item.is_open()) result = ::fstat(item.number(), &status);
  }
  if (result != 0) return AnnounceAbsence(OutcomeOf(errno), path);
  std::int64_t const parts[] = {static_cast<std::int64_t>(status.st_dev),
                                static_cast<std::int64_t>(status.st_ino), status.st_size,
                                status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
  return std::string(reinterpret_cast<char const*>(parts), sizeof parts);
}

}  // namespace machine::live
