#include "inspectors/plist/preferences.h"

#include <CoreFoundation/CFPreferences.h>

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "inspectors/plist/osx_value.h"
#include "portable/core_foundation/strings.h"

namespace {

AutoCFString MakeName(unsigned char const* name, unsigned long length) {
  return MakeCFString(ConstData(name, length), kCFStringEncodingMacRoman);
}

// The reference that the value comes with is kept for ever, so that nothing taken from the value
// can outlive it.
OSXValue keyedLookup(unsigned char const* name, unsigned long length,
                     Preferences const& preferences) {
  AutoCFString const key = MakeName(name, length);
  void const* const value = CFPreferencesCopyAppValue(key.Get(), preferences.Application());
  if (value == nullptr) throw NoSuchObject();
  return OSXValue(value);
}

}  // namespace

Preferences prefs_of(unsigned char const* name, unsigned long length) {
  return Preferences(MakeName(name, length));
}

inspector_string string_of_prefs(unsigned char const* name, unsigned long length,
                                 Preferences const& preferences) {
  return string_of_value(keyedLookup(name, length, preferences));
}

boolean boolean_of_prefs(unsigned char const* name, unsigned long length,
                         Preferences const& preferences) {
  return boolean_of_value(keyedLookup(name, length, preferences));
}

integer integer_of_prefs(unsigned char const* name, unsigned long length,
                         Preferences const& preferences) {
  return integer_of_value(keyedLookup(name, length, preferences));
}

moment date_of_prefs(unsigned char const* name, unsigned long length,
                     Preferences const& preferences) {
  return date_of_value(keyedLookup(name, length, preferences));
}

OSXArray array_of_prefs(unsigned char const* name, unsigned long length,
                        Preferences const& preferences) {
  return array_of_value(keyedLookup(name, length, preferences));
}

OSXDictionary dictionary_of_prefs(unsigned char const* name, unsigned long length,
                                  Preferences const& preferences) {
  return dictionary_of_value(keyedLookup(name, length, preferences));
}

namespace {

Type<Preferences, kNoFingerprinting> preferences_type;
NamedGlobalProperty<Preferences> preference("preference", "preferences", prefs_of, nullptr);
NamedProperty<Preferences, inspector_string> string("string", "strings", string_of_prefs, nullptr);
NamedProperty<Preferences, boolean> boolean_value("boolean", "booleans", boolean_of_prefs, nullptr);
NamedProperty<Preferences, integer> integer_value("integer", "integers", integer_of_prefs, nullptr);
NamedProperty<Preferences, moment> date("date", "dates", date_of_prefs, nullptr);
NamedProperty<Preferences, OSXArray> array("array", "arrays", array_of_prefs, nullptr);
NamedProperty<Preferences, OSXDictionary> dictionary("dictionary", "dictionaries",
                                                     dictionary_of_prefs, nullptr);

}  // namespace
