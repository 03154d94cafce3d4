#include "host/host_context.h"

#include <string_view>

#include "evaluator/plugin/entry_points.h"

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

bool HostContext::AreLookupsEnabled() const { return directory_.Options().is_enabled; }

std::uint32_t HostContext::ComputerRefreshInterval() const {
  return directory_.Options().computer_interval;
}

std::uint32_t HostContext::UserRefreshInterval() const {
  return directory_.Options().user_interval;
}

bool HostContext::FindComputerCache(FileLocation& out) const {
  DirectoryCache const* const cache = directory_.Cache();
  return cache != nullptr && cache->FindComputerFile(out);
}

bool HostContext::FindUserCache(std::string const& user_name, FileLocation& out) const {
  DirectoryCache const* const cache = directory_.Cache();
  return cache != nullptr && cache->FindUserFile(user_name, out);
}

HostContext* CurrentHostContext() {
  return dynamic_cast<HostContext*>(Get_Generic_Inspector_Context());
}

void AssignDefaults(Settings& settings) {
  settings.Assign("Client", "_KPXClient_DeploymentEncoding_IANAName", "UTF-8");
}

}  // namespace gatotu::host
