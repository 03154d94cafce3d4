// The Gestalt selectors that inspectors ask for, under their characters' meaning in the platform's
// published list.
#pragma once

#include <cstdint>

#include "frame/combine.h"

enum GestaltSelector : std::uint32_t {
  kGestaltPhysicalRAMSizeInMegabytes = Combine('r', 'a', 'm', 'm'),
  kGestaltLogicalRAMSize = Combine('l', 'r', 'a', 'm'),
  kGestaltSystemArchitecture = Combine('s', 'y', 's', 'a'),
  kGestaltVirtualMemory = Combine('v', 'm', ' ', ' '),
  kGestaltQuickDrawVersion = Combine('q', 'd', ' ', ' '),
  kGestaltROMVersion = Combine('r', 'o', 'm', 'v'),
  kGestaltMachineType = Combine('m', 'a', 'c', 'h'),
  kGestaltKeyboardType = Combine('k', 'b', 'd', ' '),
  kGestaltNuBusSlots = Combine('s', 'l', 't', 'c'),
  kGestaltNameRegistryVersion = Combine('n', 'r', 'e', 'g'),
  kGestaltClockSpeedInMegahertz = Combine('m', 'c', 'l', 'k'),
  kGestaltMachineName = Combine('m', 'n', 'a', 'm'),
  kGestaltProcessorType = Combine('c', 'p', 'u', 't'),
  kGestaltProcessorFamily = Combine('c', 'p', 'u', 'f'),
};
