// Short ways to make and read Core Foundation objects in tests.
#pragma once

#include <CoreFoundation/CFPropertyList.h>
#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

struct Releaser {
  void operator()(void const* object) const { CFRelease(object); }
};
template <typename Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Releaser>;
using OwnedObject = Owned<CFTypeRef>;
using OwnedString = Owned<CFStringRef>;
using OwnedURL = Owned<CFURLRef>;

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

// What a value is in UTF-8.
inline std::string TextOf(CFTypeRef value) {
  if (value == nullptr) return "none";
  if (CFGetTypeID(value) != CFStringGetTypeID()) return "no text";
  return BytesOf(static_cast<CFStringRef>(value), kCFStringEncodingUTF8);
}

inline Owned<CFDataRef> MakeBytes(std::string_view bytes) {
  return Owned<CFDataRef>(CFDataCreate(nullptr, reinterpret_cast<UInt8 const*>(bytes.data()),
                                       static_cast<CFIndex>(bytes.size())));
}

inline std::string BytesOfData(CFTypeRef data) {
  auto const bytes = static_cast<CFDataRef>(data);
  return {reinterpret_cast<char const*>(CFDataGetBytePtr(bytes)),
          static_cast<std::size_t>(CFDataGetLength(bytes))};
}

// The property list that a text of any form stands for; null for what is none.
inline OwnedObject Parsed(std::string_view text, CFOptionFlags options = 0) {
  return OwnedObject(
      CFPropertyListCreateWithData(nullptr, MakeBytes(text).get(), options, nullptr, nullptr));
}
