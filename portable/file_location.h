// The portable face of a place in the file system. A location names a link itself.
#pragma once

#include <string>

#include "portable/const_data.h"
#include "portable/file_name.h"
#include "portable/macintosh/file_location.h"
#include "portable/unicode_reference.h"

class GATOTU_API FileLocation {
 public:
  // The empty location: what needs a place throws `EmptyFileLocationError` for it.
  FileLocation() = default;
  explicit FileLocation(MacintoshPlatform::FileLocation location)
      : location_(std::move(location)) {}
  // The child of a folder; as text the name is UTF-8.
  FileLocation(FileLocation const& parent, FileName const& name);
  FileLocation(FileLocation const& parent, char const* name);
  FileLocation(FileLocation const& parent, ConstData name);

  FileLocation Child(FileName const& name) const { return {*this, name}; }
  FileLocation Sibling(FileName const& name) const { return {Parent(), name}; }
  // `RootHasNoParent` at the root.
  FileLocation Parent() const;
  FileName Name() const;

  void RequireNonEmpty() const;
  bool IsEmpty() const { return location_.IsEmpty(); }
  bool IsRoot() const { return location_.IsRoot(); }
  bool IsLink() const { return location_.IsLink(); }
  bool Exists() const { return location_.Exists(); }
  std::string POSIXPath() const { return location_.POSIXPath(); }
  // Borrowed; null for the empty location.
  CFURLRef URL() const { return location_.URL(); }
  MacintoshPlatform::FileLocation const& Platform() const { return location_; }

 private:
  MacintoshPlatform::FileLocation location_;
};

inline bool operator==(FileLocation const& a, FileLocation const& b) {
  return a.Platform() == b.Platform();
}
inline bool operator!=(FileLocation const& a, FileLocation const& b) {
  return a.Platform() != b.Platform();
}
inline bool operator<(FileLocation const& a, FileLocation const& b) {
  return a.Platform() < b.Platform();
}

// From a POSIX path; a relative one lies below the current folder, or below the root of a machine
// other than the running one. Bytes that are no UTF-8 are kept.
// `CFURLCreateWithFileSystemPathFailed` for the empty path and for one with a NUL inside.
GATOTU_API FileLocation MakeFileLocation(char const* path);
GATOTU_API FileLocation MakeFileLocation(ConstData path);
GATOTU_API FileLocation MakeFileLocation(UStringRef<UTF8> path);
// Below a folder, unless the path is absolute.
GATOTU_API FileLocation MakeRelativeFileLocation(FileLocation const& base, char const* path);

inline bool IsAbsolutePath(char const* path) { return *path == '/'; }

// The location of what stands before a last component with wildcards, and that component as the
// pattern for a loop over it; without wildcards the location of the whole path, and null. The path
// holds a `/`; the pattern is part of it.
GATOTU_API char const* MakeFileLocationWithWildcard(char const* path, FileLocation& out);
