// What inspectors get from the command: its settings and its directory records. One object is all
// kinds of context, so that a cross-cast from one finds the others.
#pragma once

#include "evaluator/plugin/context.h"
#include "frame/settings.h"
#include "host/directory_keeper.h"
#include "host/settings.h"
#include "inspectors/activedirectory/directory/active_directory_inspector_context.h"

namespace gatotu::host {

// The settings as inspectors look them up.
class HostSettingStore final : public SettingStore<CFPreferenceSettingIterator> {
 public:
  explicit HostSettingStore(Settings const& settings) : settings_(settings) {}

  CFPreferenceSettingIterator FindItem(ConstData section, ConstData name) override;

 private:
  Settings const& settings_;
};

class HostContext final : public ActiveDirectoryInspectorContext, public InspectorSettingsContext {
 public:
  // `settings` outlives the context and stays as it is while an evaluation runs; `at_hand` is as
  // the keeper has it.
  HostContext(Settings const& settings, DirectoryOptions const& directory,
              machine::Machine const* at_hand)
      : InspectorSettingsContext(&StoreOf), store_(settings), directory_(directory, at_hand) {}

  DirectoryKeeper& Directory() const { return directory_; }

  // For any thread.
  bool AreLookupsEnabled() const override;
  std::uint32_t ComputerRefreshInterval() const override;
  std::uint32_t UserRefreshInterval() const override;
  bool FindComputerCache(FileLocation& out) const override;
  bool FindUserCache(std::string const& user_name, FileLocation& out) const override;
  bool ShouldStop() const override { return IsEvaluationToStop(); }

  // For the evaluating thread.
  ActiveDirectoryLocalComputer* LocalComputer() const override { return directory_.Computer(); }
  ActiveDirectoryLocalUser* LocalUser(std::string const& name,
                                      std::string const& domain) const override {
    return directory_.User({name, domain});
  }
  ActiveDirectoryLocalUser* LocalUserAt(std::uint32_t index) const override {
    return directory_.UserAt(index);
  }
  std::optional<ActiveDirectoryLocalUser*> FirstLocalUser(std::string const& name) const override {
    return directory_.ListedUser(name);
  }

 private:
  static SettingStore<CFPreferenceSettingIterator>& StoreOf(InspectorSettingsContext& context);

  HostSettingStore store_;
  mutable DirectoryKeeper directory_;  // whose records inspectors ask for, and so change
};

// The one that evaluations get, null for none of ours.
HostContext* CurrentHostContext();

// What the command presupposes where nothing else is set: strings are reported in UTF-8.
void AssignDefaults(Settings& settings);

}  // namespace gatotu::host
