#include <CoreFoundation/CFDictionary.h>

#include <algorithm>

#include "frameworks/CoreFoundation/container_equality.h"
#include "frameworks/CoreFoundation/dictionary_object.h"

namespace {

void const* RetainObject(CFAllocatorRef, void const* value) { return CFRetain(value); }
void ReleaseObject(CFAllocatorRef, void const* value) { CFRelease(value); }

// What we know is told by address; the functions are there for callers alone.
bool AreKnown(CFDictionaryKeyCallBacks const* keys, CFDictionaryValueCallBacks const* values) {
  bool const knows_keys = keys == nullptr || keys == &kCFTypeDictionaryKeyCallBacks ||
                          keys == &kCFCopyStringDictionaryKeyCallBacks;
  return knows_keys && (values == nullptr || values == &kCFTypeDictionaryValueCallBacks);
}

UInt8 VariantFor(CFDictionaryKeyCallBacks const* keys, CFDictionaryValueCallBacks const* values) {
  return static_cast<UInt8>((keys == nullptr ? 0 : __CFDictionary::kObjectKeys) |
                            (values == nullptr ? 0 : __CFDictionary::kObjectValues));
}

CFDictionaryRef MakeFrom(void const* const* keys, void const* const* values, std::size_t count,
                         UInt8 variant) {
  __CFDictionary* const dictionary = __CFDictionary::MakeUnfilled(count, variant);
  for (std::size_t i = 0; i < count; ++i) {
    RetainValue(keys[i], dictionary->holds_object_keys());
    RetainValue(values[i], dictionary->holds_object_values());
    dictionary->TakeKey(i, keys[i]);
    dictionary->TakeValue(i, values[i]);
  }
  dictionary->Settle(__CFDictionary::Keep::kFirst);
  return dictionary;
}

enum class When { kAbsent, kPresent, kAlways };

void Put(CFMutableDictionaryRef dictionary, void const* key, void const* value, When when) {
  if (!dictionary->is_mutable()) return;
  auto& target = static_cast<MutableDictionary&>(*dictionary);
  CFIndex const place = target.Find(key);
  if (place == kCFNotFound) {
    if (when != When::kPresent) target.Add(key, value);
  } else if (when != When::kAbsent) {
    target.Replace(static_cast<std::size_t>(place), value);
  }
}

}  // namespace

CFDictionaryKeyCallBacks const kCFTypeDictionaryKeyCallBacks = {
    0, RetainObject, ReleaseObject, nullptr, CFEqual, CFHash};
CFDictionaryKeyCallBacks const kCFCopyStringDictionaryKeyCallBacks = {
    0, RetainObject, ReleaseObject, nullptr, CFEqual, CFHash};
CFDictionaryValueCallBacks const kCFTypeDictionaryValueCallBacks = {0, RetainObject, ReleaseObject,
                                                                    nullptr, CFEqual};

CFTypeID CFDictionaryGetTypeID() { return kCFTypeDictionary; }

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, void const** keys, void const** values,
                                   CFIndex numValues, CFDictionaryKeyCallBacks const* keyCallBacks,
                                   CFDictionaryValueCallBacks const* valueCallBacks) {
  if (numValues < 0 || !AreKnown(keyCallBacks, valueCallBacks)) return nullptr;
  return MakeFrom(keys, values, static_cast<std::size_t>(numValues),
                  VariantFor(keyCallBacks, valueCallBacks));
}

CFDictionaryRef CFDictionaryCreateCopy(CFAllocatorRef, CFDictionaryRef theDict) {
  if (theDict->is_mutable()) {
    auto const variant = static_cast<UInt8>(theDict->variant() & ~__CFDictionary::kMutable);
    return MakeFrom(theDict->keys(), theDict->values(), theDict->count(), variant);
  }
  theDict->Retain();
  return theDict;
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex,
                                                 CFDictionaryKeyCallBacks const* keyCallBacks,
                                                 CFDictionaryValueCallBacks const* valueCallBacks) {
  if (!AreKnown(keyCallBacks, valueCallBacks)) return nullptr;
  return CFObject::Make<MutableDictionary>(VariantFor(keyCallBacks, valueCallBacks));
}

CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef, CFIndex,
                                                     CFDictionaryRef theDict) {
  auto* const dictionary = CFObject::Make<MutableDictionary>(theDict->variant());
  for (std::size_t i = 0; i < theDict->count(); ++i) {
    dictionary->Add(theDict->keys()[i], theDict->values()[i]);
  }
  return dictionary;
}

CFIndex CFDictionaryGetCount(CFDictionaryRef theDict) {
  return static_cast<CFIndex>(theDict->count());
}

Boolean CFDictionaryContainsKey(CFDictionaryRef theDict, void const* key) {
  return theDict->Find(key) != kCFNotFound;
}

Boolean CFDictionaryContainsValue(CFDictionaryRef theDict, void const* value) {
  void const* const* const values = theDict->values();
  return std::any_of(values, values + theDict->count(), [&](void const* one) {
    return AreEqualValues(one, value, theDict->holds_object_values());
  });
}

void const* CFDictionaryGetValue(CFDictionaryRef theDict, void const* key) {
  CFIndex const place = theDict->Find(key);
  return place == kCFNotFound ? nullptr : theDict->values()[place];
}

Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef theDict, void const* key,
                                      void const** value) {
  CFIndex const place = theDict->Find(key);
  if (place == kCFNotFound) return false;
  if (value != nullptr) *value = theDict->values()[place];
  return true;
}

void CFDictionaryGetKeysAndValues(CFDictionaryRef theDict, void const** keys, void const** values) {
  if (keys != nullptr) std::copy_n(theDict->keys(), theDict->count(), keys);
  if (values != nullptr) std::copy_n(theDict->values(), theDict->count(), values);
}

void CFDictionaryAddValue(CFMutableDictionaryRef theDict, void const* key, void const* value) {
  Put(theDict, key, value, When::kAbsent);
}

void CFDictionarySetValue(CFMutableDictionaryRef theDict, void const* key, void const* value) {
  Put(theDict, key, value, When::kAlways);
}

void CFDictionaryReplaceValue(CFMutableDictionaryRef theDict, void const* key, void const* value) {
  Put(theDict, key, value, When::kPresent);
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef theDict, void const* key) {
  CFIndex const place = theDict->Find(key);
  if (place == kCFNotFound || !theDict->is_mutable()) return;
  static_cast<MutableDictionary*>(theDict)->Remove(static_cast<std::size_t>(place));
}

void CFDictionaryRemoveAllValues(CFMutableDictionaryRef theDict) {
  if (theDict->is_mutable()) static_cast<MutableDictionary*>(theDict)->Clear();
}
