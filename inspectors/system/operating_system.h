// The system that runs on the machine.
#pragma once

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "frame/inspector_version.h"
#include "frame/of.h"
#include "portable_inspectors/moment.h"
#include "portable_inspectors/system_version.h"

struct OperatingSystem {
  // `NoSuchObject` when the machine tells nothing of its system.
  OSXVersionInfo Info() const;
};

template <>
struct InspectorTypeName<OperatingSystem> {
  static constexpr char const* kName = "operating system";
};

OperatingSystem operating_system();
// The name and the version, with a blank between.
inspector_string AsString(OperatingSystem const& system);
inspector_string name_of_operating_system(Of, OperatingSystem const& system);
inspector_string build_number_of_operating_system(Of, OperatingSystem const& system);
// These two point to text in static storage.
inspector_string BuildOf(Of, OperatingSystem const& system);
inspector_string ArchOf(Of, OperatingSystem const& system);
inspector_version release_of_operating_system(Of, OperatingSystem const& system);
inspector_version Version_of(OperatingSystem const& system);
moment Boot_Time_of(OperatingSystem const& system);
time_interval Up_Time_of(OperatingSystem const& system);
// On this platform a system is a Mac and nothing else, a Unix neither.
boolean Windows_of(OperatingSystem const& system);
boolean Unix_of(OperatingSystem const& system);
boolean Mac_of(OperatingSystem const& system);
