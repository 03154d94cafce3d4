// Where an item of the file system is, or would be: the URL of a file.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/CoreServices.h>

#include <string>

#include "portable/core_foundation/auto_cf.h"
#include "portable/creating_info.h"
#include "portable/file_name.h"

struct FSRef;

namespace MacintoshPlatform {

class MacFileInfo;

// Holds one reference to a URL; null is the empty location, and what needs a place throws
// `EmptyFileLocationError` for it. A location names links themselves, not what they point to.
class GATOTU_API FileLocation {
 public:
  FileLocation() = default;
  explicit FileLocation(CFURLRef url);
  explicit FileLocation(AutoCFURL url) : url_(std::move(url)) {}
  explicit FileLocation(FSRef const& ref);
  FileLocation(FileLocation const& parent, FileName const& name) { Set(parent.URL(), name); }
  FileLocation(FileLocation const& other);
  FileLocation& operator=(FileLocation const& other);
  FileLocation(FileLocation&&) = default;
  FileLocation& operator=(FileLocation&&) = default;

  // The child of a folder.
  void Set(CFURLRef parent, FileName const& name);

  bool IsEmpty() const { return url_.Get() == nullptr; }
  // Borrowed; null for the empty location.
  CFURLRef URL() const { return url_.Get(); }

  // The item must exist: else what an item query throws, `FileNotFoundError` among others.
  FSRef Ref() const;
  // That of the folder it lies in; that folder must exist, the item need not.
  FSRef ParentRef() const;
  // `InvalidParentURL` when there is none: at the root, and for a URL without a path.
  AutoCFURL ParentURL() const;
  FileName Name() const;

  std::string POSIXPath() const;
  // With a NUL; `FullPathFailed` when it does not fit.
  void POSIXPath(unsigned char* buffer, unsigned long size) const;

  bool IsRoot() const;
  // False for what does not exist.
  bool IsAlias() const;
  bool IsSymLink() const;
  bool IsLink() const { return IsAlias() || IsSymLink(); }
  bool Exists() const;

  // The item that a link leads to at last; itself when it is none. `FileNotFoundError` and its like
  // when the way ends before. A Finder alias names its target in a record that is not read here:
  // `FileError` for one. What is found is told where asked for.
  FileLocation ResolveAliasFile(bool* is_folder = nullptr, bool* was_aliased = nullptr) const;

  // Sets or clears the item's lock, and the flag of the snapshot with it.
  void Lock(MacFileInfo& info) const;
  void Unlock(MacFileInfo& info) const;

  // In the parent, which must exist. `DirectoryExists` or `FileExists` when something stands there,
  // else `DirectoryCreateFailed` or `FileCreateFailed` with the code.
  void CreateDirectory(FileCreatingInfo const& info) const;
  void CreateFile(FileCreatingInfo const& info) const;

 private:
  void SetLocked(MacFileInfo& info, bool is_locked) const;

  AutoCFURL url_;
};

// One item, however spelt. Both must exist, or the error of `Ref` passes.
GATOTU_API bool operator==(FileLocation const& a, FileLocation const& b);
inline bool operator!=(FileLocation const& a, FileLocation const& b) { return !(a == b); }
// By the bytes of the POSIX path, the empty location first; neither need exist.
GATOTU_API bool operator<(FileLocation const& a, FileLocation const& b);

// From a path of so many bytes. `CFStringCreateError` for what is no text in the encoding; in UTF-8
// any bytes are taken. `CFURLCreateWithFileSystemPathFailed` for what cannot be a path.
GATOTU_API FileLocation MakeFileLocation(char const* text, unsigned long length,
                                         CFStringEncoding encoding, CFURLPathStyle style);

}  // namespace MacintoshPlatform
