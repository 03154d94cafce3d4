// The environment of the machine in use (of a capture: the one it recorded).
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace BSD {

// Nothing when the variable is not set, or the machine tells no environment.
__attribute__((visibility("default"))) std::optional<std::string> GetEnvironmentVariable(
    std::string const& name);

// Each name once, in the environment's own order.
__attribute__((visibility("default"))) std::vector<std::string> ListEnvironmentVariables();

}  // namespace BSD
