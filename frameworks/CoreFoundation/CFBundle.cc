#include <CoreFoundation/CFBundle.h>

#include <string>

#include "frameworks/CoreFoundation/bundle_layout.h"
#include "frameworks/CoreFoundation/bundle_object.h"
#include "frameworks/CoreFoundation/bundle_package.h"
#include "frameworks/CoreFoundation/bundle_version.h"
#include "frameworks/CoreFoundation/url_object.h"
#include "frameworks/CoreFoundation/url_text.h"
#include "machine/machine.h"

using namespace bundle_layout;

namespace {

// Empty for what is no file's.
std::string PathOf(CFURLRef url) {
  if (url == nullptr || !url->is_file()) return {};
  std::string path = url->AbsolutePath();
  path.resize(url_text::WithoutTrailingSlashes(path).size());
  return path;
}

void HandOut(BundlePackage const& package, UInt32* type, UInt32* creator) {
  if (type != nullptr) *type = package.type;
  if (creator != nullptr) *creator = package.creator;
}

}  // namespace

CFTypeID CFBundleGetTypeID() { return kCFTypeBundle; }

CFBundleRef CFBundleCreate(CFAllocatorRef, CFURLRef bundleURL) {
  std::string const path = PathOf(bundleURL);
  if (path.empty()) return nullptr;
  auto folder = machine::CurrentMachine().Files().CanonicalFolder(path);
  return folder ? __CFBundle::Open(*std::move(folder)) : nullptr;
}

CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef) { return nullptr; }

CFDictionaryRef CFBundleGetInfoDictionary(CFBundleRef bundle) { return bundle->info(); }

CFDictionaryRef CFBundleGetLocalInfoDictionary(CFBundleRef bundle) { return bundle->local_info(); }

CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key) {
  CFDictionaryRef const dictionary = bundle->local_info();
  return dictionary == nullptr ? nullptr : CFDictionaryGetValue(dictionary, key);
}

CFStringRef CFBundleGetIdentifier(CFBundleRef bundle) {
  return bundle->InfoText(kCFBundleIdentifierKey);
}

UInt32 CFBundleGetVersionNumber(CFBundleRef bundle) {
  CFStringRef const text = bundle->InfoText(kCFBundleVersionKey);
  char version[16];
  bool const is_short =
      text != nullptr && CFStringGetCString(text, version, sizeof version, kCFStringEncodingASCII);
  return is_short ? PackedVersion(version) : 0;
}

void CFBundleGetPackageInfo(CFBundleRef bundle, UInt32* packageType, UInt32* packageCreator) {
  BundlePackage package;
  if (!bundle->is_of_machine_in_use() ||
      !ReadPackageFile(PackageInfoPath(bundle->folder(), bundle->description().layout), package)) {
    ReadPackageKeys(bundle->info(), package);
  }
  HandOut(package, packageType, packageCreator);
}

Boolean CFBundleGetPackageInfoInDirectory(CFURLRef url, UInt32* packageType,
                                          UInt32* packageCreator) {
  std::string const folder = PathOf(url);
  auto const description = FindDescription(folder);
  if (!description) return false;
  BundlePackage package;
  if (!ReadPackageFile(PackageInfoPath(folder, description->layout), package) &&
      description->is_info) {
    CFDictionaryRef const info = ReadDictionary(InfoPath(folder, description->layout));
    ReadPackageKeys(info, package);
    if (info != nullptr) CFRelease(info);
  }
  HandOut(package, packageType, packageCreator);
  return true;
}

CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle) {
  std::string const& folder = bundle->folder();
  return __CFURL::OfFile(folder.ends_with('/') ? folder : folder + '/');
}
