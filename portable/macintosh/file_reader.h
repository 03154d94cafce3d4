// Reads a file from some place onwards.
#pragma once

#include "portable/buffer.h"
#include "portable/macintosh/open_fork.h"

namespace MacintoshPlatform {

class GATOTU_API FileReadingPath : public OpenFork {
 public:
  FileReadingPath() = default;
  explicit FileReadingPath(FileLocation const& location) { Open(location); }
  void Open(FileLocation const& location) { OpenInternal(location, fsRdPerm); }
};

// The path stays open, and in its place, while this reads. Readers of one path do not disturb each
// other.
class GATOTU_API FileReader {
 public:
  // At so many bytes from the file's start; behind the end there is nothing to read.
  void Start(FileReadingPath const& path, long long offset);

  // Takes as much as the file gives and there is room for, and returns the room that is left: none
  // unless the file ended. What reading fails with is thrown.
  Data ReadUpTo(Data room);
  // The same, but where there is room and nothing at all to read `EndOfFileError`. The buffer
  // advances; of a range the rest is returned.
  FileReader& operator>>(Buffer& buffer);
  Data operator>>(Data room);

  static void ThrowError(long code);

 private:
  FileReadingPath const* path_ = nullptr;
  long long offset_ = 0;
};

}  // namespace MacintoshPlatform
