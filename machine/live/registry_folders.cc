#include "machine/live/registry_folders.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstring>
#include <functional>

namespace machine::live {

std::string_view LastName(std::string_view path) { return path.substr(path.rfind('/') + 1); }

bool IsFolderItself(Root const& root, std::string const& path) {
  FileDescriptor const item = root.OpenItemItself(path);
  struct stat status;
  return item.is_open() && ::fstat(item.number(), &status) == 0 && S_ISDIR(status.st_mode) &&
         root.PathOf(item) == path;
}

std::uint64_t IdentityOfPath(std::string_view path) { return std::hash<std::string_view>()(path); }

Fact<std::string> SubsystemOf(Root const& root, std::string const& path) {
  Fact<std::string> const link = root.ReadLink(path + "/subsystem");
  if (!link) return link.absence();
  return std::string(LastName(*link));
}

bool EntryReader::Refill() {
  at_ = 0;
  size_ =
      folder_.is_open() ? ::syscall(SYS_getdents64, folder_.number(), buffer_, sizeof buffer_) : 0;
  return size_ > 0;
}

bool EntryReader::IsWanted(dirent64 const& entry) const {
  if (std::strcmp(entry.d_name, ".") == 0 || std::strcmp(entry.d_name, "..") == 0) return false;
  if (entry.d_type != DT_UNKNOWN) return entry.d_type == kind_;
  struct stat status;
  return ::fstatat(folder_.number(), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         IFTODT(status.st_mode) == kind_;
}

char const* EntryReader::Next() {
  while (at_ < size_ || Refill()) {
    auto const* entry = reinterpret_cast<dirent64 const*>(buffer_ + at_);
    at_ += entry->d_reclen;
    if (IsWanted(*entry)) return entry->d_name;
  }
  return nullptr;
}

}  // namespace machine::live
