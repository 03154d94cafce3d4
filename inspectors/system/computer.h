// The names of the machine, read anew at every call.
#pragma once

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "frame/of.h"

class Computer {};

template <>
struct InspectorTypeName<Computer> {
  static constexpr char const* kName = "computer";
};

Computer computer();
// In the report encoding. `NoSuchObject` where the machine has no name of this kind.
inspector_string name_of_computer(Of, Computer const& computer);
inspector_string hostname();
