#include "inspectors/plist/osx_value.h"

#include <cmath>

#include "evaluator/plugin/exceptions.h"
#include "frame/inspector_strings.h"
#include "frame/registration.h"
#include "inspectors/plist/value_text.h"

namespace {

bool IsOfType(OSXValue const& value, CFTypeID type) { return CFGetTypeID(value.Object()) == type; }

// The value as a reference to that type.
template <class Reference>
Reference Require(OSXValue const& value, CFTypeID type) {
  if (!IsOfType(value, type)) throw NoSuchObject();
  return static_cast<Reference>(value.Object());
}

// Leaves room for the distance between the epochs. About 285,000 years either way.
constexpr double kMostMicroseconds = 9e18;

}  // namespace

inspector_string type_of_value(OSXValue const& value) {
  struct Name {
    CFTypeID (*type)();
    char const* name;
  };
  constexpr Name kNames[] = {
      {CFBooleanGetTypeID, "boolean"},
      {CFStringGetTypeID, "string"},
      {CFNumberGetTypeID, "integer"},
      {CFDataGetTypeID, "data"},
      {CFDateGetTypeID, "date"},
      {CFArrayGetTypeID, "array"},
      {CFDictionaryGetTypeID, "dictionary"},
  };
  CFTypeID const type = CFGetTypeID(value.Object());
  for (Name const& each : kNames) {
    if (type == each.type()) return AsInspectorString(ConstData(each.name));
  }
  return AsInspectorString(ConstData("unknown type"));
}

inspector_string string_of_value(OSXValue const& value) {
  if (IsOfType(value, CFDataGetTypeID())) {
    return CFDataValue(static_cast<CFDataRef>(value.Object()));
  }
  return CFStringValue(Require<CFStringRef>(value, CFStringGetTypeID()));
}

inspector_string cstring_of_value(OSXValue const& value) {
  if (IsOfType(value, CFDataGetTypeID())) {
    return CFDataAsCStringValue(static_cast<CFDataRef>(value.Object()));
  }
  return CFStringValue(Require<CFStringRef>(value, CFStringGetTypeID()));
}

boolean boolean_of_value(OSXValue const& value) {
  return CFBooleanGetValue(Require<CFBooleanRef>(value, CFBooleanGetTypeID())) != 0;
}

integer integer_of_value(OSXValue const& value) {
  auto const number = Require<CFNumberRef>(value, CFNumberGetTypeID());
  SInt32 exact = 0;
  if (CFNumberGetValue(number, kCFNumberLongType, &exact) == 0) throw NoSuchObject();
  return exact;
}

moment date_of_value(OSXValue const& value) {
  auto const date = Require<CFDateRef>(value, CFDateGetTypeID());
  double const microseconds =
      (CFDateGetAbsoluteTime(date) + kCFAbsoluteTimeIntervalSince1904) * 1000000;
  // Written so that no number at all fails too.
  if (!(std::fabs(microseconds) < kMostMicroseconds)) throw NoSuchObject();
  return january_1_1904_GMT() + microsecond_of() * integer{std::llround(microseconds)};
}

OSXArray array_of_value(OSXValue const& value) {
  auto const array = Require<CFArrayRef>(value, CFArrayGetTypeID());
  CFRetain(array);
  return OSXArray(array);
}

OSXDictionary dictionary_of_value(OSXValue const& value) {
  return OSXDictionary(Require<CFDictionaryRef>(value, CFDictionaryGetTypeID()));
}

namespace {

Type<OSXValue, kNoFingerprinting> value_type;
Property<OSXValue, inspector_string> type_of("type", "types", type_of_value, nullptr);
Property<OSXValue, inspector_string> data("data", "datas", string_of_value, nullptr);
Property<OSXValue, inspector_string> string("string", "strings", string_of_value, nullptr);
// The plural is spelt so in expressions that exist.
Property<OSXValue, inspector_string> cstring("cstring", "csrings", cstring_of_value, nullptr);
Property<OSXValue, boolean> boolean_value("boolean", "booleans", boolean_of_value, nullptr);
Property<OSXValue, integer> integer_value("integer", "integers", integer_of_value, nullptr);
Property<OSXValue, OSXArray> array("array", "arrays", array_of_value, nullptr);
Property<OSXValue, OSXDictionary> dictionary("dictionary", "dictionaries", dictionary_of_value,
                                             nullptr);
Property<OSXValue, moment> date("date", "dates", date_of_value, nullptr);

}  // namespace
