#include "inspectors/plist/osx_dictionary_entry.h"

#include "frame/registration.h"
#include "inspectors/plist/value_text.h"

inspector_string key_of_entry(OSXDictionaryEntry const& entry) { return CFKeyValue(entry.Key()); }

OSXValue value_of_entry(OSXDictionaryEntry const& entry) { return OSXValue(entry.Object()); }

namespace {

Type<OSXDictionaryEntry, kNoFingerprinting> entry_type;
Property<OSXDictionaryEntry, inspector_string> key("key", "keys", key_of_entry, nullptr);
Property<OSXDictionaryEntry, OSXValue> value("value", "values", value_of_entry, nullptr);

}  // namespace
