// The firmware's tree of devices, the plane "IODeviceTree": as the firmware handed it to the
// kernel, else the little of it that the DMI tables of other machines tell. All values are data,
// texts with the NUL at their end.
#pragma once

#include "machine/live/registry_folders.h"

namespace machine::live {

// By its path in the plane. What stands behind "@" in a name may be left out where one node alone
// has the name.
Fact<SharedRegistryNode> DeviceTreeNodeAt(SharedRoot const& root, std::string_view path);

}  // namespace machine::live
