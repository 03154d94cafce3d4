// The folder below which a Linux machine's files lie. Paths are the machine's own ("/proc/stat"),
// and so are they announced. Below "/" plain system calls serve; below any other root no link and
// no ".." leads out, and only regular files and folders are opened.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "machine/fact.h"
#include "machine/file_descriptor.h"

namespace machine::live {

class FolderPath;
class SilentMounts;

// An item as the system's calls can name it: a name without "/" in an open folder, or, on the
// running machine, its path with no folder at all.
class Place {
 public:
  Place() = default;
  Place(FileDescriptor folder, std::string name)
      : folder_(std::move(folder)), name_(std::move(name)) {}

  // False, with `errno` set, when the folder could not be reached.
  bool is_reached() const { return !name_.empty(); }
  int folder() const;
  char const* name() const { return name_.c_str(); }
  // For calls that take nothing but a path.
  std::string PlainPath() const;

 private:
  FileDescriptor folder_;
  std::string name_;
};

class Root {
 public:
  explicit Root(std::string folder);
  // A folder that is open already and never the running machine's root.
  explicit Root(FileDescriptor folder) : is_running_(false), folder_(std::move(folder)) {}

  // Whether this is the machine that runs this process, so that system calls speak of it too.
  bool is_running() const { return is_running_; }

  // The whole file; one of more than 16 MiB is malformed.
  Fact<std::string> ReadFile(std::string const& path) const;
  // The file's text without white space at either end; absent when nothing is left.
  Fact<std::string> ReadText(std::string const& path) const;
  // The names in a folder except "." and "..", in the folder's order.
  Fact<std::vector<std::string>> List(std::string const& path) const;
  // Where a symbolic link points, as written. Absent when the path is no link.
  Fact<std::string> ReadLink(std::string const& path) const;
  // What tells one state of a file from another: device, inode, size and time of change.
  Fact<std::string> IdentityOf(std::string const& path) const;

  // The rest is not announced. On failure closed, with `errno` set: ETIMEDOUT for what lies on a
  // mount that does not answer, which is then not touched.

  // What the whole path leads to, links followed, for looking only (O_PATH).
  FileDescriptor OpenItem(std::string const& path) const;
  // What is at the path, a last link not followed, for looking only.
  FileDescriptor OpenItemItself(std::string const& path) const;
  Place Locate(std::string const& path) const;
  // The path below this root of something open; empty when it lies elsewhere.
  std::string PathOf(FileDescriptor const& item) const;
  // Whether a path is what `PathOf` would say of the folder there.
  bool IsCanonicalFolder(std::string const& path) const;

  FileDescriptor OpenFolder(std::string const& path) const;
  // Whether mounts that may not answer lie right in a folder.
  bool MayHoldSilentMounts(FolderPath const& folder) const;
  // Whether a path leads to a mount that does not answer, with `errno` set then.
  bool IsSilent(std::string_view path) const;
  // A regular file by a path relative to an open folder of this root, which it may not leave.
  FileDescriptor OpenFileIn(int folder, char const* relative_path) const;

 private:
  FileDescriptor OpenFile(std::string const& path) const;
  FileDescriptor OpenLong(std::string const& path) const;

  bool is_running_;
  FileDescriptor folder_;                        // open unless running
  std::shared_ptr<SilentMounts> silent_mounts_;  // of the running machine
};

// For looking only, by a path from an open folder, as the kernel's RESOLVE_ flags say (openat2).
FileDescriptor OpenConfined(int folder, char const* path, unsigned long resolve,
                            unsigned long flags = 0);

// Opens for real what was found and looked at already, so that nothing is opened that must not be:
// a pipe would hang and a device may do anything. Only regular files; else `errno` is EISDIR or
// EINVAL.
FileDescriptor ReopenFile(FileDescriptor const& item, int flags);
FileDescriptor ReopenFolder(FileDescriptor const& item);
// A path of the running system to something open.
std::string ProcPath(int item);

// The reason that an `errno` value stands for.
Outcome OutcomeOf(int error);

// An absence that is announced here.
Absence AnnounceAbsence(Outcome reason, std::string source, std::string where = {});
// The same for a call that failed with an `errno` value.
Absence AnnounceError(int error, std::string source, std::string where = {});

}  // namespace machine::live
