// The DMI tables as a tree of devices, for machines whose firmware has no tree: the machine, and
// "rom" with the firmware's version.
#pragma once

#include "machine/live/registry_folders.h"

namespace machine::live {

// Absent where the tables say nothing.
Fact<SharedRegistryNode> FirmwareNodeAt(SharedRoot const& root, std::string_view path);

}  // namespace machine::live
