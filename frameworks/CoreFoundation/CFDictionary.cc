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

// `pair_at(place)` is called once for each place.
template <typename PairAt>
CFDictionaryRef MakeFrom(std::size_t count, PairAt&& pair_at, UInt8 variant) {
  __CFDictionary* const dictionary = __CFDictionary::MakeUnfilled(count, variant);
  for (std::size_t i = 0; i < count; ++i) {
    __CFDictionary::Pair const pair = pair_at(i);
    RetainValue(pair.key, dictionary->holds_object_keys());
    RetainValue(pair.value, dictionary->holds_object_values());
    dictionary->TakeKey(pair.key);
    dictionary->TakeValue(i, pair.value);
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
  return MakeFrom(
      static_cast<std::size_t>(numValues),
      [&](std::size_t i) {
        return __CFDictionary::Pair{keys[i], values[i]};
      },
      VariantFor(keyCallBacks, valueCallBacks));
}

CFDictionaryRef CFDictionaryCreateCopy(CFAllocatorRef, CFDictionaryRef theDict) {
  if (theDict->is_mutable()) {
    auto const variant = static_cast<UInt8>(theDict->variant() & ~__CFDictionary::kMutable);
    auto const pairs = theDict->pairs();
    return MakeFrom(
        pairs.size(), [&](std::size_t i) { return pairs[i]; }, variant);
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
  for (auto const& [key, value] : theDict->pairs()) dictionary->Add(key, value);
  return dictionary;
}

CFIndex CFDictionaryGetCount(CFDictionaryRef theDict) {
  return static_cast<CFIndex>(theDict->pairs().size());
}

Boolean CFDictionaryContainsKey(CFDictionaryRef theDict, void const* key) {
  return theDict->Find(key) != kCFNotFound;
}

Boolean CFDictionaryContainsValue(CFDictionaryRef theDict, void const* value) {
  return std::ranges::any_of(theDict->pairs(), [&](__CFDictionary::Pair const& pair) {
    return AreEqualValues(pair.value, value, theDict->holds_object_values());
  });
}

void const* CFDictionaryGetValue(CFDictionaryRef theDict, void const* key) {
  CFIndex const place = theDict->Find(key);
  return place == kCFNotFound ? nullptr : theDict->pairs()[static_cast<std::size_t>(place)].value;
}

Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef theDict, void const* key,
                                      void const** value) {
  CFIndex const place = theDict->Find(key);
  if (place == kCFNotFound) return false;
  if (value != nullptr) *value = theDict->pairs()[static_cast<std::size_t>(place)].value;
  return true;
}

void CFDictionaryGetKeysAndValues(CFDictionaryRef theDict, void const** keys, void const** values) {
  for (auto const& pair : theDict->pairs()) {
    if (keys != nullptr) *keys++ = pair.key;
    if (values != nullptr) *values++ = pair.value;
  }
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
