#pragma once

#include <CoreFoundation/CFString.h>

// The name people gave the machine in use; null when it has none.
CF_EXPORT CFStringRef CSCopyMachineName(void);
