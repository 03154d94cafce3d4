#include "portable/macintosh/file_writer.h"

#include "portable/file_errors.h"

namespace MacintoshPlatform {

void FileWritingPath::SetLength(SInt64 length) {
  ThrowWriteError(FSSetForkSize(RefNum(), fsFromStart, length), ConstData(PathText()));
}

void FileWritingPath::Flush() { ThrowWriteError(FSFlushFork(RefNum()), ConstData(PathText())); }

void FileWriter::Start(FileWritingPath& path, long long offset) {
  path_ = &path;
  offset_ = offset;
}

FileWriter& FileWriter::operator<<(ConstData data) {
  if (path_ == nullptr) throw FileNotOpenError();
  ByteCount count = 0;
  OSErr const code =
      FSWriteFork(path_->RefNum(), fsFromStart, offset_, data.Length(), data.begin, &count);
  offset_ += static_cast<long long>(count);
  ThrowWriteError(code, ConstData(path_->PathText()));
  return *this;
}

void FileWriter::ThrowError(long code) { ThrowWriteError(code); }

}  // namespace MacintoshPlatform
