#include "portable/macintosh/file_reader.h"

#include "portable/file_errors.h"

namespace MacintoshPlatform {

void FileReader::Start(FileReadingPath const& path, long long offset) {
  path_ = &path;
  offset_ = offset;
}

Data FileReader::ReadUpTo(Data room) {
  if (path_ == nullptr) throw FileNotOpenError();
  while (!room.IsEmpty()) {
    ByteCount count = 0;
    OSErr const code =
        FSReadFork(path_->RefNum(), fsFromStart, offset_, room.Length(), room.begin, &count);
    if (code != eofErr) ThrowReadError(code, ConstData(path_->PathText()));
    offset_ += static_cast<long long>(count);
    room.begin += count;
    if (code == eofErr || count == 0) break;
  }
  return room;
}

Data FileReader::operator>>(Data room) {
  Data const rest = ReadUpTo(room);
  if (rest.begin == room.begin && !room.IsEmpty()) throw EndOfFileError(path_->Location(), eofErr);
  return rest;
}

FileReader& FileReader::operator>>(Buffer& buffer) {
  buffer.begin = (*this >> Data(buffer)).begin;
  return *this;
}

void FileReader::ThrowError(long code) { ThrowReadError(code); }

}  // namespace MacintoshPlatform
