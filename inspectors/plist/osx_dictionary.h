// A dictionary of a property list.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "portable/core_foundation/auto_cf.h"
#include "portable/core_foundation/objects.h"
#include "portable_inspectors/moment.h"

class OSXArray;
class OSXDictionaryEntry;
class file;

// Owns one reference, which keeps everything inside the dictionary.
class OSXDictionary {
 public:
  // One reference more.
  explicit OSXDictionary(CFDictionaryRef dictionary) : dictionary_(Duplicate(dictionary)) {}
  // The reference that the handle owns.
  explicit OSXDictionary(AutoCFDictionary dictionary) : dictionary_(std::move(dictionary)) {}
  OSXDictionary(OSXDictionary const& other) : dictionary_(Duplicate(other.Dictionary())) {}
  OSXDictionary& operator=(OSXDictionary const& other) {
    dictionary_ = Duplicate(other.Dictionary());
    return *this;
  }

  CFDictionaryRef Dictionary() const { return dictionary_.Get(); }

 private:
  AutoCFDictionary dictionary_;
};

template <>
struct InspectorTypeName<OSXDictionary> {
  static constexpr char const* kName = "dictionary";
};

// The iterators hold a snapshot of the pointers, in the dictionary's own order; the objects are
// the dictionary's.

class OSXDictionaryKeyIterator {
 public:
  inspector_string First(OSXDictionary const& dictionary);
  inspector_string Next(OSXDictionary const& dictionary);

 private:
  SInt32 index_ = 0;
  SInt32 count_ = 0;
  std::unique_ptr<void const*[]> keys_;
};

class OSXDictionaryEntryIterator {
 public:
  OSXDictionaryEntry First(OSXDictionary const& dictionary);
  OSXDictionaryEntry Next(OSXDictionary const& dictionary);

 private:
  SInt32 index_ = 0;
  SInt32 count_ = 0;
  std::unique_ptr<void const*[]> values_;
  std::unique_ptr<void const*[]> keys_;
};

// `NoSuchObject` when it cannot be read, `DictionaryCreateFromXMLDataFailed` when it is no property
// list or one of another kind.
OSXDictionary dictionary_of_file(file const& file);

integer size_of_dictionary(OSXDictionary const& dictionary);

// The value of a key, which is Mac Roman and counts by its exact letters, converted as
// `osx_value.h` says; `NoSuchObject` when there is no such key.
inspector_string string_of_dictionary(unsigned char const* name, unsigned long length,
                                      OSXDictionary const& dictionary);
inspector_string cstring_of_dictionary(unsigned char const* name, unsigned long length,
                                       OSXDictionary const& dictionary);
boolean boolean_of_dictionary(unsigned char const* name, unsigned long length,
                              OSXDictionary const& dictionary);
integer integer_of_dictionary(unsigned char const* name, unsigned long length,
                              OSXDictionary const& dictionary);
moment date_of_dictionary(unsigned char const* name, unsigned long length,
                          OSXDictionary const& dictionary);
OSXArray array_of_dictionary(unsigned char const* name, unsigned long length,
                             OSXDictionary const& dictionary);
OSXDictionary dictionary_of_dictionary(unsigned char const* name, unsigned long length,
                                       OSXDictionary const& dictionary);
