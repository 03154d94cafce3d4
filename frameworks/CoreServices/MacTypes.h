// The scalar types of the classic system calls.
#pragma once

#include <CoreFoundation/CFBase.h>

using OSErr = SInt16;
using FourCharCode = UInt32;
using OSType = FourCharCode;
using ItemCount = unsigned long;
using ByteCount = unsigned long;
using TextEncoding = UInt32;
using OptionBits = UInt32;

enum : OSErr { noErr = 0, memFullErr = -108 };
