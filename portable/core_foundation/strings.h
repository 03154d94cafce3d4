// Making and reading Core Foundation strings. `CFStringCreateError` when bytes are no text in the
// encoding, or the encoding is unknown.
#pragma once

#include <string>

#include "portable/const_data.h"
#include "portable/core_foundation/auto_cf.h"
#include "portable/core_foundation/errors.h"
#include "portable/unicode_reference.h"

GATOTU_API AutoCFString MakeCFString(char const* text, CFStringEncoding encoding);
GATOTU_API AutoCFString MakeCFString(unsigned short const* units, unsigned long count);
// No byte-order mark is looked for.
GATOTU_API AutoCFString MakeCFString(ConstData bytes, CFStringEncoding encoding);
GATOTU_API AutoCFString MakeCFString(std::string const& bytes, CFStringEncoding encoding);
GATOTU_API AutoCFString MakeCFString(UStringRef<UTF8> const& text);
// The URL's own string, with its escapes.
GATOTU_API AutoCFString MakeCFString(CFURLRef const& url);

// Every call hands out the same object.
GATOTU_API AutoCFString EmptyCFString();

// The bytes in that encoding; what it lacks becomes `lossByte`.
GATOTU_API std::string MakeString(CFStringRef string, CFStringEncoding encoding,
                                  unsigned char lossByte);
