// The registry of drivers and devices, node by node, each in one of its planes.
#pragma once

#include <IOKit/IOKitLib.h>

#include "evaluator/plugin/exceptions.h"
#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "inspectors/plist/osx_dictionary.h"
#include "inspectors/plist/ring_of_copies.h"

class IOMasterPortFailed : public DebuggableException {};

// Asked for once in a process; after a failure the next call tries again.
mach_port_t TheMasterPort();

// One reference to an entry of the registry, shared by all copies: the last of them gives it back.
class registry_entry {
 public:
  // Takes the reference over.
  explicit registry_entry(io_registry_entry_t owned) : entry_(owned) {}
  registry_entry(registry_entry const&) = default;
  registry_entry& operator=(registry_entry const&) = delete;
  ~registry_entry() {
    if (ring_.Next() == &ring_) IOObjectRelease(entry_);
  }

  io_registry_entry_t Entry() const { return entry_; }

 private:
  io_registry_entry_t entry_;
  RingOfCopies ring_;
};

// The entry above all planes.
class registry_root : public registry_entry {
 public:
  using registry_entry::registry_entry;
};

// An entry as it is seen in one plane.
class registry_node : public registry_entry {
 public:
  // Takes the reference over. A plane's name counts with its first 127 bytes.
  registry_node(io_registry_entry_t owned, char const* plane);

  char const* Plane() const { return plane_; }

 private:
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
