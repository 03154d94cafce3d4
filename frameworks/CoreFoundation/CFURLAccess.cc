// What asks the machine about the item that a URL names.
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFURL.h>
#include <CoreServices/Files.h>

#include <cstring>

#include "frameworks/CoreFoundation/url_object.h"
#include "frameworks/CoreFoundation/url_text.h"
#include "machine/machine.h"

namespace {

// More than any property list; larger files are read in pieces, not through a URL.
constexpr std::size_t kMostBytes = std::size_t{2} << 30;

SInt32 ErrorOf(machine::Outcome outcome) {
  switch (outcome) {
    case machine::Outcome::kAbsent:
      return kCFURLResourceNotFoundError;
    case machine::Outcome::kPermissionRefused:
      return kCFURLResourceAccessViolationError;
    case machine::Outcome::kTimedOut:
      return kCFURLTimeoutError;
    default:
      return kCFURLUnknownError;
  }
}

SInt32 Read(CFURLRef url, CFDataRef* data) {
  if (url == nullptr) return kCFURLImproperArgumentsError;
  if (!url->is_file()) return kCFURLUnknownSchemeError;
  auto const content = machine::CurrentMachine().Files().ReadFile(url->AbsolutePath(), kMostBytes);
  if (!content) return ErrorOf(content.outcome());
  if (data == nullptr) return 0;
  *data = CFDataCreate(nullptr, reinterpret_cast<UInt8 const*>(content->data()),
                       static_cast<CFIndex>(content->size()));
  return 0;
}

}  // namespace

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef, FSRef const* fsRef) {
  constexpr std::size_t kLongest = std::size_t{1} << 20;
  FSCatalogInfo info;
  if (fsRef == nullptr) return nullptr;
  if (FSGetCatalogInfo(fsRef, kFSCatInfoNodeFlags, &info, nullptr, nullptr, nullptr) != noErr) {
    return nullptr;
  }
  std::string path(1024, '\0');
  OSStatus status = noErr;
  while ((status = FSRefMakePath(fsRef, reinterpret_cast<UInt8*>(path.data()),
                                 static_cast<UInt32>(path.size()))) == bdNamErr &&
         path.size() < kLongest) {
    path.resize(2 * path.size());
  }
  if (status != noErr) return nullptr;
  path.resize(std::strlen(path.c_str()));
  bool const is_folder = (info.nodeFlags & kFSNodeIsDirectoryMask) != 0;
  if (is_folder && !path.ends_with('/')) path.push_back('/');
  return __CFURL::OfFile(std::move(path));
}

Boolean CFURLGetFSRef(CFURLRef url, FSRef* fsRef) {
  if (url == nullptr || !url->is_file() || fsRef == nullptr) return false;
  std::string path = url->AbsolutePath();
  path.resize(url_text::WithoutTrailingSlashes(path).size());
  return FSPathMakeRefWithOptions(reinterpret_cast<UInt8 const*>(path.c_str()),
                                  kFSPathMakeRefDoNotFollowLeafSymlink, fsRef, nullptr) == noErr;
}

Boolean CFURLCreateDataAndPropertiesFromResource(CFAllocatorRef, CFURLRef url,
                                                 CFDataRef* resourceData,
                                                 CFDictionaryRef* properties, CFArrayRef,
                                                 SInt32* errorCode) {
  if (resourceData != nullptr) *resourceData = nullptr;
  if (properties != nullptr) *properties = nullptr;
  SInt32 const error = Read(url, resourceData);
  if (errorCode != nullptr) *errorCode = error;
  return error == 0;
}
