// Handles: blocks of memory that may move as they grow, found through a master pointer that stays.
#pragma once

#include <CoreServices/MacTypes.h>

using Ptr = char*;
using Handle = Ptr*;
using Size = long;  // of bytes

enum : OSErr { nilHandleErr = -109 };

// Each call leaves its status for `MemError` of the calling thread. A handle belongs to whoever
// asked for it; a null one is `nilHandleErr`.

// Null, with `memFullErr`, where there is no memory or the size is negative. The bytes are not
// cleared.
CF_EXPORT Handle NewHandle(Size size);
CF_EXPORT void DisposeHandle(Handle handle);
// 0 for an emptied handle.
CF_EXPORT Size GetHandleSize(Handle handle);
// Keeps the bytes that fit. Where it fails the block is left as it was; an emptied handle has none
// to resize (`nilHandleErr`).
CF_EXPORT void SetHandleSize(Handle handle, Size size);
// Gives the block back: the master pointer is null from then on.
CF_EXPORT void EmptyHandle(Handle handle);
CF_EXPORT OSErr MemError(void);
