// Writes into a file from some place onwards.
#pragma once

#include "portable/const_data.h"
#include "portable/macintosh/open_fork.h"

namespace MacintoshPlatform {

class GATOTU_API FileWritingPath : public OpenFork {
 public:
  FileWritingPath() = default;
  explicit FileWritingPath(FileLocation const& location) { Open(location); }
  // The file must exist; its content stays until it is written over.
  void Open(FileLocation const& location) { OpenInternal(location, fsRdWrPerm); }

  // Cuts the file off there, or fills it up with zeros.
  void SetLength(SInt64 length);
  // Returns when the content is on the disk.
  void Flush();
};

// The path stays open, and in its place, while this writes.
class GATOTU_API FileWriter {
 public:
  // At so many bytes from the file's start; behind the end the gap is zeros.
  void Start(FileWritingPath& path, long long offset);
  // All of it, or what writing fails with is thrown; part may have been written then.
  FileWriter& operator<<(ConstData data);

  static void ThrowError(long code);

 private:
  FileWritingPath* path_ = nullptr;
  long long offset_ = 0;
};

}  // namespace MacintoshPlatform
