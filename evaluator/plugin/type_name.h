// The name under which the evaluator knows a value class. Whoever owns a class specialises this
// beside its declaration; the empty name is that of no type (no parameter, the world).
#pragma once

#include "evaluator/plugin/values.h"

template <class T>
struct InspectorTypeName;

template <>
struct InspectorTypeName<inspector_string> {
  static constexpr char const* kName = "string";
};
template <>
struct InspectorTypeName<integer> {
  static constexpr char const* kName = "integer";
};
template <>
struct InspectorTypeName<boolean> {
  static constexpr char const* kName = "boolean";
};
template <>
struct InspectorTypeName<hertz> {
  static constexpr char const* kName = "hertz";
};
