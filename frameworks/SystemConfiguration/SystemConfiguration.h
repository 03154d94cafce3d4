// All of System Configuration that we have.
#pragma once

#include <SystemConfiguration/SCDynamicStore.h>
#include <SystemConfiguration/SCDynamicStoreCopySpecific.h>
#include <SystemConfiguration/SCDynamicStoreKey.h>
#include <SystemConfiguration/SCSchemaDefinitions.h>

enum {
  kSCStatusOK = 0,
  kSCStatusFailed = 1001,
  kSCStatusInvalidArgument = 1002,
  kSCStatusAccessError = 1003,
  kSCStatusNoKey = 1004,
  kSCStatusNoStoreServer = 2002,
};

// How this thread's last call ended.
CF_EXPORT int SCError(void);
