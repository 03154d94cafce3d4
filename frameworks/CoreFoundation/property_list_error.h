// Why a property list was refused, for whoever has to mend it.
#pragma once

#include <cstddef>
#include <string>

struct PropertyListError {
  std::size_t position = 0;  // In bytes from the start of the property list.
  std::string message;       // A phrase without a full stop.
};

// Readers and writers refuse what is nested deeper: containers in containers, the outermost is 1.
inline constexpr int kPropertyListNesting = 512;
