// What the host may hand to inspectors for the evaluations it asks for. Kinds of context derive
// from this, or stand beside it in one host object and are reached by a cross-cast.
#pragma once

#include "evaluator/plugin/export.h"

class GATOTU_API InspectorContext {
 public:
  virtual ~InspectorContext() = default;
};
