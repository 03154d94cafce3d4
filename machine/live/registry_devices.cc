#include "machine/live/registry_devices.h"

#include <cerrno>

#include "machine/live/registry_attributes.h"
#include "machine/live/registry_buses.h"

namespace machine::live {
namespace {

// Of the devices on the USB, interfaces have ":" in their names: "1-2:1.0".
std::string ClassOf(std::string_view subsystem, std::string_view name) {
  if (subsystem == "pci") return "IOPCIDevice";
  if (subsystem == "block") return "IOMedia";
  if (subsystem == "net") return "IONetworkInterface";
  if (subsystem == "platform") return "IOPlatformDevice";
  if (subsystem != "usb") return "IOService";
  return name.find(':') == std::string_view::npos ? "IOUSBDevice" : "IOUSBInterface";
}

class Device final : public RegistryNode {
 public:
  Device(SharedRoot root, std::string path) : root_(std::move(root)), path_(std::move(path)) {}

  std::uint64_t Identity() const override { return IdentityOfPath(path_); }
  Fact<std::string> NameIn(std::string_view plane) const override;
  Fact<std::string> PathIn(std::string_view plane) const override;
  Fact<std::string> ClassName() const override;
  Fact<RecordDictionary> Properties() const override;
  Fact<std::unique_ptr<RegistryChildren>> Children(std::string_view plane) const override;

 private:
  Absence NotIn(std::string_view plane) const {
    return AnnounceAbsence(Outcome::kAbsent, path_, "not in plane " + std::string(plane));
  }
  Absence Gone() const { return AnnounceAbsence(Outcome::kAbsent, path_); }
  // "" where the device has none, an absence where there is no device.
  Fact<std::string> Subsystem() const;

  SharedRoot const root_;
  std::string const path_;
};

// The folders in a device's folder; in the plane of a bus only those that are devices of it.
class FoldersOfDevice final : public RegistryChildren {
 public:
  FoldersOfDevice(SharedRoot root, std::string path, FileDescriptor folder, BusPlane const* plane)
      : root_(std::move(root)),
        path_(std::move(path)),
        reader_(std::move(folder), DT_DIR),
        plane_(plane) {}

  Fact<SharedRegistryNode> Next() override {
    while (char const* const name = reader_.Next()) {
      std::string device = path_ + "/" + name;
      bool const is_wanted = plane_ == nullptr || IsNestedDevice(*root_, *plane_, device);
      if (is_wanted) return MakeDevice(root_, std::move(device));
    }
    return SharedRegistryNode();
  }

 private:
  SharedRoot const root_;
  std::string const path_;
  EntryReader reader_;
  BusPlane const* const plane_;
};

Fact<std::string> Device::NameIn(std::string_view plane) const {
  if (plane == kServicePlane) return std::string(LastName(path_));
  Fact<std::string> const path = PathIn(plane);
  if (!path) return path;
  return std::string(LastName(*path));
}

Fact<std::string> Device::PathIn(std::string_view plane) const {
  if (plane == kServicePlane) {
    if (!IsFolderItself(*root_, path_)) return Gone();
    Announce(path_, Outcome::kAnswered);
    return path_ == kDeviceFolder ? "/" : path_.substr(kDeviceFolder.size());
  }
  BusPlane const* const bus = FindBusPlane(plane);
  auto path = bus == nullptr ? std::nullopt : PathInBus(*root_, *bus, path_);
  if (!path) return NotIn(plane);
  return *std::move(path);
}

Fact<std::string> Device::Subsystem() const {
  Fact<std::string> subsystem = SubsystemOf(*root_, path_);
  if (subsystem) return subsystem;
  if (!IsFolderItself(*root_, path_)) return Gone();
  return std::string();
}

Fact<std::string> Device::ClassName() const {
  Fact<std::string> const subsystem = Subsystem();
  if (!subsystem) return subsystem;
  return ClassOf(*subsystem, LastName(path_));
}

Fact<RecordDictionary> Device::Properties() const {
  Fact<std::string> const subsystem = Subsystem();
  if (!subsystem) return subsystem.absence();
  return PropertiesOfDevice(*root_, path_, *subsystem);
}

Fact<std::unique_ptr<RegistryChildren>> Device::Children(std::string_view plane) const {
  BusPlane const* const bus = FindBusPlane(plane);
  if (bus == nullptr && plane != kServicePlane) return NotIn(plane);
  if (bus != nullptr && !PathInBus(*root_, *bus, path_)) return NotIn(plane);
  if (bus != nullptr && !bus->MayHoldOthers())
    return std::make_unique<SingleRegistryChild>(nullptr);
  FileDescriptor folder = root_->OpenFolder(path_);
  if (!folder.is_open()) return AnnounceError(errno, path_);
  Announce(path_, Outcome::kAnswered);
  return std::make_unique<FoldersOfDevice>(root_, path_, std::move(folder), bus);
}

}  // namespace

SharedRegistryNode MakeDevice(SharedRoot root, std::string path) {
  return std::make_shared<Device const>(std::move(root), std::move(path));
}

Fact<SharedRegistryNode> DeviceAt(SharedRoot const& root, std::string_view path) {
  std::string folder(kDeviceFolder);
  if (path != "/") folder += path;
  if (!path.starts_with('/') || !IsFolderItself(*root, folder)) {
    return AnnounceAbsence(Outcome::kAbsent, std::move(folder));
  }
  return MakeDevice(root, std::move(folder));
}

}  // namespace machine::live
