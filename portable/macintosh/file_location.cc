#include "portable/macintosh/file_location.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>

#include "frameworks/CoreFoundation/file_system_text.h"
#include "portable/core_foundation/objects.h"
#include "portable/core_foundation/strings.h"
#include "portable/core_foundation/urls.h"
#include "portable/macintosh/file_info.h"

namespace MacintoshPlatform {
namespace {

constexpr std::size_t kLongestPath = std::size_t{1} << 20;

OSStatus FindItem(std::string const& path, FSPathMakeRefOptions options, FSRef& ref,
                  Boolean* is_folder = nullptr) {
  return FSPathMakeRefWithOptions(reinterpret_cast<UInt8 const*>(path.c_str()), options, &ref,
                                  is_folder);
}

// What the catalogue says of an item; false when it does not exist.
bool Query(FileLocation const& location, FSCatalogInfoBitmap fields, FSCatalogInfo& catalog) {
  FSRef ref;
  return FindItem(location.POSIXPath(), kFSPathMakeRefDoNotFollowLeafSymlink, ref) == noErr &&
         FSGetCatalogInfo(&ref, fields, &catalog, nullptr, nullptr, nullptr) == noErr;
}

void RequireNonEmpty(FileLocation const& location) {
  if (location.IsEmpty()) throw EmptyFileLocationError();
}

}  // namespace

FileLocation::FileLocation(CFURLRef url) : url_(Duplicate(url)) {}

FileLocation::FileLocation(FSRef const& ref) : url_(MakeURL(ref)) {}

FileLocation::FileLocation(FileLocation const& other) : url_(Duplicate(other.URL())) {}

FileLocation& FileLocation::operator=(FileLocation const& other) {
  url_ = Duplicate(other.URL());
  return *this;
}

void FileLocation::Set(CFURLRef parent, FileName const& name) {
  if (parent == nullptr) throw EmptyFileLocationError();
  url_ = CreateCopyAppendingPathComponent(parent, name.MakeCFString().Get(), false);
}

FSRef FileLocation::Ref() const {
  std::string const path = POSIXPath();
  FSRef ref;
  ThrowItemQueryError(FindItem(path, kFSPathMakeRefDoNotFollowLeafSymlink, ref), ConstData(path));
  return ref;
}

// A link that stands for the folder leads on, as it does in a path.
FSRef FileLocation::ParentRef() const {
  std::string const path = FileLocation(ParentURL()).POSIXPath();
  FSRef ref;
  ThrowItemQueryError(FindItem(path, kFSPathMakeRefDefaultOptions, ref), ConstData(path));
  return ref;
}

AutoCFURL FileLocation::ParentURL() const {
  RequireNonEmpty(*this);
  AutoCFString const name = CopyLastPathComponent(URL());
  AutoCFURL parent = ResourceTransfer<CFURLRef>(
      CFURLCreateCopyDeletingLastPathComponent(kCFAllocatorDefault, URL()));
  if (parent.Get() == nullptr || CFEqual(name.Get(), CFSTR("/"))) throw InvalidParentURL(*this);
  return parent;
}

FileName FileLocation::Name() const {
  RequireNonEmpty(*this);
  return FileName(CopyLastPathComponent(URL()).Get());
}

std::string FileLocation::POSIXPath() const {
  RequireNonEmpty(*this);
  for (std::size_t size = 512; size <= kLongestPath; size *= 4) {
    std::string path(size, '\0');
    if (CFURLGetFileSystemRepresentation(URL(), true, reinterpret_cast<UInt8*>(path.data()),
                                         static_cast<CFIndex>(size))) {
      path.resize(std::strlen(path.c_str()));
      return path;
    }
  }
  throw FullPathFailed();
}

void FileLocation::POSIXPath(unsigned char* buffer, unsigned long size) const {
  RequireNonEmpty(*this);
  if (!CFURLGetFileSystemRepresentation(URL(), true, buffer, static_cast<CFIndex>(size))) {
    throw FullPathFailed(*this);
  }
}

// Only a path with dots in it may lead back to the root by another spelling.
bool FileLocation::IsRoot() const {
  if (IsEmpty()) return false;
  std::string const path = POSIXPath();
  if (path == "/") return true;
  FSRef ref, root;
  return path.find("/.") != std::string::npos &&
         FindItem(path, kFSPathMakeRefDoNotFollowLeafSymlink, ref) == noErr &&
         FindItem("/", kFSPathMakeRefDefaultOptions, root) == noErr &&
         FSCompareFSRefs(&ref, &root) == noErr;
}

bool FileLocation::IsAlias() const {
  FSCatalogInfo catalog;
  if (IsEmpty() || !Query(*this, kFSCatInfoFinderInfo, catalog)) return false;
  FileInfo finder;
  std::memcpy(&finder, catalog.finderInfo, sizeof finder);
  return (finder.finderFlags & kIsAlias) != 0;
}

bool FileLocation::IsSymLink() const {
  FSCatalogInfo catalog;
  return !IsEmpty() && Query(*this, kFSCatInfoPermissions, catalog) &&
         S_ISLNK(catalog.permissions.mode);
}

bool FileLocation::Exists() const {
  FSRef ref;
  return !IsEmpty() && FindItem(POSIXPath(), kFSPathMakeRefDoNotFollowLeafSymlink, ref) == noErr;
}

FileLocation FileLocation::ResolveAliasFile(bool* is_folder, bool* was_aliased) const {
  std::string const path = POSIXPath();
  FSRef ref;
  Boolean leads_to_folder = false;
  ThrowItemQueryError(FindItem(path, kFSPathMakeRefDefaultOptions, ref, &leads_to_folder),
                      ConstData(path));
  FileLocation target = IsSymLink() ? FileLocation(ref) : *this;
  if (target.IsAlias()) throw FileError(*this, fnfErr);
  if (is_folder != nullptr) *is_folder = leads_to_folder;
  if (was_aliased != nullptr) *was_aliased = target.URL() != URL();
  return target;
}

void FileLocation::Lock(MacFileInfo& info) const { SetLocked(info, true); }
void FileLocation::Unlock(MacFileInfo& info) const { SetLocked(info, false); }

void FileLocation::SetLocked(MacFileInfo& info, bool is_locked) const {
  FSRef const ref = Ref();
  FSCatalogInfo catalog = info.catalog_;
  catalog.nodeFlags = static_cast<UInt16>(is_locked ? catalog.nodeFlags | kFSNodeLockedMask
                                                    : catalog.nodeFlags & ~kFSNodeLockedMask);
  OSErr const code = FSSetCatalogInfo(&ref, kFSCatInfoNodeFlags, &catalog);
  ThrowItemQueryError(code, ConstData(POSIXPath()));
  info.catalog_ = catalog;
}

namespace {

FSCatalogInfoBitmap FillIn(FileCreatingInfo const& info, FSCatalogInfo& catalog) {
  FSCatalogInfoBitmap fields = kFSCatInfoNone;
  if (info.mode) {
    fields |= kFSCatInfoPermissions;
    catalog.permissions.mode = *info.mode;
  }
  if (info.finder_info) {
    fields |= kFSCatInfoFinderInfo;
    std::copy(info.finder_info->begin(), info.finder_info->end(), catalog.finderInfo);
  }
  return fields;
}

}  // namespace

void FileLocation::CreateDirectory(FileCreatingInfo const& info) const {
  FSRef const parent = ParentRef();
  FileName const name = Name();
  FSCatalogInfo catalog = {};
  FSCatalogInfoBitmap const fields = FillIn(info, catalog);
  OSErr const code = FSCreateDirectoryUnicode(&parent, name.Count(), name.Units(), fields, &catalog,
                                              nullptr, nullptr, nullptr);
  if (code == noErr) return;
  if (code == dupFNErr) throw DirectoryExists(*this, code);
  if (code == fnfErr) throw FileNotFoundError(*this, code);
  throw DirectoryCreateFailed(*this, code);
}

void FileLocation::CreateFile(FileCreatingInfo const& info) const {
  FSRef const parent = ParentRef();
  FileName const name = Name();
  FSCatalogInfo catalog = {};
  FSCatalogInfoBitmap const fields = FillIn(info, catalog);
  OSErr const code =
      FSCreateFileUnicode(&parent, name.Count(), name.Units(), fields, &catalog, nullptr, nullptr);
  if (code == noErr) return;
  if (code == dupFNErr) throw FileExists(*this, code);
  if (code == fnfErr) throw FileNotFoundError(*this, code);
  throw FileCreateFailed(*this, code);
}

bool operator==(FileLocation const& a, FileLocation const& b) {
  FSRef const one = a.Ref(), other = b.Ref();
  return FSCompareFSRefs(&one, &other) == noErr;
}

bool operator<(FileLocation const& a, FileLocation const& b) {
  if (a.IsEmpty() || b.IsEmpty()) return a.IsEmpty() && !b.IsEmpty();
  return a.POSIXPath() < b.POSIXPath();
}

FileLocation MakeFileLocation(char const* text, unsigned long length, CFStringEncoding encoding,
                              CFURLPathStyle style) {
  AutoCFString const path =
      encoding == kCFStringEncodingUTF8
          ? ResourceTransfer<CFStringRef>(file_system_text::CreateString({text, length}))
          : MakeCFString(ConstData(text, length), encoding);
  AutoCFURL const url = MakeURLFromFileSystemPath(path.Get(), style, false);
  return FileLocation(AutoCFURL(ResourceTransfer<CFURLRef>(CFURLCopyAbsoluteURL(url.Get()))));
}

}  // namespace MacintoshPlatform
