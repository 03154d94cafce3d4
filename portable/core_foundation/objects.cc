#include "portable/core_foundation/objects.h"

#include <CoreFoundation/CFPropertyList.h>

namespace {

template <typename Reference>
ResourceTransfer<Reference> Retained(Reference object) {
  if (object != nullptr) CFRetain(object);
  return ResourceTransfer<Reference>(object);
}

// The root of a property list if it is of that type. What is not wanted, a reason or a root of
// another type, is released.
template <typename Error, typename Reference>
ResourceTransfer<Reference> Root(CFDataRef data, CFOptionFlags mutability, CFTypeID type) {
  CFStringRef error = nullptr;
  ResourceTransfer<CFTypeRef> root(
      CFPropertyListCreateFromXMLData(kCFAllocatorDefault, data, mutability, &error));
  ResourceTransfer<CFStringRef> const reason(error);
  CFTypeRef const object = root.Take();
  if (object != nullptr && CFGetTypeID(object) == type) {
    return ResourceTransfer<Reference>(static_cast<Reference>(object));
  }
  ResourceTransfer<CFTypeRef> const unwanted(object);
  throw Error();
}

}  // namespace

AutoCFArray Duplicate(CFArrayRef array) { return Retained(array); }
AutoCFDictionary Duplicate(CFDictionaryRef dictionary) { return Retained(dictionary); }
AutoCFString Duplicate(CFStringRef string) { return Retained(string); }
AutoCFData Duplicate(CFDataRef data) { return Retained(data); }
AutoCFURL Duplicate(CFURLRef url) { return Retained(url); }

AutoCFArray ArrayCreateFromXMLData(CFDataRef data, CFOptionFlags mutability) {
  return Root<ArrayCreateFromXMLDataFailed, CFArrayRef>(data, mutability, CFArrayGetTypeID());
}

AutoCFDictionary DictionaryCreateFromXMLData(CFDataRef data, CFOptionFlags mutability) {
  return Root<DictionaryCreateFromXMLDataFailed, CFDictionaryRef>(data, mutability,
                                                                  CFDictionaryGetTypeID());
}

void const* GetDictionaryValue(CFDictionaryRef dictionary, CFStringRef key) {
  void const* value = nullptr;
  if (!CFDictionaryGetValueIfPresent(dictionary, key, &value)) {
    throw CFDictionaryGetValueIfPresentFailed();
  }
  return value;
}

template <>
CFStringRef CFCast<CFStringRef>(void const* object) {
  if (object != nullptr && CFGetTypeID(object) != CFStringGetTypeID()) {
    throw CFCastError<CFStringRef>();
  }
  return static_cast<CFStringRef>(object);
}

AutoCFData MakeCFData(ConstData bytes) {
  CFDataRef const data =
      CFDataCreate(kCFAllocatorDefault, bytes.begin, static_cast<CFIndex>(bytes.Length()));
  if (data == nullptr) throw CFDataCreateError();
  return ResourceTransfer<CFDataRef>(data);
}

std::vector<unsigned char> ExtractCFData(CFDataRef data) {
  if (data == nullptr) return {};
  UInt8 const* const bytes = CFDataGetBytePtr(data);
  return {bytes, bytes + CFDataGetLength(data)};
}
