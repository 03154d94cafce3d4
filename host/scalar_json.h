// The values of property lists that hold no others, as JSON; `property_list_json.h` says how.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <string>

namespace gatotu::host {

// What cannot end within `most` bytes is broken off behind them, so that the text is too long.
void AppendScalarJson(CFTypeRef object, std::string& text, std::size_t most);

// A key that is no string, which no file can hold, is "unknown type".
void AppendKeyJson(CFTypeRef key, std::string& text, std::size_t most);

}  // namespace gatotu::host
