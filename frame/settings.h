// The host's settings as inspectors see them: sections of named items.
#pragma once

#include <string>

#include "evaluator/plugin/export.h"
#include "portable/const_data.h"

// Stands on an item of a store, or at its end. Owned by value; the item's text belongs to the
// store and lasts until the store is changed.
class GATOTU_API CFPreferenceSettingIterator {
 public:
  CFPreferenceSettingIterator() = default;
  // `value` outlives the iterator.
  explicit CFPreferenceSettingIterator(std::string const& value) : value_(&value) {}

  // Not at the end.
  ConstData Value() const;

  friend bool operator==(CFPreferenceSettingIterator, CFPreferenceSettingIterator) = default;

 private:
  std::string const* value_ = nullptr;
};

template <class Iterator>
class SettingStore {
 public:
  virtual ~SettingStore() = default;

  // The end iterator where there is no such item.
  virtual Iterator FindItem(ConstData section, ConstData name) = 0;
  Iterator End() const { return Iterator(); }
};

class GATOTU_API InspectorSettingsContextError {};

// A host context that has settings. It stands beside `InspectorContext` in one object of the
// host's and is reached from there by a cross-cast.
class GATOTU_API InspectorSettingsContext {
 public:
  using StoreFunction = SettingStore<CFPreferenceSettingIterator>& (*)(InspectorSettingsContext&);

  explicit InspectorSettingsContext(StoreFunction store) : store_(store) {}
  virtual ~InspectorSettingsContext() = default;

  // Throws `InspectorSettingsContextError` where the context has no store function.
  SettingStore<CFPreferenceSettingIterator>& GetInspectorSettingStore();

 private:
  StoreFunction store_;  // may be null
};

// The section of the client's own settings, "Client".
ConstData ClientSettingSection();
