// An array of a property list.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "portable/core_foundation/auto_cf.h"
#include "portable/core_foundation/objects.h"
#include "portable_inspectors/moment.h"

class OSXDictionary;
class OSXValue;
class file;

// Owns one reference, which keeps everything inside the array.
class OSXArray {
 public:
  // One reference more.
  explicit OSXArray(CFArrayRef array) : array_(Duplicate(array)) {}
  // The reference that the handle owns.
  explicit OSXArray(AutoCFArray array) : array_(std::move(array)) {}
  OSXArray(OSXArray const& other) : array_(Duplicate(other.Array())) {}
  OSXArray& operator=(OSXArray const& other) {
    array_ = Duplicate(other.Array());
    return *this;
  }

  CFArrayRef Array() const { return array_.Get(); }

 private:
  AutoCFArray array_;
};

template <>
struct InspectorTypeName<OSXArray> {
  static constexpr char const* kName = "array";
};

// The values in their order.
class OSXArrayIterator {
 public:
  OSXValue First(OSXArray const& array);
  OSXValue Next(OSXArray const& array);

 private:
  SInt32 index_ = 0;
  SInt32 count_ = 0;
};

// `NoSuchObject` when it cannot be read, `ArrayCreateFromXMLDataFailed` when it is no property list
// or one of another kind.
OSXArray array_of_file(file const& file);

integer size_of_array(OSXArray const& array);

// The value at an index that counts from 0, converted as `osx_value.h` says; `NoSuchObject` beyond
// the end.
inspector_string string_of_array(unsigned long long index, OSXArray const& array);
boolean boolean_of_array(unsigned long long index, OSXArray const& array);
integer integer_of_array(unsigned long long index, OSXArray const& array);
moment date_of_array(unsigned long long index, OSXArray const& array);
OSXDictionary dictionary_of_array(unsigned long long index, OSXArray const& array);
OSXArray array_of_array(unsigned long long index, OSXArray const& array);
