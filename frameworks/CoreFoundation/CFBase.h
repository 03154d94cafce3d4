// The ground of Core Foundation: scalar types, and the life of the reference-counted, immutable
// objects. Counts are atomic, so objects may be shared among threads. A function with Create or
// Copy in its name hands over a reference that the caller releases; with Get, the reference is
// borrowed from the object asked.
#pragma once

#include <cstddef>
#include <cstdint>

#define CF_EXPORT extern "C" __attribute__((visibility("default")))

using Boolean = unsigned char;
using UInt8 = std::uint8_t;
using SInt8 = std::int8_t;
using UInt16 = std::uint16_t;
using SInt16 = std::int16_t;
using UInt32 = std::uint32_t;
using SInt32 = std::int32_t;
using UInt64 = std::uint64_t;
using SInt64 = std::int64_t;
using OSStatus = SInt32;
using UniChar = unsigned short;
using UniCharCount = unsigned long;
using StringPtr = unsigned char*;
using ConstStringPtr = unsigned char const*;
using Str255 = unsigned char[256];
using ConstStr255Param = unsigned char const*;

using CFTypeID = unsigned long;
using CFOptionFlags = unsigned long;
using CFHashCode = unsigned long;
using CFIndex = long;

// Any object.
using CFTypeRef = void const*;
using CFStringRef = struct __CFString const*;
// A string, data, number, boolean, date, array or dictionary.
using CFPropertyListRef = CFTypeRef;

enum CFComparisonResult : CFIndex {
  kCFCompareLessThan = -1,
  kCFCompareEqualTo = 0,
  kCFCompareGreaterThan = 1,
};

inline constexpr CFIndex kCFNotFound = -1;

struct CFRange {
  CFIndex location;
  CFIndex length;
};
inline CFRange CFRangeMake(CFIndex location, CFIndex length) { return {location, length}; }

// Only the default allocator exists; every `Create` function ignores what it is given.
using CFAllocatorRef = struct __CFAllocator const*;
inline constexpr CFAllocatorRef kCFAllocatorDefault = nullptr;

// `object` must not be null in any of these. An object that holds others may be released, compared
// and hashed whatever its depth.
CF_EXPORT CFTypeRef CFRetain(CFTypeRef object);
CF_EXPORT void CFRelease(CFTypeRef object);
CF_EXPORT CFIndex CFGetRetainCount(CFTypeRef object);
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);
CF_EXPORT Boolean CFEqual(CFTypeRef left, CFTypeRef right);
// Equal objects have equal hashes.
CF_EXPORT CFHashCode CFHash(CFTypeRef object);
