// The property lists of preferences, kept while their files stay the same.
#pragma once

#include <CoreFoundation/CFDictionary.h>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "frameworks/CoreFoundation/file_state.h"

// Threads may share it. Keeps the files used last, as many as the bounds allow, and only of the
// machine in use.
class PreferenceFiles {
 public:
  static PreferenceFiles& Shared();

  // The value in the dictionary at a path, for the caller to release. Null where the dictionary has
  // none and where there is no such dictionary; that is announced. Asks for the file's status, and
  // reads it only when it is not kept or has changed.
  CFTypeRef CopyValue(std::string const& path, CFStringRef key);

 private:
  struct Releaser {
    void operator()(void const* object) const { CFRelease(object); }
  };
  struct Kept {
    FileState state;
    std::unique_ptr<void const, Releaser> dictionary;  // null when the file holds none
    std::uint64_t bytes;                               // that were read
    std::uint64_t last_use;
  };

  Kept const* Find(std::string const& path);
  Kept const* Read(std::string const& path, FileState const& state);
  void DropOldest();

  std::mutex guard_;
  std::uint64_t machine_ = 0;
  std::uint64_t uses_ = 0;
  std::uint64_t kept_bytes_ = 0;
  std::map<std::string, Kept> kept_;
};
