// The portable face of reading a file.
#pragma once

#include "portable/file_location.h"
#include "portable/macintosh/file_reader.h"

// See `MacintoshPlatform::FileReadingPath`.
class GATOTU_API FileReadingPath {
 public:
  FileReadingPath() = default;
  explicit FileReadingPath(FileLocation const& location) : path_(location.Platform()) {}

  void Open(FileLocation const& location) { path_.Open(location.Platform()); }
  void OpenInternal(FileLocation const& location, SInt8 permission) {
    path_.OpenInternal(location.Platform(), permission);
  }
  void Close() { path_.Close(); }
  bool IsOpen() const { return path_.IsOpen(); }
  // Bytes; `FileNotOpenError`.
  long long Length() const { return path_.Length(); }
  MacintoshPlatform::FileReadingPath const& Platform() const { return path_; }

  static void ThrowError(long code) { MacintoshPlatform::FileReadingPath::ThrowError(code); }

 private:
  MacintoshPlatform::FileReadingPath path_;
};

// See `MacintoshPlatform::FileReader`: `>>` throws `EndOfFileError` only when nothing was read.
class GATOTU_API FileReader {
 public:
  void Start(FileReadingPath const& path, long long offset) {
    reader_.Start(path.Platform(), offset);
  }
  Data ReadUpTo(Data room) { return reader_.ReadUpTo(room); }
  FileReader& operator>>(Buffer& buffer) {
    reader_ >> buffer;
    return *this;
  }
  Data operator>>(Data room) { return reader_ >> room; }

  static void ThrowError(long code) { MacintoshPlatform::FileReader::ThrowError(code); }

 private:
  MacintoshPlatform::FileReader reader_;
};
