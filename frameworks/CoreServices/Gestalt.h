// Facts of the machine in use by four-character selector.
#pragma once

#include <CoreServices/MacTypes.h>

enum : OSErr { gestaltUndefSelectorErr = -5551 };

// `noErr` and the response, or `gestaltUndefSelectorErr` where the machine has no such fact or
// could not read it; `response` is then left alone. A response is 32 bits without sign, whatever
// the type says.
CF_EXPORT OSErr Gestalt(OSType selector, SInt32* response);

// The text that the response to a string selector ("mnam") stands for: its length in the first
// byte, then at most 255 bytes. Null for a number that stands for none. The bytes stay valid and
// unchanged until the process ends; equal texts have equal responses.
CF_EXPORT unsigned char const* GestaltResponseString(SInt32 response);
