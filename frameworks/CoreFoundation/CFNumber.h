// Booleans and numbers. A number holds an integer from -2^63 to 2^64-1 exactly, or a double.
#pragma once

#include <CoreFoundation/CFBase.h>

using CFBooleanRef = struct __CFBoolean const*;

CF_EXPORT CFBooleanRef const kCFBooleanTrue;
CF_EXPORT CFBooleanRef const kCFBooleanFalse;

CF_EXPORT CFTypeID CFBooleanGetTypeID(void);
CF_EXPORT Boolean CFBooleanGetValue(CFBooleanRef boolean);

using CFNumberRef = struct __CFNumber const*;

enum CFNumberType : CFIndex {
  kCFNumberSInt8Type = 1,
  kCFNumberSInt16Type = 2,
  kCFNumberSInt32Type = 3,
  kCFNumberSInt64Type = 4,
  kCFNumberFloat32Type = 5,
  kCFNumberFloat64Type = 6,
  kCFNumberCharType = 7,
  kCFNumberShortType = 8,
  kCFNumberIntType = 9,
  // 32 bits, as on the platform of the interface: an `SInt32`, not a `long`.
  kCFNumberLongType = 10,
  kCFNumberLongLongType = 11,
  kCFNumberFloatType = 12,
  kCFNumberDoubleType = 13,
  kCFNumberCFIndexType = 14,
  kCFNumberNSIntegerType = 15,
  kCFNumberCGFloatType = 16,
  kCFNumberMaxType = 16,
  // A `CFSInt128Struct`, for the integers from 2^63 to 2^64-1.
  kCFNumberSInt128Type = 17,
};

struct CFSInt128Struct {
  SInt64 high;
  UInt64 low;
};

CF_EXPORT CFTypeID CFNumberGetTypeID(void);

// Reads what `valuePtr` points to as that type says. Null for an unknown type or a null pointer, or
// for a 128-bit integer outside -2^63 .. 2^64-1.
CF_EXPORT CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType theType,
                                     void const* valuePtr);

// One of the first six types, the one the number was made from; `kCFNumberSInt128Type` for an
// integer above 2^63-1.
CF_EXPORT CFNumberType CFNumberGetType(CFNumberRef number);
CF_EXPORT CFIndex CFNumberGetByteSize(CFNumberRef number);
CF_EXPORT Boolean CFNumberIsFloatType(CFNumberRef number);

// Converts to that type. False when that loses something: a fraction, a value out of range, digits
// that a float has no room for; then `valuePtr` gets the value cut towards zero and to the type's
// range (as a float the nearest). False and nothing written for an unknown type.
CF_EXPORT Boolean CFNumberGetValue(CFNumberRef number, CFNumberType theType, void* valuePtr);

// Exactly by value, whatever the types: 1 equals 1.0. NaN equals NaN and comes before all else.
CF_EXPORT CFComparisonResult CFNumberCompare(CFNumberRef number, CFNumberRef otherNumber,
                                             void* context);
