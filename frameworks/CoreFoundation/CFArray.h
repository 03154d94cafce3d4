// Ordered values, immutable, or mutable in one thread.
//
// Call-backs say what the values are: `&kCFTypeArrayCallBacks` objects, which the array retains,
// null plain pointers, which it only keeps. Others are not supported: creating answers null.
#pragma once

#include <CoreFoundation/CFBase.h>

using CFArrayRef = struct __CFArray const*;
using CFMutableArrayRef = struct __CFArray*;

struct CFArrayCallBacks {
  CFIndex version;
  void const* (*retain)(CFAllocatorRef allocator, void const* value);
  void (*release)(CFAllocatorRef allocator, void const* value);
  CFStringRef (*copyDescription)(void const* value);
  Boolean (*equal)(void const* value1, void const* value2);
};
CF_EXPORT CFArrayCallBacks const kCFTypeArrayCallBacks;

CF_EXPORT CFTypeID CFArrayGetTypeID(void);

// Null when `numValues` is negative.
CF_EXPORT CFArrayRef CFArrayCreate(CFAllocatorRef allocator, void const** values, CFIndex numValues,
                                   CFArrayCallBacks const* callBacks);
CF_EXPORT CFArrayRef CFArrayCreateCopy(CFAllocatorRef allocator, CFArrayRef theArray);
// `capacity` is a hint (0: none) and no limit.
CF_EXPORT CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 CFArrayCallBacks const* callBacks);
CF_EXPORT CFMutableArrayRef CFArrayCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                     CFArrayRef theArray);

CF_EXPORT CFIndex CFArrayGetCount(CFArrayRef theArray);
// Borrowed; null for an index outside the array.
CF_EXPORT void const* CFArrayGetValueAtIndex(CFArrayRef theArray, CFIndex idx);
// A range that does not lie inside the array copies nothing, and nothing is found in it.
CF_EXPORT void CFArrayGetValues(CFArrayRef theArray, CFRange range, void const** values);
CF_EXPORT CFIndex CFArrayGetFirstIndexOfValue(CFArrayRef theArray, CFRange range,
                                              void const* value);
CF_EXPORT Boolean CFArrayContainsValue(CFArrayRef theArray, CFRange range, void const* value);

// These leave an immutable array as it is, and do nothing for an index outside the array (one
// behind the last is inside for inserting and setting, and appends).
CF_EXPORT void CFArrayAppendValue(CFMutableArrayRef theArray, void const* value);
CF_EXPORT void CFArrayAppendArray(CFMutableArrayRef theArray, CFArrayRef otherArray,
                                  CFRange otherRange);
CF_EXPORT void CFArrayInsertValueAtIndex(CFMutableArrayRef theArray, CFIndex idx,
                                         void const* value);
CF_EXPORT void CFArraySetValueAtIndex(CFMutableArrayRef theArray, CFIndex idx, void const* value);
CF_EXPORT void CFArrayRemoveValueAtIndex(CFMutableArrayRef theArray, CFIndex idx);
CF_EXPORT void CFArrayRemoveAllValues(CFMutableArrayRef theArray);
