// A file that is written aside and then takes another's place in one step.
#pragma once

#include "portable/macintosh/file_location.h"

namespace MacintoshPlatform {

// Deletes the file unless it took its place.
class ReplacementFile {
 public:
  // A new hidden file in the folder of `place`, for its owner alone when something stands at
  // `place`, whose mode it will take over.
  explicit ReplacementFile(FileLocation const& place);
  ReplacementFile(ReplacementFile const&) = delete;
  ReplacementFile& operator=(ReplacementFile const&) = delete;
  ~ReplacementFile();

  // Onto the disk.
  void Write(ConstData data);
  void TakePlace();

 private:
  void Create(FSRef const& folder, bool is_private);

  FileLocation place_;
  FSRef file_;
  bool is_placed_ = false;
};

}  // namespace MacintoshPlatform
