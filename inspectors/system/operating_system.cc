#include "inspectors/system/operating_system.h"

#include <CoreFoundation/CFPriv.h>

#include <string>

#include "evaluator/plugin/exceptions.h"
#include "frame/inspector_strings.h"
#include "frame/prop.h"
#include "frame/registration.h"
#include "inspectors/system/process.h"
#include "portable_inspectors/version_text.h"

namespace {

// Everything that keeps a fact from being known means here that there is none.
template <class Function>
auto OrNoSuchObject(Function function) -> decltype(function()) {
  try {
    return function();
  } catch (...) {
    throw NoSuchObject();
  }
}

inspector_string ValueOf(OperatingSystem const& system, CFStringRef key) {
  return OrNoSuchObject(
      [&] { return CopyToInspectorString(ConstData(system.Info().GetStringValue(key))); });
}

}  // namespace

OSXVersionInfo OperatingSystem::Info() const {
  return OrNoSuchObject([] { return GetOSXVersionInfo(); });
}

OperatingSystem operating_system() { return {}; }

inspector_string AsString(OperatingSystem const& system) {
  return OrNoSuchObject([&] {
    inspector_string const name = name_of_operating_system(Of(), system);
    std::string const version = AsString(MacintoshPlatform::sys_version_of());
    return CopyToInspectorString(ConstData(name.start, name.length) + ConstData(" ") +
                                 ConstData(version));
  });
}

inspector_string name_of_operating_system(Of, OperatingSystem const& system) {
  return ValueOf(system, _kCFSystemVersionProductNameKey);
}

inspector_string build_number_of_operating_system(Of, OperatingSystem const& system) {
  return ValueOf(system, _kCFSystemVersionBuildVersionKey);
}

inspector_string BuildOf(Of, OperatingSystem const& system) {
  system.Info();
  return AsInspectorString(ConstData(OSXVersionInfo::msBuild));
}

inspector_string ArchOf(Of, OperatingSystem const& system) {
  system.Info();
  return AsInspectorString(ConstData(OSXVersionInfo::msArch));
}

inspector_version release_of_operating_system(Of, OperatingSystem const&) {
  return MacintoshPlatform::sys_version_of();
}

inspector_version Version_of(OperatingSystem const&) { return MacintoshPlatform::sys_version_of(); }

moment Boot_Time_of(OperatingSystem const&) {
  return OrNoSuchObject([] { return january_1_1970() + BootSecondsSince1970() * second_of(); });
}

time_interval Up_Time_of(OperatingSystem const& system) {
  return OrNoSuchObject([&] { return moment_now() - Boot_Time_of(system); });
}

boolean Windows_of(OperatingSystem const&) { return false; }
boolean Unix_of(OperatingSystem const&) { return false; }
boolean Mac_of(OperatingSystem const&) { return true; }

namespace {

Prop system_of_world("operating system", "operating systems", operating_system,
                     DependsOnlyOnParameters);
Cast<OperatingSystem, inspector_string> system_as_string("string", AsString, nullptr);
Prop name("name", "names", name_of_operating_system, DependsOnlyOnParameters);
Prop release("release", "releases", release_of_operating_system, nullptr);
Property<OperatingSystem, inspector_version> version("version", "versions", Version_of,
                                                     DependsOnlyOnParameters);
Prop build("build", "builds", BuildOf, nullptr);
Prop architecture("architecture", "architectures", ArchOf, nullptr);
Property<OperatingSystem, moment> boot_time("boot time", "boot times", Boot_Time_of, nullptr);
Property<OperatingSystem, time_interval> up_time("uptime", "uptimes", Up_Time_of, nullptr);
Property<OperatingSystem, boolean> windows("windows", "windowses", Windows_of,
                                           DependsOnlyOnParameters);
Property<OperatingSystem, boolean> is_unix("unix", "unixes", Unix_of, DependsOnlyOnParameters);
Property<OperatingSystem, boolean> mac("mac", "macs", Mac_of, DependsOnlyOnParameters);
Type<OperatingSystem, kNoFingerprinting> system_type;
Prop build_number("build number", "build numbers", build_number_of_operating_system, nullptr);

}  // namespace
