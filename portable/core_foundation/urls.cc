#include "portable/core_foundation/urls.h"

namespace {

// What a platform call handed over, if it did.
template <typename Error, typename Reference>
ResourceTransfer<Reference> Checked(Reference created) {
  if (created == nullptr) throw Error();
  return ResourceTransfer<Reference>(created);
}

}  // namespace

AutoCFURL MakeURL(CFStringRef text) {
  return Checked<CFURLCreateWithStringFailed>(
      CFURLCreateWithString(kCFAllocatorDefault, text, nullptr));
}

AutoCFURL MakeURL(FSRef const& ref) {
  return Checked<CFURLCreateFromFSRefFailed>(CFURLCreateFromFSRef(kCFAllocatorDefault, &ref));
}

AutoCFURL MakeURL(FSSpec const& fs_spec) { return MakeURL(MakeFSRef(fs_spec)); }

AutoCFURL MakeURLFromFileSystemPath(CFStringRef path, CFURLPathStyle style, bool isDirectory) {
  return Checked<CFURLCreateWithFileSystemPathFailed>(
      CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path, style, isDirectory));
}

AutoCFURL MakeURLFromFileSystemPathRelativeToBase(CFStringRef path, CFURLPathStyle style,
                                                  bool isDirectory, CFURLRef base) {
  return Checked<CFURLCreateWithFileSystemPathRelativeToBaseFailed>(
      CFURLCreateWithFileSystemPathRelativeToBase(kCFAllocatorDefault, path, style, isDirectory,
                                                  base));
}

AutoCFURL CreateCopyAppendingPathComponent(CFURLRef url, CFStringRef component, bool isDirectory) {
  return Checked<CFURLCreateCopyAppendingPathComponentFailed>(
      CFURLCreateCopyAppendingPathComponent(kCFAllocatorDefault, url, component, isDirectory));
}

AutoCFURL CreateCopyDeletingLastPathComponent(CFURLRef url) {
  return Checked<CFURLCreateCopyDeletingLastPathComponentFailed>(
      CFURLCreateCopyDeletingLastPathComponent(kCFAllocatorDefault, url));
}

FSRef MakeFSRef(CFURLRef url) {
  FSRef ref;
  if (!CFURLGetFSRef(url, &ref)) throw CFURLGetFSRefFailed();
  return ref;
}

FSRef MakeFSRef(FSSpec const& fs_spec) {
  FSRef ref;
  if (OSErr const code = FSpMakeFSRef(&fs_spec, &ref); code != noErr) ThrowRealOSError(code);
  return ref;
}

AutoCFString CopyLastPathComponent(CFURLRef url) {
  return Checked<CFURLCopyLastPathComponentFailed>(CFURLCopyLastPathComponent(url));
}

AutoCFString FileSystemPath(CFURLRef url, CFURLPathStyle style) {
  return Checked<CFURLCopyFileSystemPathFailed>(CFURLCopyFileSystemPath(url, style));
}

AutoCFData GetData(CFURLRef url) {
  CFDataRef data = nullptr;
  SInt32 code = 0;
  if (!CFURLCreateDataAndPropertiesFromResource(kCFAllocatorDefault, url, &data, nullptr, nullptr,
                                                &code)) {
    throw CFURLErrorCode(code);
  }
  return ResourceTransfer<CFDataRef>(data);
}
