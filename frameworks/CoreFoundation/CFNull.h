// The object that stands for no object, where an object must be.
#pragma once

#include <CoreFoundation/CFBase.h>

using CFNullRef = struct __CFNull const*;

CF_EXPORT CFNullRef const kCFNull;

CF_EXPORT CFTypeID CFNullGetTypeID(void);
