// URLs, of files above all. A file URL is a POSIX path as bytes: what is not UTF-8 in it survives
// every way round, in strings as the lone unit U+DC00 + byte.
//
// An HFS path is the volume's name and the components with `:` between; a `:` inside a POSIX
// component is a `/` in the HFS form and the other way round. Paths are those of the machine in
// use, below its root; only the functions that say so ask it.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>

using CFURLRef = struct __CFURL const*;
struct FSRef;

enum CFURLPathStyle : CFIndex {
  kCFURLPOSIXPathStyle = 0,
  kCFURLHFSPathStyle = 1,
};

// What reading a resource may fail with.
enum : SInt32 {
  kCFURLUnknownError = -10,
  kCFURLUnknownSchemeError = -11,
  kCFURLResourceNotFoundError = -12,
  kCFURLResourceAccessViolationError = -13,
  kCFURLRemoteHostUnavailableError = -14,
  kCFURLImproperArgumentsError = -15,
  kCFURLUnknownPropertyKeyError = -16,
  kCFURLPropertyKeyUnavailableError = -17,
  kCFURLTimeoutError = -18,
};

CF_EXPORT CFTypeID CFURLGetTypeID(void);

// All creators return null for what cannot be a URL or a path: a null or empty string, a NUL
// inside.

// Any URL; a relative one needs a base. Percent escapes must be well-formed.
CF_EXPORT CFURLRef CFURLCreateWithString(CFAllocatorRef allocator, CFStringRef URLString,
                                         CFURLRef baseURL);
// A relative POSIX path lies below the current folder, a relative HFS path (one that begins with a
// `:`) as well; below the root where the machine in use is not the one that runs this process. An
// HFS path names a volume first; an unknown volume gives null. HFS paths ask the
// machine for its volumes.
CF_EXPORT CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef filePath,
                                                 CFURLPathStyle pathStyle, Boolean isDirectory);
CF_EXPORT CFURLRef CFURLCreateWithFileSystemPathRelativeToBase(CFAllocatorRef allocator,
                                                               CFStringRef filePath,
                                                               CFURLPathStyle pathStyle,
                                                               Boolean isDirectory,
                                                               CFURLRef baseURL);
// From a path as the file system has it.
CF_EXPORT CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator,
                                                           UInt8 const* buffer, CFIndex bufLen,
                                                           Boolean isDirectory);
// Below a URL whose path is taken for a folder. The component may hold several, with `/` between.
CF_EXPORT CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url,
                                                         CFStringRef pathComponent,
                                                         Boolean isDirectory);
// The folder that the URL's item lies in. Of the root, and of a path that ends in `..`, the path
// goes on with `../`.
CF_EXPORT CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef allocator, CFURLRef url);

// Ask the machine: the item must exist. A link stands for itself.
CF_EXPORT CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, FSRef const* fsRef);
CF_EXPORT Boolean CFURLGetFSRef(CFURLRef url, FSRef* fsRef);

// The URL with its percent escapes; a folder's ends in `/`. Borrowed from the URL.
CF_EXPORT CFStringRef CFURLGetString(CFURLRef anURL);
// Borrowed; null for an absolute URL.
CF_EXPORT CFURLRef CFURLGetBaseURL(CFURLRef anURL);
CF_EXPORT CFURLRef CFURLCopyAbsoluteURL(CFURLRef relativeURL);
CF_EXPORT CFStringRef CFURLCopyScheme(CFURLRef anURL);

// The path without its escapes and without a `/` at its end, absolute for an absolute URL. Null for
// one that is no file's. The HFS form asks the machine for its volumes.
CF_EXPORT CFStringRef CFURLCopyFileSystemPath(CFURLRef anURL, CFURLPathStyle pathStyle);
// Without its escapes; `/` for the root, empty where there is no path, null for a null URL.
CF_EXPORT CFStringRef CFURLCopyLastPathComponent(CFURLRef url);
// Whether the path is spelt as a folder's: it ends in `/`, `.` or `..`.
CF_EXPORT Boolean CFURLHasDirectoryPath(CFURLRef anURL);
// The path as the file system has it, and a NUL; false when it does not fit, with the buffer
// undefined, and for what is no file's.
CF_EXPORT Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase,
                                                   UInt8* buffer, CFIndex maxBufLen);

// Asks the machine for a file's content. Properties are not supported: `properties` gets null where
// it is asked for. On failure false with one of the codes above, and no data.
CF_EXPORT Boolean CFURLCreateDataAndPropertiesFromResource(CFAllocatorRef alloc, CFURLRef url,
                                                           CFDataRef* resourceData,
                                                           CFDictionaryRef* properties,
                                                           CFArrayRef desiredProperties,
                                                           SInt32* errorCode);
