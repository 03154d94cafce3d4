// The items of a folder, one after the other.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "portable/macintosh/file_item.h"

namespace MacintoshPlatform {

//   for (loop.Start(folder); !loop.IsDone(); ++loop) Use(*loop);
//
// Holds references to all of the folder's children from the start, some 300 bytes each; what comes
// to the folder later is not seen, what leaves it is skipped. Links are items, not followed.
class GATOTU_API FileLoop {
 public:
  FileLoop() = default;

  // Stands at the first item. The names are matched as `FileName::MatchesWildCard` does, where the
  // pattern is neither null nor empty. A folder that does not exist has no items; `FileLoopFailed`
  // with the code for one that cannot be listed, or is none.
  void Start(FileLocation const& directory, char const* pattern = nullptr);

  bool IsDone() const { return is_done_; }
  // To the next item. What cannot be looked at is skipped, whatever the reason.
  FileLoop& operator++();
  // While the loop is not done.
  FileItem const& operator*() const { return current_; }
  FileItem const* operator->() const { return &current_; }
  FileLocation const& Directory() const { return directory_; }

 private:
  void ReadChildren();
  bool TakeItem(FSRef const& child);

  FileLocation directory_;
  bool is_done_ = true;
  std::optional<std::string> pattern_;
  std::vector<FSRef> children_;
  std::size_t next_ = 0;
  FileItem current_;
};

}  // namespace MacintoshPlatform
