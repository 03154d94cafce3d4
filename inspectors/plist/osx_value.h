// A value inside a property list, whatever its type.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "inspectors/plist/osx_array.h"
#include "inspectors/plist/osx_dictionary.h"
#include "inspectors/plist/ring_of_copies.h"
#include "portable_inspectors/moment.h"

// Borrows a Core Foundation object, never null, from what it was taken from, which the evaluator
// keeps for as long.
class OSXValue {
 public:
  explicit OSXValue(void const* value) : value_(value) {}

  void const* Object() const { return value_; }

 private:
  void const* value_;
  RingOfCopies ring_;
};

template <>
struct InspectorTypeName<OSXValue> {
  static constexpr char const* kName = "osxvalue";
};

// "boolean", "string", "integer" (any number), "data", "date", "array", "dictionary", or
// "unknown type".
inspector_string type_of_value(OSXValue const& value);

// The conversions: `NoSuchObject` for a value of another type.

// Of a string as Mac Roman, of data their bytes.
inspector_string string_of_value(OSXValue const& value);
// The same, but that one NUL at the end of data is left out.
inspector_string cstring_of_value(OSXValue const& value);
boolean boolean_of_value(OSXValue const& value);
// Whole numbers of 32 bits only: what would not be reported exactly does not exist.
integer integer_of_value(OSXValue const& value);
// To the nearest microsecond; `NoSuchObject` for a date that no time can express.
moment date_of_value(OSXValue const& value);
// Holds one reference more than it gives back, so the array outlives whatever it came from.
OSXArray array_of_value(OSXValue const& value);
OSXDictionary dictionary_of_value(OSXValue const& value);
