// Mounts that somebody else serves, over a network or by a process. When the server is gone, a call
// on anything there hangs in the kernel, where no signal ends it.
//
// Before such a mount is touched a worker looks at it, once for all questions of a second. While
// that look does not return the mount is silent, and better left alone. What dies within that
// second, and what is found through a link in the middle of a path, is waited for.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "machine/file_descriptor.h"

namespace machine::live {

class FolderPath;
class Root;

// How long a mount may take to answer.
inline constexpr std::chrono::seconds kMountPatience{2};

// Of the running machine. Any thread may ask. Announces nothing.
class SilentMounts {
 public:
  // Whether a mount on the way to the path is silent. Where nobody else serves any mount this costs
  // less than 20 ns. The table of mounts is read by way of `root`.
  bool AreOnTheWayTo(std::string_view path, Root const& root);
  // Whether a mount that may be silent lies right in a folder.
  bool MayLieIn(FolderPath const& folder, Root const& root);

 private:
  struct Watched {
    std::string point;
    std::uint64_t number = 0;
    std::int64_t good_until = 0;
  };

  bool HasAny(Root const& root, std::int64_t now);
  void ReadTable(Root const& root);
  std::vector<Watched> DoubtfulOnTheWayTo(std::string_view path, std::int64_t now);
  bool Answers(Watched const& mount);

  std::atomic<std::int64_t> good_until_ = 0;  // what was read of the table; in nanoseconds
  std::atomic<bool> has_any_ = false;
  std::mutex guard_;  // of all below
  FileDescriptor table_;
  std::vector<Watched> watched_;  // in the table's order, what lies on another behind it
};

}  // namespace machine::live
