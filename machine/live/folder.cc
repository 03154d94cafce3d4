// Reading folders: names come from the kernel many at a time, and of each only what is wanted is
// asked.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <unordered_set>

#include "machine/live/files.h"
#include "machine/live/folder_path.h"
#include "machine/live/item.h"

namespace machine::live {
namespace {

ItemKind KindOfEntry(unsigned char type) {
  switch (type) {
    case DT_REG:
      return ItemKind::kFile;
    case DT_DIR:
      return ItemKind::kFolder;
    case DT_LNK:
      return ItemKind::kLink;
    default:
      return ItemKind::kOther;
  }
}

bool IsDots(char const* name) {
  return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

// The names of the AppleDouble files that a folder may have. A folder with very many is not
// remembered; every item is then looked for.
class CompanionNames {
 public:
  void Add(char const* name) {
    if (!IsCompanionName(name) || is_full_) return;
    is_full_ = names_.size() == kMost;
    if (is_full_) names_.clear();
    if (!is_full_) names_.emplace(name + kCompanionPrefix.size());
  }
  bool MayHave(char const* item) const {
    return is_full_ || (!names_.empty() && names_.count(item) != 0);
  }

 private:
  static constexpr std::size_t kMost = 4096;
  std::unordered_set<std::string> names_;  // without their prefix
  bool is_full_ = false;
};

class LiveFolder final : public Folder {
 public:
  LiveFolder(Root const& root, FileDescriptor folder, std::shared_ptr<FolderPath> path,
             ItemStatus const& status)
      : root_(root), folder_(std::move(folder)), path_(std::move(path)), status_(status) {
    SpellPlainPath();
    may_hold_silent_mounts_ = root_.MayHoldSilentMounts(*path_);
  }

  ItemStatus const& Status() const override { return status_; }
  Fact<FolderEntry const*> Next(Detail detail) override;
  Fact<std::unique_ptr<Folder>> OpenFolder(std::string_view name) override;
  Fact<std::size_t> ReadStart(std::string_view name, void* buffer, std::size_t size) override;
  void Rest() override;

 private:
  static constexpr std::size_t kBufferBytes = 32768;

  void SpellPlainPath() {
    plain_path_ = ProcPath(folder_.number()) + "/";
    plain_start_ = plain_path_.size();
  }
  bool Wake();
  bool Fill();
  bool FindCompanions();
  bool Look(dirent64 const& entry, Detail detail);
  bool IsSilent(char const* name) const {
    return may_hold_silent_mounts_ && root_.IsSilent(PathIn(path_->Text(), name));
  }
  bool IsCompanion(char const* name) const;
  Absence Failure() const {
    int const error = errno;
    return AnnounceError(error, path_->Text());
  }

  Root const& root_;
  FileDescriptor folder_;
  std::shared_ptr<FolderPath> path_;
  ItemStatus status_;
  bool may_hold_silent_mounts_ = false;
  std::string plain_path_;  // of the entry looked at
  std::size_t plain_start_ = 0;

  std::unique_ptr<char[]> buffer_;
  std::size_t at_ = 0, end_ = 0;
  bool is_whole_ = false;      // nothing comes after the buffer
  std::int64_t position_ = 0;  // in the folder, behind the last entry handed out
  bool knows_companions_ = false, has_named_forks_ = false;
  CompanionNames companions_;
  FolderEntry entry_;
};

void LiveFolder::Rest() {
  folder_ = FileDescriptor();
  buffer_.reset();
  at_ = end_ = 0;
  is_whole_ = false;
}

// Finds the folder again after a rest; only the same one will do.
bool LiveFolder::Wake() {
  if (folder_.is_open()) return true;
  FileDescriptor const item = root_.OpenItem(path_->Text());
  ItemStatus status;
  if (!item.is_open() || !ReadStatus(item.number(), "", status)) return false;
  if (!status.is_same_item(status_)) {
    errno = ENOENT;
    return false;
  }
  folder_ = ReopenFolder(item);
  if (!folder_.is_open() || ::lseek(folder_.number(), position_, SEEK_SET) < 0) return false;
  SpellPlainPath();
  return true;
}

// False at the end, with `errno` 0, and on failure.
bool LiveFolder::Fill() {
  if (buffer_ == nullptr) buffer_ = std::make_unique<char[]>(kBufferBytes);
  at_ = end_ = 0;
  errno = 0;
  if (is_whole_) return false;
  long const size = ::syscall(SYS_getdents64, folder_.number(), buffer_.get(), kBufferBytes);
  if (size <= 0) return false;
  end_ = static_cast<std::size_t>(size);
  return true;
}

// Reads all names once before the first item is looked at. What fits one buffer stays there and is
// not read again.
bool LiveFolder::FindCompanions() {
  knows_companions_ = true;
  has_named_forks_ = HasNamedForks(ProcPath(folder_.number()).c_str());
  int buffers = 0;
  auto last = std::make_unique<char[]>(kBufferBytes);
  std::size_t last_end = 0;
  while (Fill()) {
    for (std::size_t at = 0; at < end_;) {
      auto const* entry = reinterpret_cast<dirent64 const*>(buffer_.get() + at);
      companions_.Add(entry->d_name);
      at += entry->d_reclen;
    }
    ++buffers;
    buffer_.swap(last);
    last_end = end_;
  }
  if (errno != 0) return false;
  if (buffers <= 1) {
    buffer_.swap(last);
    end_ = last_end;
    is_whole_ = true;
    return true;
  }
  return ::lseek(folder_.number(), 0, SEEK_SET) == 0;
}

Fact<FolderEntry const*> LiveFolder::Next(Detail detail) {
  if (!Wake()) return Failure();
  if (detail == Detail::kAll && !knows_companions_ && position_ == 0 && !FindCompanions()) {
    return Failure();
  }
  for (;;) {
    if (at_ == end_ && !Fill()) {
      if (errno != 0) return Failure();
      return static_cast<FolderEntry const*>(nullptr);
    }
    auto const* entry = reinterpret_cast<dirent64 const*>(buffer_.get() + at_);
    at_ += entry->d_reclen;
    position_ = entry->d_off;
    if (!IsDots(entry->d_name) && Look(*entry, detail)) return &entry_;
  }
}

// False when the entry vanished or may not be looked at.
bool LiveFolder::Look(dirent64 const& entry, Detail detail) {
  char const* name = entry.d_name;
  entry_.name = name;
  entry_.item = Item();
  entry_.is_companion = false;
  ItemStatus& status = entry_.item.status;
  status.kind = KindOfEntry(entry.d_type);
  if (detail == Detail::kKind && entry.d_type != DT_UNKNOWN) return true;
  bool const is_heard = CurrentSourceObserver() != nullptr;
  std::string const path = is_heard ? PathIn(path_->Text(), name) : std::string();
  if (IsSilent(name) || !ReadStatus(folder_.number(), name, status)) {
    Announce(path, OutcomeOf(errno));
    return false;
  }
  Announce(path, Outcome::kAnswered);
  entry_.is_companion = IsCompanionName(name) && IsCompanion(name);
  if (detail != Detail::kAll) return true;
  plain_path_.replace(plain_start_, std::string::npos, name);
  bool const may_have_companion = !knows_companions_ || companions_.MayHave(name);
  ReadFinderDetails({folder_.number(), name, plain_path_.c_str(), path}, has_named_forks_,
                    may_have_companion, entry_.item);
  return true;
}

bool LiveFolder::IsCompanion(char const* name) const {
  ItemStatus item;
  FileDescriptor const file = OpenCompanion(folder_.number(), name);
  return file.is_open() && ReadAppleDouble(file.number()) &&
         ReadStatus(folder_.number(), name + kCompanionPrefix.size(), item);
}

Fact<std::unique_ptr<Folder>> MakeFolder(Root const& root, FileDescriptor folder,
                                         std::shared_ptr<FolderPath> path) {
  ItemStatus status;
  if (!folder.is_open() || !ReadStatus(folder.number(), "", status)) {
    int const error = errno;
    return AnnounceError(error, path->Text());
  }
  if (CurrentSourceObserver() != nullptr) Announce(path->Text(), Outcome::kAnswered);
  return std::unique_ptr<Folder>(
      std::make_unique<LiveFolder>(root, std::move(folder), std::move(path), status));
}

// Leads to something in the folder and nowhere else.
bool IsEntryName(std::string const& text) {
  return !text.empty() && !IsDots(text.c_str()) && text.find('/') == std::string::npos &&
         text.find('\0') == std::string::npos;
}

Fact<std::unique_ptr<Folder>> LiveFolder::OpenFolder(std::string_view name) {
  if (!Wake()) return Failure();
  auto path = std::make_shared<FolderPath>(path_, name);
  std::string const& text = path->Name();
  if (!IsEntryName(text)) return AnnounceError(EINVAL, path->Text());
  if (IsSilent(text.c_str())) return AnnounceError(errno, path->Text());
  constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  FileDescriptor folder(::openat(folder_.number(), text.c_str(), kFlags));
  return MakeFolder(root_, std::move(folder), std::move(path));
}

// -1 with `errno` set. What is no regular file any more is opened without waiting for anything.
ssize_t ReadStartIn(int folder, std::string const& name, void* buffer, std::size_t size) {
  constexpr int kFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  FileDescriptor const file(::openat(folder, name.c_str(), kFlags));
  struct stat status;
  if (!file.is_open() || ::fstat(file.number(), &status) != 0) return -1;
  if (!S_ISREG(status.st_mode)) {
    errno = EINVAL;
    return -1;
  }
  ssize_t got = -1;
  do {
    got = ::read(file.number(), buffer, size);
  } while (got < 0 && errno == EINTR);
  return got;
}

Fact<std::size_t> LiveFolder::ReadStart(std::string_view name, void* buffer, std::size_t size) {
  if (!Wake()) return Failure();
  std::string const text(name);
  if (!IsEntryName(text)) return AnnounceError(EINVAL, PathIn(path_->Text(), name));
  ssize_t const got = ReadStartIn(folder_.number(), text, buffer, size);
  if (got < 0) {
    int const error = errno;
    return AnnounceError(error, PathIn(path_->Text(), name));
  }
  auto const bytes = static_cast<std::size_t>(got);
  if (CurrentSourceObserver() != nullptr) {
    Announce(PathIn(path_->Text(), name), Outcome::kAnswered, bytes);
  }
  return bytes;
}

}  // namespace

Fact<std::unique_ptr<Folder>> Files::OpenFolder(std::string const& path) const {
  auto start = std::make_shared<FolderPath>(path);
  return MakeFolder(root_, root_.OpenFolder(path), std::move(start));
}

}  // namespace machine::live
