// The registry of drivers and devices, node by node, each in one of its planes.
#pragma once

#include <IOKit/IOKitLib.h>

#include "evaluator/plugin/exceptions.h"
#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "inspectors/plist/osx_dictionary.h"
#include "inspectors/plist/shared_reference.h"

class IOMasterPortFailed : public DebuggableException {};

// Asked for once in a process; after a failure the next call tries again.
mach_port_t TheMasterPort();

using registry_entry = SharedReference<io_registry_entry_t, IOObjectRelease>;

// The entry above all planes.
class registry_root {
 public:
  // Takes the reference over.
  explicit registry_root(io_registry_entry_t owned) : entry_(owned) {}

  io_registry_entry_t Entry() const { return entry_.Get(); }

 private:
  registry_entry entry_;
};

// An entry as it is seen in one plane.
class registry_node {
 public:
  // Takes the reference over. A plane's name counts with its first 127 bytes.
  registry_node(io_registry_entry_t owned, char const* plane);

  io_registry_entry_t Entry() const { return entry_.Get(); }
  char const* Plane() const { return plane_; }

 private:
  registry_entry entry_;
  io_name_t plane_;
};

template <>
struct InspectorTypeName<registry_root> {
  static constexpr char const* kName = "registryroot";
};
template <>
struct InspectorTypeName<registry_node> {
  static constexpr char const* kName = "registrynode";
};

// The direct children of a node, in its plane.
class OSXRegistryIterator {
 public:
  OSXRegistryIterator() = default;
  OSXRegistryIterator(OSXRegistryIterator const&) = delete;
  OSXRegistryIterator& operator=(OSXRegistryIterator const&) = delete;
  ~OSXRegistryIterator() { Release(); }

  registry_node First(registry_node const& node);
  registry_node Next(registry_node const& node);

 private:
  void Release();

  io_iterator_t iterator_ = IO_OBJECT_NULL;
};

// Whatever the registry refuses is `NoSuchObject`.

registry_root theroot();
// The first node of a plane.
registry_node chooseplane(char const* plane);
registry_node serviceplane(registry_root const& root);
registry_node powerplane(registry_root const& root);
registry_node devicetreeplane(registry_root const& root);
registry_node audioplane(registry_root const& root);
registry_node firewireplane(registry_root const& root);
registry_node usbplane(registry_root const& root);

// By plane, ":" and path. What has no plane in front names nothing, whatever the registry says.
registry_node node_by_path(unsigned char const* name, unsigned long length,
                           registry_root const& root);
// By a name below the node, which may be a path of several.
registry_node named_node_of(unsigned char const* name, unsigned long length,
                            registry_node const& node);

inspector_string name_of(registry_node const& node);
inspector_string class_name_of(registry_node const& node);
inspector_string path_of(registry_node const& node);
OSXDictionary dictionary_of(registry_node const& node);
OSXDictionary dictionary_of_root(registry_root const& root);
