// Short ways to make and read Core Foundation strings in tests.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

struct Releaser {
  void operator()(void const* object) const { CFRelease(object); }
};
using OwnedString = std::unique_ptr<std::remove_pointer_t<CFStringRef>, Releaser>;

inline OwnedString Make(std::string_view bytes, CFStringEncoding encoding,
                        bool is_external = false) {
  return OwnedString(
      CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<UInt8 const*>(bytes.data()),
                              static_cast<CFIndex>(bytes.size()), encoding, is_external));
}

// The bytes by the two calls that callers make: the size, then the text.
inline std::string BytesOf(CFStringRef string, CFStringEncoding encoding, UInt8 loss = '?',
                           bool is_external = false) {
  CFRange const all = CFRangeMake(0, CFStringGetLength(string));
  CFIndex size = 0, used = 0;
  CFStringGetBytes(string, all, encoding, loss, is_external, nullptr, 0, &size);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  CFStringGetBytes(string, all, encoding, loss, is_external, reinterpret_cast<UInt8*>(bytes.data()),
                   size, &used);
  bytes.resize(static_cast<std::size_t>(used));
  return used == size ? bytes : "sizes differ";
}
