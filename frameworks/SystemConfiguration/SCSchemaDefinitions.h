// What the values in the dynamic store are made of.
#pragma once

#include <CoreFoundation/CFString.h>

#define kSCPropUsersConsoleUserName CFSTR("Name")
#define kSCPropUsersConsoleUserUID CFSTR("UID")
#define kSCPropUsersConsoleUserGID CFSTR("GID")
