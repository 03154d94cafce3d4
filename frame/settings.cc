#include "frame/settings.h"

#include <cassert>

ConstData CFPreferenceSettingIterator::Value() const {
  assert(value_ != nullptr);
  return ConstData(reinterpret_cast<unsigned char const*>(value_->data()), value_->size());
}

SettingStore<CFPreferenceSettingIterator>& InspectorSettingsContext::GetInspectorSettingStore() {
  if (store_ == nullptr) throw InspectorSettingsContextError();
  return store_(*this);
}

ConstData ClientSettingSection() { return ConstData("Client"); }
