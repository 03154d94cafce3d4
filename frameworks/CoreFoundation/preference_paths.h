// The files in which the preferences of an application may lie on the machine in use.
#pragma once

#include <CoreFoundation/CFString.h>

#include <memory>
#include <optional>
#include <string>

#include "frameworks/CoreFoundation/host_file_names.h"
#include "machine/fact.h"

enum class PreferenceUser { kCurrent, kAny };
enum class PreferenceHost { kCurrent, kAny };
enum class PreferenceApplication { kOwn, kAny };

struct PreferencePlace {
  PreferenceUser user;
  PreferenceHost host;  // of no meaning for any user
  PreferenceApplication application;
};

// For one search: what the machine tells is asked when it is first needed, and then kept.
class PreferencePaths {
 public:
  // Null for one without files of its own.
  explicit PreferencePaths(CFStringRef application);

  // Nothing where there can be no such file; the reason is announced.
  std::optional<std::string> PathOf(PreferencePlace const& place);

 private:
  bool HasHome();
  std::optional<std::string> FileByHost(std::string const& folder, std::string const& name);

  std::optional<std::string> name_;  // the application's, where a file can have it
  std::optional<machine::Fact<std::string>> home_, host_;
  std::shared_ptr<HostFileNames const> host_files_;
};
