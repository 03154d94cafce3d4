#include "portable_inspectors/system_version.h"

#include <CoreFoundation/CFPriv.h>

#include "evaluator/plugin/exceptions.h"
#include "portable/core_foundation/strings.h"
#include "portable_inspectors/version_text.h"

std::string OSXVersionInfo::msBuild;
std::string OSXVersionInfo::msArch;

namespace {

// Values that point to the text stay good as long as it is the same.
void Keep(std::string& kept, OSXVersionInfo const& info, CFStringRef key) {
  std::string text;
  try {
    text = info.GetStringValue(key);
  } catch (NoSuchObject const&) {
  }
  if (kept != text) kept = std::move(text);
}

}  // namespace

std::string OSXVersionInfo::GetStringValue(CFStringRef key) const {
  void const* const value = CFDictionaryGetValue(values_.Get(), key);
  if (value == nullptr || CFGetTypeID(value) != CFStringGetTypeID()) throw NoSuchObject();
  return MakeString(static_cast<CFStringRef>(value), kCFStringEncodingUTF8, '?');
}

OSXVersionInfo GetOSXVersionInfo() {
  AutoCFDictionary values;
  values.Seize(_CFCopySystemVersionDictionary());
  if (values.Get() == nullptr) throw NoSuchObject();
  OSXVersionInfo info(std::move(values));
  Keep(OSXVersionInfo::msBuild, info, _kCFSystemVersionBuildVersionKey);
  Keep(OSXVersionInfo::msArch, info, CFSTR("Architecture"));
  return info;
}

namespace MacintoshPlatform {

inspector_version sys_version_of() {
  return TextToVersion(
      ConstData(GetOSXVersionInfo().GetStringValue(_kCFSystemVersionProductVersionKey)));
}

}  // namespace MacintoshPlatform
