// Bundles: folders of a standard structure, such as applications and frameworks. A folder is a
// bundle when an Info.plist or a PkgInfo lies where one of the structures has it; the information
// dictionary is read when the bundle is opened, all else when it is asked for.
//
// A bundle that someone holds stays as it was opened, whatever becomes of its folder.
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

using CFBundleRef = struct __CFBundle*;

#define kCFBundleIdentifierKey CFSTR("CFBundleIdentifier")
#define kCFBundleVersionKey CFSTR("CFBundleVersion")
#define kCFBundleDevelopmentRegionKey CFSTR("CFBundleDevelopmentRegion")

CF_EXPORT CFTypeID CFBundleGetTypeID(void);

// Null when the URL leads to no bundle. The same folder gives the same object as long as its
// information dictionary lies unchanged in its place.
CF_EXPORT CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef bundleURL);
// Borrowed. Knows the bundles that this process holds, and the last few hundred that it opened; of
// several the one opened first. Null when there is none, or its folder is no bundle any more.
CF_EXPORT CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef bundleID);

// Borrowed, as long as the bundle is held. Null for a bundle without such a dictionary: its
// Info.plist is missing or cannot be read.
CF_EXPORT CFDictionaryRef CFBundleGetInfoDictionary(CFBundleRef bundle);
// The same with the `InfoPlist.strings` of the preferred language laid over it.
CF_EXPORT CFDictionaryRef CFBundleGetLocalInfoDictionary(CFBundleRef bundle);
// A value of the local dictionary, of any type; null when the key is absent.
CF_EXPORT CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key);
// Borrowed; null when there is no identifier, or it is not a string.
CF_EXPORT CFStringRef CFBundleGetIdentifier(CFBundleRef bundle);

// `CFBundleVersion` as a packed word: two decimal digits of the major version, one of the minor,
// one of the revision, the stage (0x20 development, 0x40 alpha, 0x60 beta, 0x80 final) and the
// number within it. 0 for text of any other form than "12.3.4b56" and for what is no string.
CF_EXPORT UInt32 CFBundleGetVersionNumber(CFBundleRef bundle);

// Type and creator as PkgInfo has them, else the dictionary (`CFBundlePackageType`,
// `CFBundleSignature`), else 'BNDL' and '????'. Either pointer may be null.
CF_EXPORT void CFBundleGetPackageInfo(CFBundleRef bundle, UInt32* packageType,
                                      UInt32* packageCreator);
// The same without opening the bundle; false when the folder is none.
CF_EXPORT Boolean CFBundleGetPackageInfoInDirectory(CFURLRef url, UInt32* packageType,
                                                    UInt32* packageCreator);

// The folder, by its path without links.
CF_EXPORT CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle);
