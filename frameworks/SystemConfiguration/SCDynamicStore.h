// The store of what the system publishes about its state. Of its keys there is the console user's.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

using SCDynamicStoreRef = struct __SCDynamicStore const*;

struct SCDynamicStoreContext {
  CFIndex version;
  void* info;
  void const* (*retain)(void const* info);
  void (*release)(void const* info);
  CFStringRef (*copyDescription)(void const* info);
};
using SCDynamicStoreCallBack = void (*)(SCDynamicStoreRef store, CFArrayRef changedKeys,
                                        void* info);

CF_EXPORT CFTypeID SCDynamicStoreGetTypeID(void);

// A session with the store under a name of the caller's, released by the caller. There are no
// notifications: one that asks for a call-back is refused, null with `kSCStatusInvalidArgument`,
// and so is one without a name.
CF_EXPORT SCDynamicStoreRef SCDynamicStoreCreate(CFAllocatorRef allocator, CFStringRef name,
                                                 SCDynamicStoreCallBack callout,
                                                 SCDynamicStoreContext* context);

// What is published under the key now, released by the caller. A null store means one of its own
// for this call. Null, and `SCError` says why, where nothing is.
CF_EXPORT CFPropertyListRef SCDynamicStoreCopyValue(SCDynamicStoreRef store, CFStringRef key);
