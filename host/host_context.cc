#include "host/host_context.h"

#include <string_view>

namespace gatotu::host {
namespace {

std::string_view View(ConstData data) {
  return {reinterpret_cast<char const*>(data.begin), data.Length()};
}

}  // namespace

CFPreferenceSettingIterator HostSettingStore::FindItem(ConstData section, ConstData name) {
  std::string const* const value = settings_.Find(View(section), View(name));
  return value == nullptr ? End() : CFPreferenceSettingIterator(*value);
}

SettingStore<CFPreferenceSettingIterator>& HostContext::StoreOf(InspectorSettingsContext& context) {
  return static_cast<HostContext&>(context).store_;
}

void AssignDefaults(Settings& settings) {
  settings.Assign("Client", "_KPXClient_DeploymentEncoding_IANAName", "UTF-8");
}

}  // namespace gatotu::host
