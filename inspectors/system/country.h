// Region codes of the system by their symbolic names, such as "verFrance".
#pragma once

#include <cstdint>

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"

struct country {
  std::uint32_t region_code;
  friend bool operator==(country, country) = default;
};

template <>
struct InspectorTypeName<country> {
  static constexpr char const* kName = "country";
};

// `NoSuchObject` for any other spelling of a name.
country country_of(unsigned char const* name, unsigned long length);
