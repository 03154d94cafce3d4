// Open forks: a file's content, or a resource fork wherever it is kept.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include "machine/live/attributes.h"
#include "machine/live/files.h"
#include "machine/live/item.h"

namespace machine::live {
namespace {

// A file, or a stretch of one that is kept in another.
class LiveFile final : public OpenFile {
 public:
  LiveFile(FileDescriptor file, std::string path, ItemStatus const& status)
      : file_(std::move(file)), path_(std::move(path)), status_(status) {}
  LiveFile(FileDescriptor file, std::string path, ItemStatus const& status, std::uint64_t start,
           std::uint64_t size)
      : LiveFile(std::move(file), std::move(path), status) {
    start_ = start;
    size_ = size;
  }
  ~LiveFile() override { Announce(path_, outcome_, bytes_); }

  ItemStatus const& Status() const override { return status_; }
  Fact<std::uint64_t> Size() override;
  Fact<std::size_t> ReadAt(std::uint64_t offset, void* buffer, std::size_t size) override;
  Fact<std::size_t> WriteAt(std::uint64_t offset, void const* bytes, std::size_t size) override;
  Fact<std::uint64_t> SetSize(std::uint64_t size) override;
  Fact<bool> Flush() override;

 private:
  static constexpr std::uint64_t kWhole = ~std::uint64_t{0};

  // Said at once, while who asked is still known, and once more, with the bytes read, when the file
  // is closed.
  Absence Failure(int error) {
    outcome_ = OutcomeOf(error);
    return AnnounceError(error, path_);
  }

  FileDescriptor file_;
  std::string path_;
  ItemStatus status_;
  std::uint64_t start_ = 0, size_ = kWhole;
  Outcome outcome_ = Outcome::kAnswered;
  std::uint64_t bytes_ = 0;
};

Fact<std::uint64_t> LiveFile::Size() {
  if (size_ != kWhole) return size_;
  struct stat status;
  if (::fstat(file_.number(), &status) != 0) return Failure(errno);
  return static_cast<std::uint64_t>(status.st_size);
}

Fact<std::size_t> LiveFile::ReadAt(std::uint64_t offset, void* buffer, std::size_t size) {
  if (size_ != kWhole) {
    if (offset >= size_) return std::size_t{0};
    size = static_cast<std::size_t>(std::min<std::uint64_t>(size, size_ - offset));
  }
  std::size_t done = 0;
  while (done < size) {
    ssize_t const got = ::pread(file_.number(), static_cast<char*>(buffer) + done, size - done,
                                static_cast<off_t>(start_ + offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0 && done == 0) return Failure(errno);
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  bytes_ += done;
  return done;
}

Fact<std::size_t> LiveFile::WriteAt(std::uint64_t offset, void const* bytes, std::size_t size) {
  if (size_ != kWhole) return Failure(EBADF);
  std::size_t done = 0;
  while (done < size) {
    ssize_t const put = ::pwrite(file_.number(), static_cast<char const*>(bytes) + done,
                                 size - done, static_cast<off_t>(offset + done));
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) return Failure(errno);
    done += static_cast<std::size_t>(put);
  }
  return done;
}

Fact<std::uint64_t> LiveFile::SetSize(std::uint64_t size) {
  if (size_ != kWhole) return Failure(EBADF);
  if (::ftruncate(file_.number(), static_cast<off_t>(size)) != 0) return Failure(errno);
  return size;
}

Fact<bool> LiveFile::Flush() {
  if (::fsync(file_.number()) != 0) return Failure(errno);
  return true;
}

// A resource fork that an attribute holds: at most 64 KiB, read when it is opened.
class AttributeFork final : public OpenFile {
 public:
  AttributeFork(std::string content, std::string path, ItemStatus const& status)
      : content_(std::move(content)), path_(std::move(path)), status_(status) {}

  ItemStatus const& Status() const override { return status_; }
  Fact<std::uint64_t> Size() override { return std::uint64_t{content_.size()}; }
  Fact<std::size_t> ReadAt(std::uint64_t offset, void* buffer, std::size_t size) override {
    if (offset >= content_.size()) return std::size_t{0};
    return content_.copy(static_cast<char*>(buffer), size, static_cast<std::size_t>(offset));
  }
  Fact<std::size_t> WriteAt(std::uint64_t, void const*, std::size_t) override { return Refusal(); }
  Fact<std::uint64_t> SetSize(std::uint64_t) override { return Refusal(); }
  Fact<bool> Flush() override { return true; }

 private:
  Absence Refusal() const { return {Outcome::kNotSupported, path_, "resource fork", EBADF}; }

  std::string content_, path_;
  ItemStatus status_;
};

}  // namespace

Fact<std::unique_ptr<OpenFile>> Files::OpenFork(std::string const& path, Fork fork,
                                                Access access) const {
  if (access != Access::kRead && is_read_only_) {
    return RefuseChange(path);
  }
  if (fork == Fork::kResource && access != Access::kRead) {
    return AnnounceError(EOPNOTSUPP, path, "resource fork");
  }
  if (fork == Fork::kResource) return OpenResourceFork(path);
  FileDescriptor const item = root_.OpenItem(path);
  int const flags = access == Access::kRead ? O_RDONLY : O_RDWR;
  // Some files of /proc wait for content that may never come.
  FileDescriptor file = ReopenFile(item, flags | O_NONBLOCK);
  ItemStatus status;
  if (!file.is_open() || !ReadStatus(file.number(), "", status)) {
    return AnnounceError(errno, path);
  }
  return std::unique_ptr<OpenFile>(std::make_unique<LiveFile>(std::move(file), path, status));
}

Fact<std::unique_ptr<OpenFile>> Files::OpenResourceFork(std::string const& path) const {
  std::string const own_path = IsLink(path) ? Resolve(path) : path;
  Place const place = root_.Locate(own_path);
  ItemStatus status;
  if (own_path.empty() || !place.is_reached() ||
      !ReadStatus(place.folder(), place.name(), status)) {
    return AnnounceError(errno, path);
  }
  if (status.kind != ItemKind::kFile) {
    return AnnounceError(status.kind == ItemKind::kFolder ? EISDIR : EINVAL, path);
  }
  std::string const plain_path = place.PlainPath();
  AppleAttributes const attributes =
      FindAppleAttributes(place.folder(), place.name(), plain_path.c_str());
  if (!attributes.resource_fork.empty()) {
    if (auto content = ReadAttribute(plain_path.c_str(), attributes.resource_fork)) {
      std::string source = path + " (" + attributes.resource_fork + ")";
      Announce(source, Outcome::kAnswered, content->size());
      return std::unique_ptr<OpenFile>(
          std::make_unique<AttributeFork>(*std::move(content), std::move(source), status));
    }
  }
  if (HasNamedForks(plain_path.c_str())) {
    std::string const name = std::string(place.name()) + kNamedFork;
    FileDescriptor file = OpenCompanion(place.folder(), name.c_str());
    if (file.is_open()) {
      return std::unique_ptr<OpenFile>(
          std::make_unique<LiveFile>(std::move(file), path + kNamedFork, status));
    }
  }
  FileDescriptor file = OpenCompanion(place.folder(), CompanionPath(place.name()).c_str());
  auto const companion = file.is_open() ? ReadAppleDouble(file.number()) : std::nullopt;
  if (companion) {
    return std::unique_ptr<OpenFile>(
        std::make_unique<LiveFile>(std::move(file), CompanionPath(own_path), status,
                                   companion->resource_offset, companion->resource_bytes));
  }
  Announce(path, Outcome::kAnswered);
  return std::unique_ptr<OpenFile>(std::make_unique<AttributeFork>(std::string(), path, status));
}

}  // namespace machine::live
