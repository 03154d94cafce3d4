#include "machine/live/registry.h"

#include "machine/live/registry_buses.h"
#include "machine/live/registry_device_tree.h"
#include "machine/live/registry_devices.h"

namespace machine::live {
namespace {

constexpr std::string_view kPlanes[] = {kServicePlane, "IOPower",    kDeviceTreePlane,
                                        "IOAudio",     "IOFireWire", "IOUSB"};

Fact<SharedRegistryNode> NodeInPlane(SharedRoot const& root, std::string_view plane,
                                     std::string_view path) {
  if (plane == kServicePlane) return DeviceAt(root, path);
  if (plane == kDeviceTreePlane) return DeviceTreeNodeAt(root, path);
  BusPlane const* const bus = FindBusPlane(plane);
  if (bus == nullptr) return AnnounceAbsence(Outcome::kAbsent, std::string(plane) + ":");
  if (path == "/") return FirstNodeOf(root, *bus);
  auto device = DeviceOfPath(*root, *bus, path);
  if (!device) {
    return AnnounceAbsence(Outcome::kAbsent, std::string(plane) + ":" + std::string(path));
  }
  return MakeDevice(root, *std::move(device));
}

// Above all planes. It is in each of them, and a path leads to it in none.
class Above final : public RegistryNode {
 public:
  explicit Above(SharedRoot root) : root_(std::move(root)) {}

  std::uint64_t Identity() const override { return IdentityOfPath("registry"); }
  Fact<std::string> NameIn(std::string_view) const override { return std::string("Root"); }
  Fact<std::string> PathIn(std::string_view plane) const override {
    return AnnounceAbsence(Outcome::kAbsent, std::string(plane) + ":", "the registry's root");
  }
  Fact<std::string> ClassName() const override { return std::string("IORegistryEntry"); }
  Fact<RecordDictionary> Properties() const override;
  Fact<std::unique_ptr<RegistryChildren>> Children(std::string_view plane) const override {
    Fact<SharedRegistryNode> first = NodeInPlane(root_, plane, "/");
    if (!first) return first.absence();
    return std::make_unique<SingleRegistryChild>(*std::move(first));
  }

 private:
  SharedRoot const root_;
};

// The planes there are, each under its own name.
Fact<RecordDictionary> Above::Properties() const {
  RecordDictionary properties, planes;
  for (std::string_view const plane : kPlanes) {
    if (NodeInPlane(root_, plane, "/")) planes.Add(std::string(plane), std::string(plane));
  }
  if (!planes.entries().empty()) properties.Add("IORegistryPlanes", std::move(planes));
  return properties;
}

}  // namespace

Fact<SharedRegistryNode> Registry::Root() const {
  return SharedRegistryNode(std::make_shared<Above const>(root_));
}

Fact<SharedRegistryNode> Registry::NodeAt(std::string_view plane, std::string_view path) const {
  return NodeInPlane(root_, plane, path);
}

}  // namespace machine::live
