// What the kernel tells of a device in small files of text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "machine/capture/record.h"
#include "machine/fact.h"
#include "machine/live/root.h"

namespace machine::live {

inline constexpr std::size_t kLargestAttribute = 4096;

// A regular file that everyone may read, of at most so many bytes. Anything else is not even
// opened: reading some attributes blocks, and reading others changes the device.
Fact<std::string> ReadAttribute(Root const& root, std::string const& path, std::size_t most);

// A plain decimal number, or a hexadecimal one behind "0x", as a number; else the text. What would
// come back as other text, such as "007", is no plain number.
Record RecordOfAttribute(std::string_view text);

// The properties of a device: the attributes that are known to be harmless in its subsystem, and
// what the registry's own names promise. Those that cannot be read as text are left out.
RecordDictionary PropertiesOfDevice(Root const& root, std::string const& path,
                                    std::string_view subsystem);

}  // namespace machine::live
