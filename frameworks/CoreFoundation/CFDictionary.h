// Values by unique keys, immutable, or mutable in one thread.
//
// Call-backs say what keys and values are: the constants below objects, which the dictionary
// retains (keys are equal by `CFEqual`), null plain pointers, which it only keeps. Others are not
// supported: creating answers null.
#pragma once

#include <CoreFoundation/CFBase.h>

using CFDictionaryRef = struct __CFDictionary const*;
using CFMutableDictionaryRef = struct __CFDictionary*;

struct CFDictionaryKeyCallBacks {
  CFIndex version;
  void const* (*retain)(CFAllocatorRef allocator, void const* value);
  void (*release)(CFAllocatorRef allocator, void const* value);
  CFStringRef (*copyDescription)(void const* value);
  Boolean (*equal)(void const* value1, void const* value2);
  CFHashCode (*hash)(void const* value);
};
struct CFDictionaryValueCallBacks {
  CFIndex version;
  void const* (*retain)(CFAllocatorRef allocator, void const* value);
  void (*release)(CFAllocatorRef allocator, void const* value);
  CFStringRef (*copyDescription)(void const* value);
  Boolean (*equal)(void const* value1, void const* value2);
};
CF_EXPORT CFDictionaryKeyCallBacks const kCFTypeDictionaryKeyCallBacks;
// Strings are immutable here, so their copy is themselves.
CF_EXPORT CFDictionaryKeyCallBacks const kCFCopyStringDictionaryKeyCallBacks;
CF_EXPORT CFDictionaryValueCallBacks const kCFTypeDictionaryValueCallBacks;

CF_EXPORT CFTypeID CFDictionaryGetTypeID(void);

// Of equal keys the first counts. Null when `numValues` is negative.
CF_EXPORT CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, void const** keys,
                                             void const** values, CFIndex numValues,
                                             CFDictionaryKeyCallBacks const* keyCallBacks,
                                             CFDictionaryValueCallBacks const* valueCallBacks);
CF_EXPORT CFDictionaryRef CFDictionaryCreateCopy(CFAllocatorRef allocator, CFDictionaryRef theDict);
// `capacity` is a hint (0: none) and no limit.
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutable(
    CFAllocatorRef allocator, CFIndex capacity, CFDictionaryKeyCallBacks const* keyCallBacks,
    CFDictionaryValueCallBacks const* valueCallBacks);
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator,
                                                               CFIndex capacity,
                                                               CFDictionaryRef theDict);

CF_EXPORT CFIndex CFDictionaryGetCount(CFDictionaryRef theDict);
CF_EXPORT Boolean CFDictionaryContainsKey(CFDictionaryRef theDict, void const* key);
CF_EXPORT Boolean CFDictionaryContainsValue(CFDictionaryRef theDict, void const* value);
// Borrowed; null when the key is absent.
CF_EXPORT void const* CFDictionaryGetValue(CFDictionaryRef theDict, void const* key);
// `value` may be null, and is left alone when the key is absent.
CF_EXPORT Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef theDict, void const* key,
                                                void const** value);
// Pairs in corresponding places, borrowed, in the order in which they were added until one is
// removed. Either array may be null.
CF_EXPORT void CFDictionaryGetKeysAndValues(CFDictionaryRef theDict, void const** keys,
                                            void const** values);

// These leave an immutable dictionary as it is. A key that is present keeps its place and object.
CF_EXPORT void CFDictionaryAddValue(CFMutableDictionaryRef theDict, void const* key,
                                    void const* value);  // Only when absent.
CF_EXPORT void CFDictionarySetValue(CFMutableDictionaryRef theDict, void const* key,
                                    void const* value);
CF_EXPORT void CFDictionaryReplaceValue(CFMutableDictionaryRef theDict, void const* key,
                                        void const* value);  // Only when present.
CF_EXPORT void CFDictionaryRemoveValue(CFMutableDictionaryRef theDict, void const* key);
CF_EXPORT void CFDictionaryRemoveAllValues(CFMutableDictionaryRef theDict);
