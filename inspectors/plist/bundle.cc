#include "inspectors/plist/bundle.h"

#include <string>

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "portable/core_foundation/bundles.h"
#include "portable/core_foundation/objects.h"
#include "portable/core_foundation/strings.h"
#include "portable_inspectors/filesystem_object.h"
#include "portable_inspectors/version_text.h"

namespace {

constexpr unsigned long kLongestName = 0x7FFFFFFF;
// Major, minor and bug fix of a packed version.
constexpr UInt32 kRelease = 0xFFFF0000;
constexpr UInt32 kWholeNumber = 0xFFFFFFFF;

AutoCFString TextOf(CFBundleRef bundle, CFStringRef key) {
  void const* const value = CFBundleGetValueForInfoDictionaryKey(bundle, key);
  return Duplicate(CFCast<CFStringRef>(value));
}

inspector_version Version(CFBundleRef bundle, UInt32 mask, CFStringRef fallback_key) {
  UInt32 const number = CFBundleGetVersionNumber(bundle);
  if (number != 0) return MacintoshPlatform::inspector_version(number & mask);
  AutoCFString const text = TextOf(bundle, fallback_key);
  if (text.Get() == nullptr) throw NoSuchObject();
  // Ends at the first character that Mac Roman lacks.
  std::string const bytes = MakeString(text.Get(), kCFStringEncodingMacRoman, 0);
  return MacintoshPlatform::TextToVersion(ConstData(bytes));
}

OSXDictionary Dictionary(CFBundleRef bundle, AutoCFDictionary (*get)(CFBundleRef)) {
  try {
    AutoCFDictionary const dictionary = get(bundle);
    return OSXDictionary(dictionary.Get());
  } catch (...) {
    throw NoSuchObject();
  }
}

}  // namespace

Bundle bundle_of(folder const& folder) {
  FileLocation const location = folder.Location();
  CFBundleRef const bundle = CFBundleCreate(kCFAllocatorDefault, location.URL());
  if (bundle == nullptr) throw NoSuchObject();
  return Bundle(bundle);
}

Bundle bundle_named(unsigned char const* name, unsigned long length) {
  if (length > kLongestName) throw NoSuchObject();
  AutoCFString const identifier = MakeCFString(ConstData(name, length), kCFStringEncodingMacRoman);
  CFBundleRef const bundle = CFBundleGetBundleWithIdentifier(identifier.Get());
  if (bundle == nullptr) throw NoSuchObject();
  CFRetain(bundle);
  return Bundle(bundle);
}

inspector_version version_of(Bundle const& bundle) {
  return Version(bundle.Reference(), kRelease, CFSTR("CFBundleShortVersionString"));
}

inspector_version bundle_version_of(Bundle const& bundle) {
  return Version(bundle.Reference(), kWholeNumber, kCFBundleVersionKey);
}

file_type type_of(Bundle const& bundle) {
  UInt32 type = 0;
  CFBundleGetPackageInfo(bundle.Reference(), &type, nullptr);
  return {type};
}

file_signature creator_of(Bundle const& bundle) {
  UInt32 creator = 0;
  CFBundleGetPackageInfo(bundle.Reference(), nullptr, &creator);
  return {creator};
}

OSXDictionary global_dictionary_of(Bundle const& bundle) {
  return Dictionary(bundle.Reference(), BundleGetInfoDictionary);
}

OSXDictionary local_dictionary_of(Bundle const& bundle) {
  return Dictionary(bundle.Reference(), BundleGetLocalInfoDictionary);
}

namespace {

Type<Bundle, kNoFingerprinting> bundle_type;
Property<folder, Bundle> bundle_of_folder("bundle", "bundles", bundle_of, nullptr);
NamedGlobalProperty<Bundle> bundle_by_name("bundle", "bundles", bundle_named, nullptr);
Property<Bundle, inspector_version> version("version", "versions", version_of, nullptr);
Property<Bundle, inspector_version> bundle_version("bundle version", "bundle versions",
                                                   bundle_version_of, nullptr);
Property<Bundle, file_type> type("type", "types", type_of, nullptr);
Property<Bundle, file_signature> creator("creator", "creators", creator_of, nullptr);
Property<Bundle, OSXDictionary> global_dictionary("global dictionary", "global dictionaries",
                                                  global_dictionary_of, nullptr);
Property<Bundle, OSXDictionary> local_dictionary("local dictionary", "local dictionaries",
                                                 local_dictionary_of, nullptr);

}  // namespace
