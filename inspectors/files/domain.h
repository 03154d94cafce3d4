// The domains in which the system keeps its folders: its own, the machine's, the user's and so on.
#pragma once

#include <cstdint>

#include "evaluator/plugin/type_name.h"

// A domain as `FSFindFolder` counts it.
struct domain {
  std::int16_t value;
};

template <>
struct InspectorTypeName<domain> {
  static constexpr char const* kName = "domain";
};

template <std::int16_t value>
domain domain_of_world() {
  return {value};
}
