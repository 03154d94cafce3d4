// What the system says of itself.
#pragma once

#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>

// Keys of the dictionary below.
#define _kCFSystemVersionProductNameKey CFSTR("ProductName")
#define _kCFSystemVersionProductVersionKey CFSTR("ProductVersion")
#define _kCFSystemVersionBuildVersionKey CFSTR("ProductBuildVersion")

// Strings by key, what the machine in use tells of its system; the caller releases it. Null when it
// tells nothing.
CF_EXPORT CFDictionaryRef _CFCopySystemVersionDictionary(void);
