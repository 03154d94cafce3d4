// The portable face of writing a file.
#pragma once

#include "portable/file_location.h"
#include "portable/macintosh/file_writer.h"

// See `MacintoshPlatform::FileWritingPath`.
class GATOTU_API FileWritingPath {
 public:
  FileWritingPath() = default;
  explicit FileWritingPath(FileLocation const& location) : path_(location.Platform()) {}

  void Open(FileLocation const& location) { path_.Open(location.Platform()); }
  void OpenInternal(FileLocation const& location, SInt8 permission) {
    path_.OpenInternal(location.Platform(), permission);
  }
  void Close() { path_.Close(); }
  bool IsOpen() const { return path_.IsOpen(); }
  long long Length() const { return path_.Length(); }
  void SetLength(long long length) { path_.SetLength(length); }
  void Flush() { path_.Flush(); }
  FileLocation Location() const { return FileLocation(path_.Location()); }
  MacintoshPlatform::FileWritingPath& Platform() { return path_; }

 private:
  MacintoshPlatform::FileWritingPath path_;
};

// See `MacintoshPlatform::FileWriter`.
class GATOTU_API FileWriter {
 public:
  void Start(FileWritingPath& path, long long offset) { writer_.Start(path.Platform(), offset); }
  FileWriter& operator<<(ConstData data) {
    writer_ << data;
    return *this;
  }

  static void ThrowError(long code) { MacintoshPlatform::FileWriter::ThrowError(code); }

 private:
  MacintoshPlatform::FileWriter writer_;
};
