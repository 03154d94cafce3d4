// The keys of the dynamic store.
#pragma once

#include <CoreFoundation/CFString.h>

// "State:/Users/ConsoleUser", released by the caller.
CF_EXPORT CFStringRef SCDynamicStoreKeyCreateConsoleUser(CFAllocatorRef allocator);
