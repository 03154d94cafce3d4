// The folder below which a Linux machine's files lie. Paths are the machine's own ("/proc/stat"),
// and so are they announced. Below "/" plain system calls serve; below any other root no link and
// no ".." leads out, and only regular files and folders are opened.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "machine/fact.h"
#include "machine/file_descriptor.h"

namespace machine::live {

class Root {
 public:
  explicit Root(std::string folder);

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

  // Not announced. On failure closed, with `errno` set.
  FileDescriptor OpenFolder(std::string const& path) const;
  // A regular file by a path relative to an open folder of this root, which it may not leave.
  FileDescriptor OpenFileIn(int folder, char const* relative_path) const;

 private:
  FileDescriptor OpenFile(std::string const& path) const;
  FileDescriptor OpenConfined(int folder, char const* path, unsigned long resolve) const;

  bool is_running_;
  FileDescriptor folder_;  // open unless running
};

// The reason that an `errno` value stands for.
Outcome OutcomeOf(int error);

// An absence that is announced here.
Absence AnnounceAbsence(Outcome reason, std::string source, std::string where = {});

}  // namespace machine::live
