#include "machine/live/registry_firmware.h"

#include <iterator>
#include <span>

#include "machine/live/registry_attributes.h"
#include "machine/live/text.h"

namespace machine::live {
namespace {

constexpr char kFolder[] = "/sys/class/dmi/id";

struct Row {
  char const* key;
  char const* attribute;
};

struct Description {
  char const* name;
  char const* path;
  std::span<Row const> rows;
};

constexpr Row kMachineRows[] = {
    {"manufacturer", "sys_vendor"}, {"model", "product_name"}, {"product-name", "product_name"}};
constexpr Row kRomRows[] = {
    {"release-date", "bios_date"}, {"vendor", "bios_vendor"}, {"version", "bios_version"}};
constexpr Description kNodes[] = {{"device-tree", "/", kMachineRows}, {"rom", "/rom", kRomRows}};
constexpr Description const& kMachine = kNodes[0];
constexpr Description const& kRom = kNodes[1];

RecordDictionary PropertiesOf(Root const& root, Description const& node) {
  RecordDictionary properties;
  for (Row const& row : node.rows) {
    std::string const path = std::string(kFolder) + "/" + row.attribute;
    Fact<std::string> const bytes = ReadAttribute(root, path, kLargestAttribute);
    if (!bytes) continue;
    std::string text(Trim(*bytes));
    if (text.empty()) continue;
    text.push_back('\0');
    properties.Add(row.key, RecordBytes{std::move(text)});
  }
  return properties;
}

bool HasProperties(Root const& root, Description const& node) {
  return !PropertiesOf(root, node).entries().empty();
}

SharedRegistryNode MakeNode(SharedRoot root, Description const& node);

class FirmwareNode final : public RegistryNode {
 public:
  FirmwareNode(SharedRoot root, Description const& node) : root_(std::move(root)), node_(node) {}

  std::uint64_t Identity() const override {
    return IdentityOfPath(std::string("DMI ") + node_.path);
  }
  Fact<std::string> NameIn(std::string_view plane) const override {
    return IfHere(plane, node_.name);
  }
  Fact<std::string> PathIn(std::string_view plane) const override {
    return IfHere(plane, node_.path);
  }
  Fact<std::string> ClassName() const override { return std::string("IOService"); }
  Fact<RecordDictionary> Properties() const override { return PropertiesOf(*root_, node_); }
  Fact<std::unique_ptr<RegistryChildren>> Children(std::string_view plane) const override {
    if (plane != kDeviceTreePlane) return NotIn(plane);
    bool const has_child = &node_ == &kMachine && HasProperties(*root_, kRom);
    return std::make_unique<SingleRegistryChild>(has_child ? MakeNode(root_, kRom) : nullptr);
  }

 private:
  Absence NotIn(std::string_view plane) const {
    return AnnounceAbsence(Outcome::kAbsent, kFolder, "not in plane " + std::string(plane));
  }
  Fact<std::string> IfHere(std::string_view plane, char const* text) const {
    if (plane != kDeviceTreePlane) return NotIn(plane);
    return std::string(text);
  }

  SharedRoot const root_;
  Description const& node_;
};

SharedRegistryNode MakeNode(SharedRoot root, Description const& node) {
  return std::make_shared<FirmwareNode const>(std::move(root), node);
}

}  // namespace

Fact<SharedRegistryNode> FirmwareNodeAt(SharedRoot const& root, std::string_view path) {
  bool const is_rom = path == kRom.path;
  bool const exists = is_rom ? HasProperties(*root, kRom)
                             : path == kMachine.path &&
                                   (HasProperties(*root, kMachine) || HasProperties(*root, kRom));
  if (!exists) return AnnounceAbsence(Outcome::kAbsent, kFolder, std::string(path));
  return MakeNode(root, is_rom ? kRom : kMachine);
}

}  // namespace machine::live
