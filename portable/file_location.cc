#include "portable/file_location.h"

#include "portable/wildcard.h"

FileLocation::FileLocation(FileLocation const& parent, FileName const& name)
    : location_(parent.location_, name) {}

FileLocation::FileLocation(FileLocation const& parent, char const* name)
    : FileLocation(parent, FileName(ConstData(name))) {}

FileLocation::FileLocation(FileLocation const& parent, ConstData name)
    : FileLocation(parent, FileName(name)) {}

FileLocation FileLocation::Parent() const {
  RequireNonEmpty();
  if (IsRoot()) throw RootHasNoParent(*this);
  return FileLocation(MacintoshPlatform::FileLocation(location_.ParentURL()));
}

FileName FileLocation::Name() const { return location_.Name(); }

void FileLocation::RequireNonEmpty() const {
  if (IsEmpty()) throw EmptyFileLocationError();
}

FileLocation MakeFileLocation(char const* path) { return MakeFileLocation(ConstData(path)); }

FileLocation MakeFileLocation(ConstData path) {
  return FileLocation(MacintoshPlatform::MakeFileLocation(reinterpret_cast<char const*>(path.begin),
                                                          path.Length(), kCFStringEncodingUTF8,
                                                          kCFURLPOSIXPathStyle));
}

FileLocation MakeFileLocation(UStringRef<UTF8> path) { return MakeFileLocation(path.Bytes()); }

FileLocation MakeRelativeFileLocation(FileLocation const& base, char const* path) {
  if (IsAbsolutePath(path)) return MakeFileLocation(path);
  base.RequireNonEmpty();
  return MakeFileLocation((base.POSIXPath() + "/" + path).c_str());
}

char const* MakeFileLocationWithWildcard(char const* path, FileLocation& out) {
  ConstData folder;
  char const* const pattern = MakeFileLocationWithWildcardUnix(path, folder);
  out = MakeFileLocation(folder.IsEmpty() ? ConstData("/") : folder);
  return pattern;
}
