#include "inspectors/plist/osx_dictionary.h"

#include <CoreFoundation/CFPropertyList.h>

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "inspectors/plist/osx_dictionary_entry.h"
#include "inspectors/plist/osx_value.h"
#include "inspectors/plist/property_list_file.h"
#include "inspectors/plist/value_text.h"
#include "portable/core_foundation/strings.h"
#include "portable_inspectors/filesystem_object.h"

namespace {

// Not none.
SInt32 RequireCount(OSXDictionary const& dictionary) {
  auto const count = static_cast<SInt32>(CFDictionaryGetCount(dictionary.Dictionary()));
  if (count <= 0) throw NoSuchObject();
  return count;
}

std::unique_ptr<void const* []> MakePointers(SInt32 count) {
  return std::make_unique<void const*[]>(static_cast<std::size_t>(count));
}

OSXValue
    keyedLookup(unsigned char const* name, unsigned long length, OSXDictionary const& dictionary) {
  AutoCFString const key = MakeCFString(ConstData(name, length), kCFStringEncodingMacRoman);
  void const* const value = CFDictionaryGetValue(dictionary.Dictionary(), key.Get());
  if (value == nullptr) throw NoSuchObject();
  return OSXValue(value);
}

}  // namespace

inspector_string OSXDictionaryKeyIterator::First(OSXDictionary const& dictionary) {
  count_ = RequireCount(dictionary);
  index_ = 0;
  keys_ = MakePointers(count_);
  CFDictionaryGetKeysAndValues(dictionary.Dictionary(), keys_.get(), nullptr);
  return Next(dictionary);
}

inspector_string OSXDictionaryKeyIterator::Next(OSXDictionary const&) {
  if (index_ >= count_) throw NoSuchObject();
  return CFKeyValue(keys_[static_cast<std::size_t>(index_++)]);
}

OSXDictionaryEntry OSXDictionaryEntryIterator::First(OSXDictionary const& dictionary) {
  count_ = RequireCount(dictionary);
  index_ = 0;
  keys_ = MakePointers(count_);
  values_ = MakePointers(count_);
  CFDictionaryGetKeysAndValues(dictionary.Dictionary(), keys_.get(), values_.get());
  return Next(dictionary);
}

OSXDictionaryEntry OSXDictionaryEntryIterator::Next(OSXDictionary const&) {
  if (index_ >= count_) throw NoSuchObject();
  auto const place = static_cast<std::size_t>(index_++);
  return {static_cast<CFStringRef>(keys_[place]), values_[place]};
}

OSXDictionary dictionary_of_file(file const& file) {
  AutoCFData const data = ContentOf(file);
  try {
    return OSXDictionary(DictionaryCreateFromXMLData(data.Get(), kCFPropertyListImmutable));
  } catch (DictionaryCreateFromXMLDataFailed const&) {
    AnnounceMalformed(file, data.Get(), CFDictionaryGetTypeID());
    throw;
  }
}

integer size_of_dictionary(OSXDictionary const& dictionary) {
  return CFDictionaryGetCount(dictionary.Dictionary());
}

inspector_string string_of_dictionary(unsigned char const* name, unsigned long length,
                                      OSXDictionary const& dictionary) {
  return string_of_value(keyedLookup(name, length, dictionary));
}

inspector_string cstring_of_dictionary(unsigned char const* name, unsigned long length,
                                       OSXDictionary const& dictionary) {
  return cstring_of_value(keyedLookup(name, length, dictionary));
}

boolean boolean_of_dictionary(unsigned char const* name, unsigned long length,
                              OSXDictionary const& dictionary) {
  return boolean_of_value(keyedLookup(name, length, dictionary));
}

integer integer_of_dictionary(unsigned char const* name, unsigned long length,
                              OSXDictionary const& dictionary) {
  return integer_of_value(keyedLookup(name, length, dictionary));
}

moment date_of_dictionary(unsigned char const* name, unsigned long length,
                          OSXDictionary const& dictionary) {
  return date_of_value(keyedLookup(name, length, dictionary));
}

OSXArray array_of_dictionary(unsigned char const* name, unsigned long length,
                             OSXDictionary const& dictionary) {
  return array_of_value(keyedLookup(name, length, dictionary));
}

OSXDictionary dictionary_of_dictionary(unsigned char const* name, unsigned long length,
                                       OSXDictionary const& dictionary) {
  return dictionary_of_value(keyedLookup(name, length, dictionary));
}

namespace {

Type<OSXDictionary, kNoFingerprinting> dictionary_type;
Property<file, OSXDictionary> file_dictionary("dictionary", "dictionaries", dictionary_of_file,
                                              nullptr);
Property<OSXDictionary, integer> size("size", "sizes", size_of_dictionary, nullptr);
NamedProperty<OSXDictionary, inspector_string> data("data", "datas", string_of_dictionary, nullptr);
NamedProperty<OSXDictionary, inspector_string> string("string", "strings", string_of_dictionary,
                                                      nullptr);
NamedProperty<OSXDictionary, inspector_string> cstring("cstring", "cstrings", cstring_of_dictionary,
                                                       nullptr);
NamedProperty<OSXDictionary, boolean> boolean_value("boolean", "booleans", boolean_of_dictionary,
                                                    nullptr);
NamedProperty<OSXDictionary, integer> integer_value("integer", "integers", integer_of_dictionary,
                                                    nullptr);
NamedProperty<OSXDictionary, OSXArray> array("array", "arrays", array_of_dictionary, nullptr);
NamedProperty<OSXDictionary, OSXDictionary> dictionary("dictionary", "dictionaries",
                                                       dictionary_of_dictionary, nullptr);
NamedProperty<OSXDictionary, moment> date("date", "dates", date_of_dictionary, nullptr);
IteratedProperty<OSXDictionaryKeyIterator, OSXDictionary, inspector_string> keys("key", "keys",
                                                                                 nullptr);
IteratedProperty<OSXDictionaryEntryIterator, OSXDictionary, OSXDictionaryEntry> entries("entry",
                                                                                        "entries",
                                                                                        nullptr);

}  // namespace
