// Names and paths between the bytes of the file system and UTF-16 units. Bytes are UTF-8 where they
// can be; any other byte b is the lone unit U+DC00 + b, so that every name comes back as it was.
#pragma once

#include <CoreFoundation/CFString.h>

#include <string>
#include <string_view>
#include <vector>

namespace file_system_text {

__attribute__((visibility("default"))) std::vector<UniChar> UnitsOf(std::string_view bytes);

// A surrogate that stands neither in a pair nor for a byte is written in three bytes, as if it were
// a character; these come back as three units.
__attribute__((visibility("default"))) std::string BytesOf(UniChar const* units, std::size_t count);
__attribute__((visibility("default"))) std::string BytesOf(CFStringRef text);

// Never null.
__attribute__((visibility("default"))) CFStringRef CreateString(std::string_view bytes);

}  // namespace file_system_text
