#include "frameworks/CoreFoundation/bundle_package.h"

#include <string_view>

#include "machine/machine.h"

namespace {

constexpr std::size_t kCodeBytes = 4;

UInt32 CodeOf(std::string_view bytes) {
  UInt32 code = 0;
  for (std::size_t i = 0; i < kCodeBytes; ++i) code = code << 8 | static_cast<UInt8>(bytes[i]);
  return code;
}

// Codes are bytes of Mac Roman.
void ReadKey(CFDictionaryRef info, CFStringRef key, UInt32& code) {
  void const* const value = CFDictionaryGetValue(info, key);
  if (value == nullptr || CFGetTypeID(value) != CFStringGetTypeID()) return;
  char text[kCodeBytes + 1];
  auto const string = static_cast<CFStringRef>(value);
  if (CFStringGetLength(string) == kCodeBytes &&
      CFStringGetCString(string, text, sizeof text, kCFStringEncodingMacRoman)) {
    code = CodeOf({text, kCodeBytes});
  }
}

}  // namespace

// What follows the codes, a line's end in many files, does not count.
bool ReadPackageFile(std::string const& path, BundlePackage& package) {
  constexpr std::size_t kMostBytes = 4096;
  auto const content = machine::CurrentMachine().Files().ReadFile(path, kMostBytes);
  if (!content || content->size() < 2 * kCodeBytes) return false;
  package = {CodeOf(*content), CodeOf(content->substr(kCodeBytes))};
  return true;
}

void ReadPackageKeys(CFDictionaryRef info, BundlePackage& package) {
  if (info == nullptr) return;
  ReadKey(info, CFSTR("CFBundlePackageType"), package.type);
  ReadKey(info, CFSTR("CFBundleSignature"), package.creator);
}
