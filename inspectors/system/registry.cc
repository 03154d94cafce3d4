#include "inspectors/system/registry.h"

#include <cstring>
#include <string_view>

#include "frame/dummy_inspector_type.h"
#include "frame/inspector_strings.h"
#include "frame/registration.h"

namespace {

// A name that is asked for may be a byte longer than a path that the registry tells.
constexpr std::size_t kMostNameBytes = 512;
constexpr std::size_t kMostPathBytes = sizeof(io_string_t) - 1;

void Require(kern_return_t status) {
  if (status != KERN_SUCCESS) throw NoSuchObject();
}

io_registry_entry_t Require(io_registry_entry_t entry) {
  if (entry == IO_OBJECT_NULL) throw NoSuchObject();
  return entry;
}

inspector_string CopyText(char const* text) { return CopyToInspectorString(ConstData(text)); }

OSXDictionary PropertiesOf(io_registry_entry_t entry) {
  CFMutableDictionaryRef properties = nullptr;
  Require(IORegistryEntryCreateCFProperties(entry, &properties, kCFAllocatorDefault, 0));
  if (properties == nullptr) throw NoSuchObject();
  AutoCFDictionary created;
  created.Seize(properties);
  return OSXDictionary(created.Get());
}

}  // namespace

mach_port_t TheMasterPort() {
  static mach_port_t const port = [] {
    mach_port_t found = MACH_PORT_NULL;
    if (IOMasterPort(MACH_PORT_NULL, &found) != KERN_SUCCESS) throw IOMasterPortFailed();
    return found;
  }();
  return port;
}

registry_node::registry_node(io_registry_entry_t owned, char const* plane)
    : entry_(owned), plane_() {
  std::string_view(plane).substr(0, sizeof(plane_) - 1).copy(plane_, sizeof(plane_) - 1);
}

registry_node OSXRegistryIterator::First(registry_node const& node) {
  Release();
  Require(IORegistryEntryCreateIterator(node.Entry(), node.Plane(), 0, &iterator_));
  return Next(node);
}

registry_node OSXRegistryIterator::Next(registry_node const& node) {
  return {Require(IOIteratorNext(iterator_)), node.Plane()};
}

void OSXRegistryIterator::Release() {
  if (iterator_ != IO_OBJECT_NULL) IOObjectRelease(iterator_);
  iterator_ = IO_OBJECT_NULL;
}

registry_root theroot() { return registry_root(Require(IORegistryGetRootEntry(TheMasterPort()))); }

registry_node chooseplane(char const* plane) {
  registry_root const root = theroot();
  io_registry_entry_t child = IO_OBJECT_NULL;
  Require(IORegistryEntryGetChildEntry(root.Entry(), plane, &child));
  return {child, plane};
}

registry_node serviceplane(registry_root const&) { return chooseplane(kIOServicePlane); }
registry_node powerplane(registry_root const&) { return chooseplane(kIOPowerPlane); }
registry_node devicetreeplane(registry_root const&) { return chooseplane(kIODeviceTreePlane); }
registry_node audioplane(registry_root const&) { return chooseplane(kIOAudioPlane); }
registry_node firewireplane(registry_root const&) { return chooseplane(kIOFireWirePlane); }
registry_node usbplane(registry_root const&) { return chooseplane(kIOUSBPlane); }

// A name that is too long names nothing, as the empty one.
registry_node node_by_path(unsigned char const* name, unsigned long length, registry_root const&) {
  char path[kMostNameBytes + 1] = {};
  if (length <= kMostNameBytes) std::memcpy(path, name, length);
  registry_entry const entry(Require(IORegistryEntryFromPath(TheMasterPort(), path)));
  char* const colon = std::strchr(path, ':');
  if (colon == nullptr || colon - path >= static_cast<std::ptrdiff_t>(sizeof(io_name_t))) {
    throw NoSuchObject();
  }
  *colon = '\0';
  Require(IOObjectRetain(entry.Get()));
  return {entry.Get(), path};
}

registry_node named_node_of(unsigned char const* name, unsigned long length,
                            registry_node const& node) {
  io_string_t path = {};
  Require(IORegistryEntryGetPath(node.Entry(), node.Plane(), path));
  std::size_t used = std::strlen(path);
  if (used == 0 || path[used - 1] != '/') {
    if (used == kMostPathBytes) throw NoSuchObject();
    path[used++] = '/';
  }
  if (length > kMostPathBytes - used) throw NoSuchObject();
  std::memcpy(path + used, name, length);
  path[used + length] = '\0';
  return {Require(IORegistryEntryFromPath(TheMasterPort(), path)), node.Plane()};
}

inspector_string name_of(registry_node const& node) {
  io_name_t name;
  Require(IORegistryEntryGetNameInPlane(node.Entry(), node.Plane(), name));
  return CopyText(name);
}

inspector_string class_name_of(registry_node const& node) {
  io_name_t name;
  Require(IOObjectGetClass(node.Entry(), name));
  return CopyText(name);
}

inspector_string path_of(registry_node const& node) {
  io_string_t path;
  Require(IORegistryEntryGetPath(node.Entry(), node.Plane(), path));
  return CopyText(path);
}

OSXDictionary dictionary_of(registry_node const& node) { return PropertiesOf(node.Entry()); }
OSXDictionary dictionary_of_root(registry_root const& root) { return PropertiesOf(root.Entry()); }

namespace {

Type<registry_root, kNoFingerprinting> root_type;
Type<registry_node, kNoFingerprinting> node_type;
GlobalProperty<registry_root> registry("iokit registry", "iokit registries", theroot, nullptr);
Property<registry_root, registry_node> service_plane("service plane", "service planes",
                                                     serviceplane, nullptr);
Property<registry_root, registry_node> power_plane("power plane", "power planes", powerplane,
                                                   nullptr);
Property<registry_root, registry_node> device_tree_plane("devicetree plane", "devicetree planes",
                                                         devicetreeplane, nullptr);
Property<registry_root, registry_node> audio_plane("audio plane", "audio planes", audioplane,
                                                   nullptr);
Property<registry_root, registry_node> firewire_plane("firewire plane", "firewire planes",
                                                      firewireplane, nullptr);
Property<registry_root, registry_node> usb_plane("usb plane", "usb planes", usbplane, nullptr);
NamedProperty<registry_root, registry_node> node_of_root("node", "nodes", node_by_path, nullptr);
NamedProperty<registry_node, registry_node> node_of_node("node", "nodes", named_node_of, nullptr);
IteratedProperty<OSXRegistryIterator, registry_node, registry_node> nodes("node", "nodes", nullptr);
Property<registry_node, inspector_string> name("name", "names", name_of, nullptr);
Property<registry_node, inspector_string> class_name("classname", "classnames", class_name_of,
                                                     nullptr);
Property<registry_node, inspector_string> path("path", "paths", path_of, nullptr);
Property<registry_node, OSXDictionary> dictionary("dictionary", "dictionaries", dictionary_of,
                                                  nullptr);
Property<registry_root, OSXDictionary> root_dictionary("dictionary", nullptr, dictionary_of_root,
                                                       nullptr);

}  // namespace
