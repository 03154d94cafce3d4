#include "inspectors/plist/osx_array.h"

#include <CoreFoundation/CFPropertyList.h>

#include <limits>

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "inspectors/plist/osx_value.h"
#include "inspectors/plist/property_list_file.h"
#include "portable_inspectors/filesystem_object.h"

namespace {

OSXValue ValueAt(CFArrayRef array, CFIndex index) {
  void const* const value = CFArrayGetValueAtIndex(array, index);
  if (value == nullptr) throw NoSuchObject();
  return OSXValue(value);
}

OSXValue ValueAt(unsigned long long index, OSXArray const& array) {
  if (index > std::numeric_limits<SInt32>::max()) throw NoSuchObject();
  return ValueAt(array.Array(), static_cast<CFIndex>(index));
}

}  // namespace

OSXValue OSXArrayIterator::First(OSXArray const& array) {
  index_ = 0;
  count_ = static_cast<SInt32>(CFArrayGetCount(array.Array()));
  return Next(array);
}

OSXValue OSXArrayIterator::Next(OSXArray const& array) {
  if (index_ >= count_) throw NoSuchObject();
  return ValueAt(array.Array(), index_++);
}

OSXArray array_of_file(file const& file) {
  AutoCFData const data = ContentOf(file);
  try {
    return OSXArray(ArrayCreateFromXMLData(data.Get(), kCFPropertyListImmutable));
  } catch (ArrayCreateFromXMLDataFailed const&) {
    AnnounceMalformed(file, data.Get(), CFArrayGetTypeID());
    throw;
  }
}

integer size_of_array(OSXArray const& array) { return CFArrayGetCount(array.Array()); }

inspector_string string_of_array(unsigned long long index, OSXArray const& array) {
  return string_of_value(ValueAt(index, array));
}

boolean boolean_of_array(unsigned long long index, OSXArray const& array) {
  return boolean_of_value(ValueAt(index, array));
}

integer integer_of_array(unsigned long long index, OSXArray const& array) {
  return integer_of_value(ValueAt(index, array));
}

moment date_of_array(unsigned long long index, OSXArray const& array) {
  return date_of_value(ValueAt(index, array));
}

OSXDictionary dictionary_of_array(unsigned long long index, OSXArray const& array) {
  return dictionary_of_value(ValueAt(index, array));
}

OSXArray array_of_array(unsigned long long index, OSXArray const& array) {
  return array_of_value(ValueAt(index, array));
}

namespace {

Type<OSXArray, kNoFingerprinting> array_type;
Property<file, OSXArray> file_array("array", "arrays", array_of_file, nullptr);
Property<OSXArray, integer> size("size", "sizes", size_of_array, nullptr);
NumberedProperty<OSXArray, inspector_string> string("string", "strings", string_of_array, nullptr);
NumberedProperty<OSXArray, boolean> boolean_value("boolean", "booleans", boolean_of_array, nullptr);
NumberedProperty<OSXArray, integer> integer_value("integer", "integers", integer_of_array, nullptr);
NumberedProperty<OSXArray, moment> date("date", "dates", date_of_array, nullptr);
NumberedProperty<OSXArray, OSXDictionary> dictionary("dictionary", "dictionaries",
                                                     dictionary_of_array, nullptr);
NumberedProperty<OSXArray, OSXArray> array("array", "arrays", array_of_array, nullptr);
IteratedProperty<OSXArrayIterator, OSXArray, OSXValue> values("value", "values", nullptr);

}  // namespace
