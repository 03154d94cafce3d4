// The machine's processors. All are one and the same empty value: what is asked of one is read of
// the machine, so every processor has the same speed, type and family.
#pragma once

#include <cstdint>

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "frame/of.h"

class InspectorProcessor {};

template <>
struct InspectorTypeName<InspectorProcessor> {
  static constexpr char const* kName = "processor";
};

class ProcessorIterator {
 public:
  InspectorProcessor First();
  InspectorProcessor Next();

 private:
  std::uint32_t count_ = 0;
  std::uint32_t next_ = 0;
};

InspectorProcessor main_processor_of();
hertz speed_of_processor(Of, InspectorProcessor const& processor);

// The name for the response to a processor selector, "unknown" for one without a name. A failing
// selector, an undefined one too, is `OSError` or `MemoryFullError` here.
inspector_string family_name_of_processor(Of, InspectorProcessor const& processor);
inspector_string processor_name_of_processor(Of, InspectorProcessor const& processor);
