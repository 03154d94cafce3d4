#include <CoreFoundation/CFPreferences.h>

#include "frameworks/CoreFoundation/preference_files.h"
#include "frameworks/CoreFoundation/preference_paths.h"

namespace {

using User = PreferenceUser;
using Host = PreferenceHost;
using Application = PreferenceApplication;

constexpr PreferencePlace kSearchOrder[] = {
    {User::kCurrent, Host::kCurrent, Application::kOwn},
    {User::kCurrent, Host::kAny, Application::kOwn},
    {User::kCurrent, Host::kCurrent, Application::kAny},
    {User::kCurrent, Host::kAny, Application::kAny},
    {User::kAny, Host::kAny, Application::kOwn},
    {User::kAny, Host::kAny, Application::kAny},
};

bool IsAny(CFStringRef application) { return CFEqual(application, kCFPreferencesAnyApplication); }

// Null for the applications that have no files of their own.
CFStringRef Named(CFStringRef application) {
  bool const is_this = CFEqual(application, kCFPreferencesCurrentApplication);
  return is_this || IsAny(application) ? nullptr : application;
}

CFPropertyListRef CopyValueAt(PreferencePlace const& place, PreferencePaths& paths,
                              CFStringRef key) {
  auto const path = paths.PathOf(place);
  return path ? PreferenceFiles::Shared().CopyValue(*path, key) : nullptr;
}

}  // namespace

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID) {
  if (key == nullptr || applicationID == nullptr) return nullptr;
  PreferencePaths paths(Named(applicationID));
  for (PreferencePlace const& place : kSearchOrder) {
    if (CFPropertyListRef const value = CopyValueAt(place, paths, key)) return value;
  }
  return nullptr;
}

CFPropertyListRef CFPreferencesCopyValue(CFStringRef key, CFStringRef applicationID,
                                         CFStringRef userName, CFStringRef hostName) {
  if (key == nullptr || applicationID == nullptr) return nullptr;
  if (userName == nullptr || hostName == nullptr) return nullptr;
  bool const is_any_user = CFEqual(userName, kCFPreferencesAnyUser);
  bool const is_any_host = CFEqual(hostName, kCFPreferencesAnyHost);
  if (!is_any_user && !CFEqual(userName, kCFPreferencesCurrentUser)) return nullptr;
  if (!is_any_host && !CFEqual(hostName, kCFPreferencesCurrentHost)) return nullptr;
  PreferencePlace const place = {is_any_user ? User::kAny : User::kCurrent,
                                 is_any_host ? Host::kAny : Host::kCurrent,
                                 IsAny(applicationID) ? Application::kAny : Application::kOwn};
  PreferencePaths paths(Named(applicationID));
  return CopyValueAt(place, paths, key);
}
