#include "machine/capture/copies.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "machine/capture/document.h"
#include "machine/capture/path_walk.h"
#include "machine/capture/registry_form.h"
#include "machine/live/apple_double.h"
#include "machine/live/attributes.h"
#include "machine/live/folder_entries.h"
#include "machine/live/item.h"
#include "machine/live/root.h"

namespace machine::capture {
namespace {

// What a machine answers is its owner's alone.
constexpr mode_t kFolderMode = 0700, kFileMode = 0600;

bool WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t const put = ::write(file, bytes.data(), bytes.size());
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(put));
  }
  return true;
}

FileDescriptor CreateFile(int folder, char const* name, int flags) {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC;
  return FileDescriptor(::openat(folder, name, kFlags | flags, kFileMode));
}

bool IsEmpty(int folder) {
  bool is_empty = true;
  bool const is_read = live::ForEachEntry(folder, [&](char const* name) {
    if (std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0) is_empty = false;
  });
  return is_read && is_empty;
}

// Sparse where the content was not read, as far as this disk knows files of that size.
bool SetSize(FileDescriptor const& file, ItemStatus const& status) {
  bool const is_sized = ::ftruncate(file.number(), static_cast<off_t>(status.bytes)) == 0;
  return is_sized || ::ftruncate(file.number(), 0) == 0;
}

// A companion that was made for another item meanwhile stays.
bool LayDownFile(int folder, char const* name, Content const& data, ItemStatus const& status) {
  FileDescriptor const file = CreateFile(folder, name, data != nullptr ? O_TRUNC : O_EXCL);
  if (!file.is_open()) return data == nullptr && errno == EEXIST;
  if (data != nullptr) return WriteAll(file.number(), *data);
  return SetSize(file, status);
}

class FileSink final : public ContentSink {
 public:
  explicit FileSink(int file) : file_(file) {}
  bool Restart() override { return ::lseek(file_, 0, SEEK_SET) == 0 && ::ftruncate(file_, 0) == 0; }
  bool Add(std::string_view bytes) override { return WriteAll(file_, bytes); }

 private:
  int const file_;
};

bool TakeFile(int folder, char const* name, CopiedContent const& content, RecordedItem& item) {
  FileDescriptor const file = CreateFile(folder, name, O_TRUNC);
  if (!file.is_open()) return false;
  FileSink sink(file.number());
  Fact<Done> const taken = content.taker->Take(content.path, sink, item);
  if (taken) return true;
  item.content.emplace(taken.absence());
  return ::ftruncate(file.number(), 0) == 0 && SetSize(file, item.item.status);
}

void SetTimes(int folder, char const* name, ItemStatus const& status) {
  timespec const times[] = {{status.access.seconds, status.access.nanoseconds},
                            {status.modification.seconds, status.modification.nanoseconds}};
  ::utimensat(folder, name, times, AT_SYMLINK_NOFOLLOW);
}

// Extended attributes where the disk has them and they fit, else a companion. One that was recorded
// as a file of its own stays, and has the same.
bool LayDownFinderDetails(int folder, std::string const& name, Item const& item,
                          Content const& resource_fork, bool has_own_companion) {
  bool const has_fork = resource_fork != nullptr && !resource_fork->empty();
  if (!item.has_finder_info && !has_fork) return true;
  std::string const path = live::ProcPath(folder) + "/" + name;
  bool const is_kept =
      (!item.has_finder_info || live::WriteFinderInfo(path.c_str(), item.finder_info) == 0) &&
      (!has_fork || live::WriteResourceFork(path.c_str(), *resource_fork) == 0);
  if (is_kept || has_own_companion) return true;
  FileDescriptor const file = CreateFile(folder, live::CompanionPath(name).c_str(), O_TRUNC);
  return file.is_open() &&
         WriteAll(file.number(),
                  live::AppleDoubleText(item.has_finder_info ? &item.finder_info : nullptr,
                                        has_fork ? *resource_fork : std::string()));
}

bool LayDownFolder(int parent, char const* name) {
  return ::mkdirat(parent, name, kFolderMode) == 0 || errno == EEXIST;
}

bool LayDownLink(int folder, char const* name, RecordedItem const& item) {
  if (!item.target || !*item.target) return true;
  return ::symlinkat((*item.target)->c_str(), folder, name) == 0;
}

Absence Failure(std::string const& path) {
  int const error = errno;
  return {live::OutcomeOf(error), path, {}, error};
}

}  // namespace

Fact<CaptureFolder> CaptureFolder::Make(std::string const& path) {
  CaptureFolder made;
  made.path_ = path;
  if (::mkdir(path.c_str(), kFolderMode) != 0 && errno != EEXIST) return Failure(path);
  made.folder_ = FileDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!made.folder_.is_open()) return Failure(path);
  int const folder = made.folder_.number();
  if (!IsEmpty(folder)) return Absence{Outcome::kMalformed, path, "not an empty folder", ENOTEMPTY};
  if (!CreateFile(folder, kUnfinished, O_EXCL).is_open()) return Failure(path);
  if (::mkdirat(folder, kRoot, kFolderMode) != 0) return Failure(path);
  made.root_ =
      FileDescriptor(::openat(folder, kRoot, O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!made.root_.is_open()) return Failure(path);
  return made;
}

// Through folders only: a link that was laid down may lead anywhere.
FileDescriptor CaptureFolder::OpenParent(std::string const& path) const {
  std::string const folder = "." + SplitPath(path).folder;
  return live::OpenConfined(root_.number(), folder.c_str(), RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS,
                            O_DIRECTORY);
}

bool CaptureFolder::LayDownItem(CopiedContent const& content, RecordedItem& item,
                                bool has_own_companion) const {
  ItemStatus const& status = item.item.status;
  FileDescriptor const parent = OpenParent(content.path);
  if (!parent.is_open()) return false;
  std::string const name = SplitPath(content.path).name;
  if (name.empty()) return true;
  bool is_done = true;
  switch (status.kind) {
    case ItemKind::kFolder:
      is_done = LayDownFolder(parent.number(), name.c_str());
      break;
    case ItemKind::kLink:
      is_done = LayDownLink(parent.number(), name.c_str(), item);
      break;
    case ItemKind::kFile:
      is_done = content.taker != nullptr
                    ? TakeFile(parent.number(), name.c_str(), content, item)
                    : LayDownFile(parent.number(), name.c_str(), content.data, status);
      break;
    case ItemKind::kOther:
      return true;
  }
  if (!is_done) return false;
  bool const has_details = live::MayHaveFinderInfo(status.kind);
  is_done = !has_details || LayDownFinderDetails(parent.number(), name, item.item,
                                                 content.resource_fork, has_own_companion);
  if (item.known >= Known::kStatus) SetTimes(parent.number(), name.c_str(), status);
  return is_done;
}

void CaptureFolder::LayDown(CopiedContent const& content, RecordedItem& item,
                            bool has_own_companion) const {
  bool const exists = !item.absence && item.known != Known::kNothing;
  if (!exists || LayDownItem(content, item, has_own_companion)) return;
  Absence const absence = {Outcome::kAbsent, content.path,
                           std::string(kNotRecorded) + ": " + std::strerror(errno)};
  if (item.content && *item.content) item.content.emplace(absence);
  if (item.resource_fork && *item.resource_fork) item.resource_fork.emplace(absence);
}

Fact<Done> CaptureFolder::LayDownPlane(std::string const& plane,
                                       std::string const& document) const {
  std::string const path = std::string(kRegistryFolder) + "/" + plane + kPlaneEnding;
  if (!LayDownFolder(folder_.number(), kRegistryFolder)) return Failure(path_);
  FileDescriptor const file = CreateFile(folder_.number(), path.c_str(), O_EXCL);
  if (!file.is_open() || !WriteAll(file.number(), document)) return Failure(path_);
  return Done();
}

Fact<Done> CaptureFolder::Finish(std::string const& document) const {
  FileDescriptor const file = CreateFile(folder_.number(), kUnfinished, O_TRUNC);
  bool const is_written =
      file.is_open() && WriteAll(file.number(), document) && ::fsync(file.number()) == 0 &&
      ::renameat(folder_.number(), kUnfinished, folder_.number(), kDocument) == 0;
  if (!is_written) return Failure(path_);
  return Done();
}

}  // namespace machine::capture
