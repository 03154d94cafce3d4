// Immutable bytes.
#pragma once

#include <CoreFoundation/CFBase.h>

using CFDataRef = struct __CFData const*;

CF_EXPORT CFTypeID CFDataGetTypeID(void);

// Copies the bytes. Null when the length is negative.
CF_EXPORT CFDataRef CFDataCreate(CFAllocatorRef allocator, UInt8 const* bytes, CFIndex length);
CF_EXPORT CFDataRef CFDataCreateCopy(CFAllocatorRef allocator, CFDataRef theData);

CF_EXPORT CFIndex CFDataGetLength(CFDataRef theData);
// Valid as long as the object; never null, not even for no bytes.
CF_EXPORT UInt8 const* CFDataGetBytePtr(CFDataRef theData);
// A range that does not lie inside the data copies nothing.
CF_EXPORT void CFDataGetBytes(CFDataRef theData, CFRange range, UInt8* buffer);
