// A key and its value in a dictionary of a property list.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "inspectors/plist/osx_value.h"
#include "inspectors/plist/ring_of_copies.h"

// Borrows both from the dictionary, which the evaluator keeps for as long.
class OSXDictionaryEntry {
 public:
  OSXDictionaryEntry(CFStringRef key, void const* value) : key_(key), value_(value) {}

  // Not known to be a string until it has been looked at.
  CFStringRef Key() const { return key_; }
  void const* Object() const { return value_; }

 private:
  CFStringRef key_;
  void const* value_;
  RingOfCopies ring_;
};

template <>
struct InspectorTypeName<OSXDictionaryEntry> {
  static constexpr char const* kName = "dictionaryentry";
};

// Mac Roman; `NoSuchObject` for a key that is no string.
inspector_string key_of_entry(OSXDictionaryEntry const& entry);
OSXValue value_of_entry(OSXDictionaryEntry const& entry);
