// Names of items between the bytes on disk and UTF-16.
#pragma once

#include <CoreServices/Files.h>

#include <optional>
#include <string>
#include <string_view>

// Every name on disk has a form in UTF-16, and that form leads back to the same bytes.
HFSUniStr255 UnicodeName(std::string_view bytes);

// Nothing when it is no name: empty, "." or "..", with "/" or NUL, longer than 255 bytes on disk,
// or with half a surrogate pair that no byte made.
std::optional<std::string> NameOnDisk(UniChar const* name, UniCharCount length);
