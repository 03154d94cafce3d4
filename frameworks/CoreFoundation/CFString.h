// Immutable text, a sequence of UTF-16 units.
#pragma once

#include <CoreFoundation/CFBase.h>

using CFStringEncoding = UInt32;

enum : CFStringEncoding {
  kCFStringEncodingInvalidId = 0xffffffffU,
  kCFStringEncodingMacRoman = 0,
  kCFStringEncodingWindowsLatin1 = 0x0500,
  kCFStringEncodingISOLatin1 = 0x0201,
  kCFStringEncodingNextStepLatin = 0x0B01,
  kCFStringEncodingASCII = 0x0600,
  kCFStringEncodingUnicode = 0x0100,
  kCFStringEncodingUTF8 = 0x08000100,
  kCFStringEncodingNonLossyASCII = 0x0BFF,
  kCFStringEncodingUTF16 = 0x0100,
  kCFStringEncodingUTF16BE = 0x10000100,
  kCFStringEncodingUTF16LE = 0x14000100,
  kCFStringEncodingUTF32 = 0x0C000100,
  kCFStringEncodingUTF32BE = 0x18000100,
  kCFStringEncodingUTF32LE = 0x1C000100,
};

using CFStringCompareFlags = CFOptionFlags;
enum : CFStringCompareFlags {
  kCFCompareCaseInsensitive = 1,
};

CF_EXPORT CFTypeID CFStringGetTypeID(void);

// All creators return null when the bytes are not text in that encoding, when the encoding is not
// known, or when a length is negative.

// `isExternalRepresentation`: a byte-order mark in front (UTF-8, UTF-16, UTF-32) is skipped and
// decides the order; without one UTF-16 and UTF-32 are big-endian then, and of the machine's order
// otherwise.
CF_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, UInt8 const* bytes,
                                              CFIndex numBytes, CFStringEncoding encoding,
                                              Boolean isExternalRepresentation);
CF_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, char const* cStr,
                                                CFStringEncoding encoding);
CF_EXPORT CFStringRef CFStringCreateWithPascalString(CFAllocatorRef allocator,
                                                     ConstStr255Param pStr,
                                                     CFStringEncoding encoding);
// Any units, unpaired surrogates included.
CF_EXPORT CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, UniChar const* chars,
                                                   CFIndex numChars);

// In UTF-16 units.
CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);
// The index and range must lie inside the string.
CF_EXPORT UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index);
CF_EXPORT void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer);

// Converts the range and returns how many units of it were converted; `usedBufLen` (may be null)
// gets the bytes they take. A character that the encoding lacks becomes `lossByte`, or ends the
// conversion when `lossByte` is 0. A null buffer asks for the size and ignores `maxBufLen`;
// otherwise the conversion ends before the first character that does not fit whole.
// `isExternalRepresentation` puts a byte-order mark in front for UTF-16 and UTF-32 (not for the
// variants with a fixed order). An unknown encoding converts nothing.
CF_EXPORT CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding,
                                   UInt8 lossByte, Boolean isExternalRepresentation, UInt8* buffer,
                                   CFIndex maxBufLen, CFIndex* usedBufLen);

// The whole text and a NUL, or false when it does not fit or cannot be represented.
CF_EXPORT Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize,
                                     CFStringEncoding encoding);

// Unit by unit; `kCFCompareCaseInsensitive` folds the case of each character first. Other options
// are not supported and have no effect.
CF_EXPORT CFComparisonResult CFStringCompare(CFStringRef left, CFStringRef right,
                                             CFStringCompareFlags compareOptions);

// Names as registered for the Internet, in any letter case, with every alias that ICU knows.
// Unknown: `kCFStringEncodingInvalidId`.
CF_EXPORT CFStringEncoding CFStringConvertIANACharSetNameToEncoding(CFStringRef string);
// Borrowed, valid for ever; null for an encoding without such a name.
CF_EXPORT CFStringRef CFStringConvertEncodingToIANACharSetName(CFStringEncoding encoding);

// A string constant that lives for ever, the same object for the same text (UTF-8).
#define CFSTR(cStr) __CFStringMakeConstantString("" cStr "")
CF_EXPORT CFStringRef __CFStringMakeConstantString(char const* cStr);
