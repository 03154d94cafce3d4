#pragma once

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "frame/of.h"

// The machine's memory.
class RAMInspector {};

template <>
struct InspectorTypeName<RAMInspector> {
  static constexpr char const* kName = "ram";
};

RAMInspector ram_of();
// In bytes.
integer size_of_ram(Of, RAMInspector const& ram);
