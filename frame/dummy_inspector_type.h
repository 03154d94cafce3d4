// "dummy type" and the word "registry" of other platforms, so that an expression that names the
// registry is accepted here and always ends in "no such object".
#pragma once

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"

class DummyInspectorType {};

template <>
struct InspectorTypeName<DummyInspectorType> {
  static constexpr char const* kName = "dummy type";
};

// Both always throw `NoSuchObject`.
DummyInspectorType NoPropertyOfWorld();
inspector_string NoCast(DummyInspectorType const& value);
