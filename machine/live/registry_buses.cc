#include "machine/live/registry_buses.h"

#include <algorithm>
#include <cerrno>

#include "machine/live/registry_devices.h"

namespace machine::live {
namespace {

constexpr BusPlane kPlanes[] = {
    {"IOAudio", "sound", {{"/sys/class/sound", "sound", "card", false}, {}}},
    {"IOFireWire", "firewire", {{"/sys/bus/firewire/devices", "firewire", "fw", true}, {}}},
    {"IOPower",
     "power",
     {{"/sys/class/power_supply", "power_supply", "", false},
      {"/sys/class/wakeup", "wakeup", "", false}}},
    {"IOUSB", "usb", {{"/sys/bus/usb/devices", "usb", "usb", true}, {}}},
};

bool IsNameOnTop(DeviceGroup const& group, std::string_view name) {
  if (group.folder.empty() || !name.starts_with(group.prefix)) return false;
  std::string_view const number = name.substr(group.prefix.size());
  bool const is_number =
      !number.empty() && number.find_first_not_of("0123456789") == std::string_view::npos;
  return group.prefix.empty() || is_number;
}

bool IsInSubsystem(Root const& root, std::string const& device, std::string_view subsystem) {
  Fact<std::string> const found = SubsystemOf(root, device);
  return found && *found == subsystem;
}

// The path below the folder that holds the topmost device, where all from there on are of the
// group. Folders further up may have any name, so that each must be looked at.
std::optional<std::string> PathInGroup(Root const& root, DeviceGroup const& group,
                                       std::string const& device) {
  std::size_t top = group.is_nested ? kDeviceFolder.size() : device.rfind('/');
  for (std::size_t next; top != std::string::npos; top = next) {
    next = device.find('/', top + 1);
    std::string const folder = device.substr(0, next);
    if (IsNameOnTop(group, LastName(folder)) && IsInSubsystem(root, folder, group.subsystem)) {
      break;
    }
  }
  if (top == std::string::npos) return {};
  for (std::size_t end = device.find('/', top + 1); end != std::string::npos;) {
    end = device.find('/', end + 1);
    if (!IsInSubsystem(root, device.substr(0, end), group.subsystem)) return {};
  }
  return device.substr(top);
}

bool IsBelowDevices(std::string_view path) {
  return path.starts_with(kDeviceFolder) && path.substr(kDeviceFolder.size()).starts_with('/');
}

// Where a link of a group leads, if that is a device of the group under the same name.
std::optional<std::string> DeviceOnTop(Root const& root, DeviceGroup const& group,
                                       std::string_view name) {
  if (!IsNameOnTop(group, name)) return {};
  FileDescriptor const item = root.OpenItem(std::string(group.folder) + "/" + std::string(name));
  if (!item.is_open()) return {};
  std::string const path = root.PathOf(item);
  bool const is_device =
      IsBelowDevices(path) && PathInGroup(root, group, path) == "/" + std::string(name);
  return is_device ? std::optional(path) : std::nullopt;
}

// The devices on top, group by group.
class DevicesOnTop final : public RegistryChildren {
 public:
  DevicesOnTop(SharedRoot root, BusPlane const& plane)
      : root_(std::move(root)), plane_(plane), reader_(OpenGroup()) {}

  Fact<SharedRegistryNode> Next() override;

 private:
  EntryReader OpenGroup() const;

  SharedRoot const root_;
  BusPlane const& plane_;
  DeviceGroup const* group_ = plane_.groups;
  EntryReader reader_;
};

EntryReader DevicesOnTop::OpenGroup() const {
  std::string const path(group_->folder);
  FileDescriptor folder = root_->OpenFolder(path);
  Announce(path, folder.is_open() ? Outcome::kAnswered : OutcomeOf(errno));
  return {std::move(folder), DT_LNK};
}

Fact<SharedRegistryNode> DevicesOnTop::Next() {
  for (;;) {
    while (char const* const name = reader_.Next()) {
      if (auto device = DeviceOnTop(*root_, *group_, name)) {
        return MakeDevice(root_, *std::move(device));
      }
    }
    if (++group_ == std::end(plane_.groups) || group_->folder.empty()) break;
    reader_ = OpenGroup();
  }
  --group_;
  return SharedRegistryNode();
}

class FirstOfBus final : public RegistryNode {
 public:
  FirstOfBus(SharedRoot root, BusPlane const& plane) : root_(std::move(root)), plane_(plane) {}

  std::uint64_t Identity() const override {
    return IdentityOfPath("first of " + std::string(plane_.plane));
  }
  Fact<std::string> NameIn(std::string_view plane) const override {
    return IfHere(plane, plane_.name);
  }
  Fact<std::string> PathIn(std::string_view plane) const override { return IfHere(plane, "/"); }
  Fact<std::string> ClassName() const override { return std::string("IORegistryEntry"); }
  Fact<RecordDictionary> Properties() const override { return RecordDictionary(); }
  Fact<std::unique_ptr<RegistryChildren>> Children(std::string_view plane) const override {
    if (plane != plane_.plane) return NotIn(plane);
    return std::make_unique<DevicesOnTop>(root_, plane_);
  }

 private:
  Absence NotIn(std::string_view plane) const {
    return AnnounceAbsence(Outcome::kAbsent, std::string(plane) + ":", plane_.name);
  }
  Fact<std::string> IfHere(std::string_view plane, char const* text) const {
    if (plane != plane_.plane) return NotIn(plane);
    return std::string(text);
  }

  SharedRoot const root_;
  BusPlane const& plane_;
};

}  // namespace

BusPlane const* FindBusPlane(std::string_view plane) {
  auto const* found = std::ranges::find(kPlanes, plane, &BusPlane::plane);
  return found == std::end(kPlanes) ? nullptr : found;
}

std::optional<std::string> PathInBus(Root const& root, BusPlane const& plane,
                                     std::string const& device) {
  if (!IsBelowDevices(device)) return {};
  for (DeviceGroup const& group : plane.groups) {
    if (auto path = PathInGroup(root, group, device)) return path;
  }
  return {};
}

std::optional<std::string> DeviceOfPath(Root const& root, BusPlane const& plane,
                                        std::string_view path) {
  if (!path.starts_with('/')) return {};
  std::string_view const top = path.substr(1, path.find('/', 1) - 1);
  for (DeviceGroup const& group : plane.groups) {
    auto device = DeviceOnTop(root, group, top);
    if (!device) continue;
    *device += path.substr(1 + top.size());
    if (IsFolderItself(root, *device) && PathInGroup(root, group, *device) == path) return device;
  }
  return {};
}

bool IsNestedDevice(Root const& root, BusPlane const& plane, std::string const& device) {
  return IsInSubsystem(root, device, plane.groups[0].subsystem);
}

Fact<SharedRegistryNode> FirstNodeOf(SharedRoot const& root, BusPlane const& plane) {
  Fact<SharedRegistryNode> const device = DevicesOnTop(root, plane).Next();
  if (!device || *device == nullptr) {
    return Absence{Outcome::kAbsent, std::string(plane.groups[0].folder), "no device"};
  }
  return SharedRegistryNode(std::make_shared<FirstOfBus const>(root, plane));
}

}  // namespace machine::live
