// The registered operators as the language writes them.
#pragma once

#include <string_view>

#include "evaluator/plugin/entry_points.h"

namespace gatotu {

// In the order of the codes.
inline constexpr std::string_view kOperatorSigns[] = {
    "", "+", "-", "*", "/", "mod", "=", "<", "&", "contains", "starts with", "ends with",
};

inline std::string_view SignOf(int code) {
  return code >= kOperatorAdd && code <= kOperatorEndsWith ? kOperatorSigns[code] : "?";
}

}  // namespace gatotu
