// The registry of drivers and devices: one graph of nodes, seen through several planes, in each of
// which it is a tree ("IOService", "IODeviceTree", "IOUSB", "IOPower", "IOAudio", "IOFireWire").
// Read lazily: a node's properties when they are asked for, children one by one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "machine/capture/record.h"
#include "machine/export.h"
#include "machine/fact.h"

namespace machine {

class RegistryNode;
using SharedRegistryNode = std::shared_ptr<RegistryNode const>;

// The children of a node, in the registry's order. For one thread.
class MACHINE_API RegistryChildren {
 public:
  virtual ~RegistryChildren() = default;
  // Null after the last. What vanishes meanwhile is left out.
  virtual Fact<SharedRegistryNode> Next() = 0;
};

// One child, or none where it is null.
class SingleRegistryChild final : public RegistryChildren {
 public:
  explicit SingleRegistryChild(SharedRegistryNode child) : child_(std::move(child)) {}
  Fact<SharedRegistryNode> Next() override { return std::move(child_); }

 private:
  SharedRegistryNode child_;
};

// An entry of the registry as it was reached: it keeps no file open, and answers with absences once
// the device is gone. Immutable, so threads may share one.
class MACHINE_API RegistryNode {
 public:
  virtual ~RegistryNode() = default;

  // The same for every way that leads to one entry, and for no other entry.
  virtual std::uint64_t Identity() const = 0;
  // Absent where the entry is not in that plane.
  virtual Fact<std::string> NameIn(std::string_view plane) const = 0;
  // "/name@location/..." from the plane's root, whose own path is "/".
  virtual Fact<std::string> PathIn(std::string_view plane) const = 0;
  virtual Fact<std::string> ClassName() const = 0;
  virtual Fact<RecordDictionary> Properties() const = 0;
  virtual Fact<std::unique_ptr<RegistryChildren>> Children(std::string_view plane) const = 0;
};

class MACHINE_API RegistrySource {
 public:
  virtual ~RegistrySource() = default;
  // The entry above all planes. Its children in a plane are at most one, the plane's first node.
  virtual Fact<SharedRegistryNode> Root() const;
  // A path as `PathIn` gives it; locations may be left out where the name alone tells.
  virtual Fact<SharedRegistryNode> NodeAt(std::string_view plane, std::string_view path) const;
};

}  // namespace machine
