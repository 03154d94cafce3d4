#include "portable/macintosh/open_fork.h"

#include "portable/file_errors.h"

namespace MacintoshPlatform {

void OpenFork::OpenInternal(FileLocation const& location, SInt8 permission) {
  Close();
  location_ = location;
  FSRef const ref = location.Ref();
  // The data fork is the one without a name.
  OSErr const code = FSOpenFork(&ref, 0, nullptr, permission, &ref_num_);
  if (code == notAFileErr) throw NotAFileError(location, code);
  ThrowOpenForReadingError(code, ConstData(PathText()));
  is_open_ = true;
}

void OpenFork::Close() {
  if (!is_open_) return;
  is_open_ = false;
  FSCloseFork(ref_num_);
}

SInt64 OpenFork::Length() const {
  SInt64 length = 0;
  ThrowReadError(FSGetForkSize(RefNum(), &length), ConstData(PathText()));
  return length;
}

FSIORefNum OpenFork::RefNum() const {
  if (!is_open_) throw FileNotOpenError(location_, 0);
  return ref_num_;
}

void OpenFork::ThrowError(long code) { ThrowOpenForReadingError(code); }

}  // namespace MacintoshPlatform
