// What the texts of options mean.
#pragma once

#include <optional>

#include "host/command_options.h"

namespace gatotu::host {

// Of a line whose command and words are known. Why it is refused, if it is.
std::optional<Farewell> Understand(GivenOptions const& given, CommandLine& line);

}  // namespace gatotu::host
