// What inspectors get from the command: its settings. One object is both kinds of context, so
// that the frame's cross-cast from the one finds the other.
#pragma once

#include "evaluator/plugin/context.h"
#include "frame/settings.h"
#include "host/settings.h"

namespace gatotu::host {

// The settings as inspectors look them up.
class HostSettingStore final : public SettingStore<CFPreferenceSettingIterator> {
 public:
  explicit HostSettingStore(Settings const& settings) : settings_(settings) {}

  CFPreferenceSettingIterator FindItem(ConstData section, ConstData name) override;

 private:
  Settings const& settings_;
};

class HostContext final : public InspectorContext, public InspectorSettingsContext {
 public:
  // `settings` outlives the context and stays as it is while an evaluation runs.
  explicit HostContext(Settings const& settings)
      : InspectorSettingsContext(&StoreOf), store_(settings) {}

 private:
  static SettingStore<CFPreferenceSettingIterator>& StoreOf(InspectorSettingsContext& context);

  HostSettingStore store_;
};

// What the command presupposes where nothing else is set: strings are reported in UTF-8.
void AssignDefaults(Settings& settings);

}  // namespace gatotu::host
