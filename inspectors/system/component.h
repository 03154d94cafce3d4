// The components registered with the system.
#pragma once

#include <CoreServices/CoreServices.h>

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "frame/inspector_version.h"

// A component by the system's number for it.
class ComponentClass {
 public:
  explicit ComponentClass(Component number) : number_(number) {}

  Component Number() const { return number_; }
  // `NoSuchObject` where the component cannot be opened. Both halves of its version are whole
  // numbers, none of them binary-coded decimal.
  inspector_version theVersion() const;

 private:
  Component number_;
};

static_assert(sizeof(ComponentClass) == 4);

template <>
struct InspectorTypeName<ComponentClass> {
  static constexpr char const* kName = "component";
};

class ComponentIterator {
 public:
  ComponentClass First();
  ComponentClass Next();

 private:
  Component last_ = 0;
};

// What the Component Manager refuses is `OSError`.

// Four characters each.
inspector_string maker_of(ComponentClass const& component);
inspector_string type_of(ComponentClass const& component);
inspector_string subtype_of(ComponentClass const& component);
// `NoSuchObject` for a component that has no such text, `MemoryFullError` without a handle for it.
inspector_string name_of(ComponentClass const& component);
inspector_string info_of(ComponentClass const& component);
inspector_version version_of(ComponentClass const& component);
