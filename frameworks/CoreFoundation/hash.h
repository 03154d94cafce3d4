// Hashes of bytes and words. They differ from process to process where the system loads programs at
// random addresses, so that no file can be prepared whose keys all collide.
#pragma once

#include <CoreFoundation/CFBase.h>

CFHashCode HashBytes(void const* bytes, std::size_t length);
CFHashCode HashWord(UInt64 word);
