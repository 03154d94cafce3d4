#include "frameworks/CoreFoundation/bundle_strings.h"

#include <CoreFoundation/CFBundle.h>

#include "frameworks/CoreFoundation/bundle_languages.h"
#include "frameworks/CoreFoundation/bundle_layout.h"
#include "machine/machine.h"

namespace {

// Nothing for what is no name.
std::string DevelopmentRegion(CFDictionaryRef info) {
  char region[64] = "";
  void const* const value = CFDictionaryGetValue(info, kCFBundleDevelopmentRegionKey);
  bool const is_name = value != nullptr && CFGetTypeID(value) == CFStringGetTypeID() &&
                       CFStringGetCString(static_cast<CFStringRef>(value), region, sizeof region,
                                          kCFStringEncodingASCII);
  return is_name ? region : "";
}

std::vector<std::string> FileNames(CFDictionaryRef info) {
  std::vector<std::string> names{"InfoPlist.strings"};
  auto const languages = bundle_languages::Preferred(machine::CurrentMachine().Environment());
  for (auto const& name : bundle_languages::Candidates(languages, DevelopmentRegion(info))) {
    names.push_back(name + ".lproj/InfoPlist.strings");
  }
  return names;
}

CFDictionaryRef LayOver(CFDictionaryRef info, std::string const& path) {
  CFDictionaryRef const texts = bundle_layout::ReadDictionary(path);
  if (texts == nullptr) return nullptr;
  auto const count = static_cast<std::size_t>(CFDictionaryGetCount(texts));
  std::vector<void const*> keys(count), values(count);
  CFDictionaryGetKeysAndValues(texts, keys.data(), values.data());
  CFMutableDictionaryRef const local = CFDictionaryCreateMutableCopy(nullptr, 0, info);
  for (std::size_t i = 0; i < count; ++i) CFDictionarySetValue(local, keys[i], values[i]);
  CFRelease(texts);
  return local;
}

}  // namespace

void BundleStrings::Drop() {
  if (local_info_ != nullptr) CFRelease(local_info_);
  local_info_ = nullptr;
}

void BundleStrings::Update(std::string const& resources, CFDictionaryRef info) {
  if (file_ && file_->is_settled() && file_->IsStillIn(resources, names_)) return;
  if (names_.empty()) names_ = FileNames(info);
  Drop();
  file_.emplace(resources, names_);
  if (file_->is_found()) local_info_ = LayOver(info, resources + '/' + names_[file_->index()]);
}
