// Why one of several machines was not asked, or not to the end.
#pragma once

#include <string>
#include <string_view>

namespace gatotu::host {

struct MachineFailure {
  std::string machine;
  std::string_view code;  // of static storage
  std::string message;    // names the machine
};

// An object of its own, with a line feed.
std::string JsonLineOf(MachineFailure const& failure);

}  // namespace gatotu::host
