#include "portable/core_foundation/strings.h"

#include <cstring>

#include "portable/core_foundation/objects.h"

namespace {

AutoCFString Checked(CFStringRef string) {
  if (string == nullptr) throw CFStringCreateError();
  return ResourceTransfer<CFStringRef>(string);
}

}  // namespace

AutoCFString MakeCFString(char const* text, CFStringEncoding encoding) {
  return Checked(CFStringCreateWithCString(kCFAllocatorDefault, text, encoding));
}

AutoCFString MakeCFString(unsigned short const* units, unsigned long count) {
  return Checked(
      CFStringCreateWithCharacters(kCFAllocatorDefault, units, static_cast<CFIndex>(count)));
}

AutoCFString MakeCFString(ConstData bytes, CFStringEncoding encoding) {
  return Checked(CFStringCreateWithBytes(kCFAllocatorDefault, bytes.begin,
                                         static_cast<CFIndex>(bytes.Length()), encoding, false));
}

AutoCFString MakeCFString(std::string const& bytes, CFStringEncoding encoding) {
  return MakeCFString(ConstData(bytes), encoding);
}

AutoCFString MakeCFString(UStringRef<UTF8> const& text) {
  return MakeCFString(text.Bytes(), kCFStringEncodingUTF8);
}

AutoCFString MakeCFString(CFURLRef const& url) {
  CFStringRef const string = CFURLGetString(url);
  if (string == nullptr) throw CFStringCreateError();
  return Duplicate(string);
}

AutoCFString EmptyCFString() {
  static CFStringRef const kEmpty = MakeCFString(nullptr, 0UL).Release();
  return Duplicate(kEmpty);
}

std::string MakeString(CFStringRef string, CFStringEncoding encoding, unsigned char lossByte) {
  CFRange const all = CFRangeMake(0, CFStringGetLength(string));
  CFIndex size = 0;
  CFStringGetBytes(string, all, encoding, lossByte, false, nullptr, 0, &size);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  CFStringGetBytes(string, all, encoding, lossByte, false, reinterpret_cast<UInt8*>(bytes.data()),
                   size, &size);
  return bytes;
}
