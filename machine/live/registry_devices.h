// Devices as nodes of the registry: the folders of the kernel's device tree, which is the plane
// "IOService"; some of them are in the plane of a bus too.
#pragma once

#include <string>

#include "machine/live/registry_folders.h"

namespace machine::live {

// By the path of a folder below `kDeviceFolder`, or that folder itself, the plane's first node. It
// keeps nothing but this path.
SharedRegistryNode MakeDevice(SharedRoot root, std::string path);

// By its path in the plane.
Fact<SharedRegistryNode> DeviceAt(SharedRoot const& root, std::string_view path);

}  // namespace machine::live
