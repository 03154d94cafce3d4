#include <CoreFoundation/CFBundle.h>

#include <optional>
#include <string>

#include "frameworks/CoreFoundation/bundle_layout.h"
#include "frameworks/CoreFoundation/bundle_object.h"
#include "frameworks/CoreFoundation/bundle_package.h"
#include "frameworks/CoreFoundation/bundle_table.h"
#include "frameworks/CoreFoundation/bundle_version.h"
#include "frameworks/CoreFoundation/url_object.h"
#include "machine/machine.h"

namespace {

// Without a `/` at its end, so that the root is empty. Nothing for what is no file's.
std::optional<std::string> PathOf(CFURLRef url) {
  if (url == nullptr || !url->is_file()) return std::nullopt;
  std::string path = url->AbsolutePath();
  while (path.ends_with('/')) path.pop_back();
  return path;
}

BundleTable& Table() { return BundleTable::OfProcess(); }

CFBundleRef OpenAnew(std::string folder, CFBundleRef stale) {
  CFBundleRef const opened = __CFBundle::Open(std::move(folder));
  if (opened != nullptr) return Table().Keep(opened, stale);
  if (stale != nullptr) Table().Forget(stale);
  return nullptr;
}

// The bundle itself as long as its folder says what it did, else what is there now, if anything.
// Takes over the reference found. One that is held need not notice a change that does not show.
CFBundleRef OpenAgain(BundleTable::Found const& found) {
  CFBundleRef const bundle = found.bundle;
  if (bundle == nullptr) return nullptr;
  bool const tells_change = found.was_held || bundle->description().is_settled();
  if (tells_change && bundle->IsStillDescribed()) return bundle;
  CFBundleRef const opened = OpenAnew(bundle->folder(), bundle);
  CFRelease(bundle);
  return opened;
}

void HandOut(BundlePackage const& package, UInt32* type, UInt32* creator) {
  if (type != nullptr) *type = package.type;
  if (creator != nullptr) *creator = package.creator;
}

}  // namespace

CFTypeID CFBundleGetTypeID() { return kCFTypeBundle; }

CFBundleRef CFBundleCreate(CFAllocatorRef, CFURLRef bundleURL) {
  auto const path = PathOf(bundleURL);
  if (!path) return nullptr;
  if (CFBundleRef const known = OpenAgain(Table().FindFolder(*path))) return known;
  auto folder = machine::CurrentMachine().Files().CanonicalFolder(path->empty() ? "/" : *path);
  if (!folder) return nullptr;
  while (folder->ends_with('/')) folder.value().pop_back();
  if (*folder != *path) {
    if (CFBundleRef const known = OpenAgain(Table().FindFolder(*folder))) return known;
  }
  return OpenAnew(*std::move(folder), nullptr);
}

// The table goes on holding what is handed out, so the reference may be given back. What is stale
// leaves the table or its identifier at each turn.
CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef bundleID) {
  if (bundleID == nullptr) return nullptr;
  for (;;) {
    BundleTable::Found const found = Table().FindIdentifier(bundleID);
    if (found.bundle == nullptr) return nullptr;
    CFBundleRef const bundle = OpenAgain(found);
    if (bundle == nullptr) continue;
    bool const is_wanted =
        bundle->identifier() != nullptr && CFEqual(bundle->identifier(), bundleID);
    CFRelease(bundle);
    if (is_wanted) return bundle;
  }
}

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
  // A NUL within is no end.
  return is_short ? PackedVersion({version, static_cast<std::size_t>(CFStringGetLength(text))}) : 0;
}

void CFBundleGetPackageInfo(CFBundleRef bundle, UInt32* packageType, UInt32* packageCreator) {
  BundlePackage package;
  std::string const path =
      bundle_layout::PackagePath(bundle->folder(), bundle->description().index());
  if (!bundle->is_of_machine_in_use() || !ReadPackageFile(path, package)) {
    ReadPackageKeys(bundle->info(), package);
  }
  HandOut(package, packageType, packageCreator);
}

Boolean CFBundleGetPackageInfoInDirectory(CFURLRef url, UInt32* packageType,
                                          UInt32* packageCreator) {
  auto const folder = PathOf(url);
  if (!folder) return false;
  FirstFile const description(*folder, bundle_layout::Descriptions());
  if (!description.is_found()) return false;
  BundlePackage package;
  if (!ReadPackageFile(bundle_layout::PackagePath(*folder, description.index()), package)) {
    CFDictionaryRef const info = bundle_layout::ReadInfo(*folder, description.index());
    ReadPackageKeys(info, package);
    if (info != nullptr) CFRelease(info);
  }
  HandOut(package, packageType, packageCreator);
  return true;
}

CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle) {
  return __CFURL::OfFile(bundle->folder() + '/');
}
