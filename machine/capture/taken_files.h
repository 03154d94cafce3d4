// Files that a capture takes along, whether or not anybody asks for them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "machine/capture/file_patterns.h"
#include "machine/capture/recording.h"

namespace machine::capture {

// Marks what a pattern finds: files with their contents, which are copied later, and everything
// else as it is. A recording machine's files are asked, so that all on the way is remembered.
class TakenFiles final : public PatternVisitor {
 public:
  TakenFiles(FileSource const& recording, RecordedItems& items)
      : files_(recording), items_(items) {}

  void Matched(std::string const& path) override;
  void Refused(std::string const& path, Absence const& why) override;
  bool HasEnough() const override { return items_.is_full(); }

  std::size_t count() const { return count_; }
  // What could not be looked at, by its path.
  std::vector<Absence> const& refused() const { return refused_; }

 private:
  void TakeResourceFork(std::string const& place);

  FileSource const& files_;
  RecordedItems& items_;
  std::size_t count_ = 0;
  std::vector<Absence> refused_;
};

}  // namespace machine::capture
