// Property lists in all their forms: binary, XML, and the old text form, which is only read.
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFString.h>

// There are no error objects: wherever one is asked for, it is null.
using CFErrorRef = struct __CFError*;

using CFPropertyListMutabilityOptions = CFOptionFlags;
enum : CFPropertyListMutabilityOptions {
  kCFPropertyListImmutable = 0,
  // Of the two text forms: what is read of a binary property list is always immutable.
  kCFPropertyListMutableContainers = 1,
  // As the one before: strings and data are always immutable here.
  kCFPropertyListMutableContainersAndLeaves = 2,
};

enum CFPropertyListFormat : CFIndex {
  kCFPropertyListOpenStepFormat = 1,
  kCFPropertyListXMLFormat_v1_0 = 100,
  kCFPropertyListBinaryFormat_v1_0 = 200,
};

// Reads any of the forms, told apart by how they begin. Null when the data is not a property list;
// then `errorString` (may be null) gets the reason and the place, for the caller to release, and
// null otherwise.
CF_EXPORT CFPropertyListRef CFPropertyListCreateFromXMLData(CFAllocatorRef allocator,
                                                            CFDataRef xmlData,
                                                            CFOptionFlags mutabilityOption,
                                                            CFStringRef* errorString);
// The same; `format` (may be null) gets the form that was found.
CF_EXPORT CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef allocator, CFDataRef data,
                                                         CFOptionFlags options,
                                                         CFPropertyListFormat* format,
                                                         CFErrorRef* error);

// Null for what is no property list: other objects, keys that are not strings, containers that hold
// themselves or nest beyond 512, and dates outside what the form can write.
CF_EXPORT CFDataRef CFPropertyListCreateXMLData(CFAllocatorRef allocator,
                                                CFPropertyListRef propertyList);
// Null also for `kCFPropertyListOpenStepFormat`. `options` must be 0.
CF_EXPORT CFDataRef CFPropertyListCreateData(CFAllocatorRef allocator,
                                             CFPropertyListRef propertyList,
                                             CFPropertyListFormat format, CFOptionFlags options,
                                             CFErrorRef* error);
