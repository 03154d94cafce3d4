// Conversion between UTF-16 units and the bytes of an encoding. ASCII, Latin-1, Windows Latin-1,
// Mac Roman and the forms of Unicode are converted here, all others by ICU.
#pragma once

#include <CoreFoundation/CFString.h>

#include <cstddef>
#include <string_view>
#include <vector>

#include "frameworks/unicode/service.h"

namespace encodings {

using unicode::Conversion;

enum class Form { kInternal, kExternal };  // external: with a byte-order mark

// As `CFStringGetBytes` documents it; no buffer asks for the size. False for an unknown encoding.
bool Encode(UniChar const* text, std::size_t length, CFStringEncoding encoding, UInt8 loss_byte,
            Form form, UInt8* buffer, std::size_t capacity, Conversion& conversion);

// As `CFStringCreateWithBytes` documents it. False for an unknown encoding and for bytes that are
// no text in it.
bool Decode(UInt8 const* bytes, std::size_t length, CFStringEncoding encoding, Form form,
            std::vector<UniChar>& text);

// Whether ASCII characters are the same bytes in that encoding, none else and no mark before them.
bool ExtendsAscii(CFStringEncoding encoding);

bool IsAscii(UInt8 const* bytes, std::size_t length);

// One character of UTF-8 with all its checks; the bytes it took, 0 when it is malformed. At least
// one byte must be there.
std::size_t TakeUtf8(UInt8 const* bytes, std::size_t length, UInt32& character);

enum class NameSearch { kFound, kUnknown, kUnavailable };

// By an Internet name in any letter case. The commonest are known here, the others by ICU;
// `kUnavailable` when that cannot be loaded.
NameSearch FindEncoding(std::string_view name, CFStringEncoding& encoding);

}  // namespace encodings
