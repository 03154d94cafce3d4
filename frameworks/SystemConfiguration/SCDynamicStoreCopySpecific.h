// Single facts of the dynamic store.
#pragma once

#include <SystemConfiguration/SCDynamicStore.h>
#include <sys/types.h>

// The name of the user in front of the console, released by the caller; null where nobody is. A
// store may be null. `uid` and `gid` (either may be null) are left alone where the store does not
// tell them.
CF_EXPORT CFStringRef SCDynamicStoreCopyConsoleUser(SCDynamicStoreRef store, uid_t* uid,
                                                    gid_t* gid);
