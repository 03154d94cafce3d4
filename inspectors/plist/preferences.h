// The preferences of an application by its identifier, a value at a time.
#pragma once

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "inspectors/plist/osx_array.h"
#include "inspectors/plist/osx_dictionary.h"
#include "inspectors/plist/shared_reference.h"
#include "portable/core_foundation/auto_cf.h"
#include "portable_inspectors/moment.h"

// An identifier and no more: there is one for every name, whether or not such an application is
// known.
class Preferences {
 public:
  explicit Preferences(AutoCFString application) : application_(application.Release()) {}

  CFStringRef Application() const { return application_.Get(); }

 private:
  SharedReference<CFStringRef> application_;
};

template <>
struct InspectorTypeName<Preferences> {
  static constexpr char const* kName = "preference";
};

// Names and keys are Mac Roman.
Preferences prefs_of(unsigned char const* name, unsigned long length);

// The current user's value of a key, asked for anew each time and converted as `osx_value.h` says.
// `NoSuchObject` when there is none.
inspector_string string_of_prefs(unsigned char const* name, unsigned long length,
                                 Preferences const& preferences);
boolean boolean_of_prefs(unsigned char const* name, unsigned long length,
                         Preferences const& preferences);
integer integer_of_prefs(unsigned char const* name, unsigned long length,
                         Preferences const& preferences);
moment date_of_prefs(unsigned char const* name, unsigned long length,
                     Preferences const& preferences);
OSXArray array_of_prefs(unsigned char const* name, unsigned long length,
                        Preferences const& preferences);
OSXDictionary dictionary_of_prefs(unsigned char const* name, unsigned long length,
                                  Preferences const& preferences);
