// Bytes as strings of a property list, which holds nothing but text.
#pragma once

#include <string>
#include <string_view>

#include "machine/capture/record.h"

namespace machine::capture {

// A string where the bytes are text that XML can hold, else the bytes themselves.
Record RecordOfBytes(std::string bytes);

// For keys: a byte that is no such text, and "%" itself, becomes "%" and two hexadecimal digits.
std::string KeyOfBytes(std::string_view bytes);
// A "%" with anything else behind it stands for itself.
std::string BytesOfKey(std::string_view key);

// A Gestalt selector, "sysv".
std::string KeyOfSelector(std::uint32_t selector);

}  // namespace machine::capture
