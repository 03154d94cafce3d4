// Values as a property list can hold them, which knows no unsigned numbers and no strings but text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "machine/capture/record.h"

namespace machine::capture {

// A string where the bytes are text that XML can hold, else the bytes themselves.
Record RecordOfBytes(std::string bytes);

Record RecordOfNames(std::vector<std::string> const& names);
Record RecordOfNumber(std::uint64_t number);

// For keys: a byte that is no such text, and "%" itself, becomes "%" and two hexadecimal digits.
std::string KeyOfBytes(std::string_view bytes);
// A "%" with anything else behind it stands for itself.
std::string BytesOfKey(std::string_view key);

// A Gestalt selector, "sysv".
std::string KeyOfSelector(std::uint32_t selector);

}  // namespace machine::capture
