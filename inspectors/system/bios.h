// The firmware, as the registry's device tree has it.
#pragma once

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"

struct bios {};

template <>
struct InspectorTypeName<bios> {
  static constexpr char const* kName = "bios";
};

bios Bios_of_world();
// No machine tells it: always `NoSuchObject`.
inspector_string Date_of(bios const& firmware);
inspector_string Version_of(bios const& firmware);
inspector_string AsString(bios const& firmware);

// The text of a property of a node of the device tree, by the node's path below the plane's root.
inspector_string KeyOfIORegPath(char const* key, char const* path);
