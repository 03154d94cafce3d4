// Planes whose nodes are the devices of one bus or class: "IOUSB", "IOFireWire", "IOPower" and
// "IOAudio". Above them is an entry that holds them together; what lies between two devices of a
// bus in the kernel's folders is left out.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "machine/live/registry_folders.h"

namespace machine::live {

struct DeviceGroup {
  std::string_view folder;     // of links to the devices
  std::string_view subsystem;  // whose devices they are
  std::string_view prefix;     // of those on top, before a number; empty: any name
  bool is_nested;              // whether a device may be plugged into another
};

struct BusPlane {
  std::string_view plane;
  char const* name;       // of its first node
  DeviceGroup groups[2];  // those that are nested are alone

  bool MayHoldOthers() const { return groups[0].is_nested; }
};

// Null where there is no such plane.
BusPlane const* FindBusPlane(std::string_view plane);

// The path in a plane of a device by its folder's path. Nothing where the device is not in it.
std::optional<std::string> PathInBus(Root const& root, BusPlane const& plane,
                                     std::string const& device);
// The other way round.
std::optional<std::string> DeviceOfPath(Root const& root, BusPlane const& plane,
                                        std::string_view path);

// Whether a folder within the folder of one of a plane's devices is another.
bool IsNestedDevice(Root const& root, BusPlane const& plane, std::string const& device);

// The entry above a plane's devices. Absent where there is no device.
Fact<SharedRegistryNode> FirstNodeOf(SharedRoot const& root, BusPlane const& plane);

}  // namespace machine::live
