// Whether the machine has USB, and which.
#pragma once

#include <cstdint>

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "frame/inspector_version.h"

// What Gestalt says of it.
struct usb {
  std::uint32_t attributes;
};

template <>
struct InspectorTypeName<usb> {
  static constexpr char const* kName = "usb";
};

// `NoSuchObject` without USB.
usb usb_of();
inspector_version usb_version_of(usb const& bus);
boolean isoch_of(usb const& bus);
