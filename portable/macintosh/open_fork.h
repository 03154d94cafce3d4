// A file's data fork while it is open.
#pragma once

#include "portable/macintosh/file_location.h"

namespace MacintoshPlatform {

// Closed at the latest when it is destroyed. One owner; readers and writers point to it.
class GATOTU_API OpenFork {
 public:
  OpenFork() = default;
  OpenFork(OpenFork const&) = delete;
  OpenFork& operator=(OpenFork const&) = delete;
  ~OpenFork() { Close(); }

  // With the platform's permission (`fsRdPerm`, ...); what was open before is closed. A link is
  // followed. `NotAFileError` for a folder, a device and a pipe, else what the code of opening
  // means.
  void OpenInternal(FileLocation const& location, SInt8 permission);
  void Close();

  bool IsOpen() const { return is_open_; }
  FileLocation const& Location() const { return location_; }
  // Bytes. This and the next throw `FileNotOpenError` when nothing is open.
  SInt64 Length() const;
  FSIORefNum RefNum() const;
  // For an error's message; empty when nothing was ever open.
  std::string PathText() const { return location_.IsEmpty() ? "" : location_.POSIXPath(); }

  // What the code of opening, for reading or for writing, means.
  static void ThrowError(long code);

 private:
  FileLocation location_;
  FSIORefNum ref_num_ = 0;
  bool is_open_ = false;
};

}  // namespace MacintoshPlatform
