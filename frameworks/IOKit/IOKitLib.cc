#include <IOKit/IOKitLib.h>

#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "frameworks/CoreFoundation/recorded_facts.h"
#include "frameworks/IOKit/object_table.h"
#include "machine/machine.h"

namespace {

using machine::Fact;
using machine::Outcome;
using machine::SharedRegistryNode;

constexpr mach_port_t kMasterPort = 0x0B03;

RegistryObjectTable& Objects() { return RegistryObjectTable::Instance(); }

IOReturn CodeOf(machine::Absence const& absence) {
  switch (absence.reason) {
    case Outcome::kAnswered:
      break;
    case Outcome::kAbsent:
      return kIOReturnNotFound;
    case Outcome::kNotSupported:
      return kIOReturnUnsupported;
    case Outcome::kPermissionRefused:
      return kIOReturnNotPrivileged;
    case Outcome::kMalformed:
      return kIOReturnError;
    case Outcome::kTimedOut:
      return kIOReturnTimeout;
  }
  return kIOReturnError;
}

template <std::size_t size>
IOReturn PutText(Fact<std::string> const& text, char (&place)[size]) {
  if (!text) return CodeOf(text.absence());
  if (text->size() >= size) return kIOReturnNoSpace;
  std::memcpy(place, text->c_str(), text->size() + 1);
  return KERN_SUCCESS;
}

template <typename Array>
Array& AsArray(char* place) {
  return *reinterpret_cast<Array*>(place);
}

io_object_t AddNode(SharedRegistryNode node) { return Objects().Add({std::move(node), nullptr}); }

// The next child, null after the last or when the machine fails half way.
SharedRegistryNode TakeNext(machine::RegistryChildren& children) {
  Fact<SharedRegistryNode> next = children.Next();
  return next ? *std::move(next) : nullptr;
}

}  // namespace

kern_return_t IOMasterPort(mach_port_t, mach_port_t* masterPort) {
  *masterPort = kMasterPort;
  return KERN_SUCCESS;
}

kern_return_t IOObjectRetain(io_object_t object) {
  return Objects().Retain(object) ? KERN_SUCCESS : kIOReturnBadArgument;
}

kern_return_t IOObjectRelease(io_object_t object) {
  return Objects().Release(object) ? KERN_SUCCESS : kIOReturnBadArgument;
}

UInt32 IOObjectGetUserRetainCount(io_object_t object) { return Objects().CountOf(object); }

Boolean IOObjectIsEqualTo(io_object_t object, io_object_t anObject) {
  if (object == anObject) return true;
  SharedRegistryNode const left = Objects().Find(object).node;
  SharedRegistryNode const right = Objects().Find(anObject).node;
  return left != nullptr && right != nullptr && left->Identity() == right->Identity();
}

kern_return_t IOObjectGetClass(io_object_t object, io_name_t className) {
  SharedRegistryNode const node = Objects().Find(object).node;
  if (node == nullptr) return kIOReturnBadArgument;
  return PutText(node->ClassName(), AsArray<io_name_t>(className));
}

io_registry_entry_t IORegistryGetRootEntry(mach_port_t) {
  Fact<SharedRegistryNode> root = machine::CurrentMachine().Registry().Root();
  return root ? AddNode(*std::move(root)) : IO_OBJECT_NULL;
}

io_registry_entry_t IORegistryEntryFromPath(mach_port_t, char const* path) {
  std::string_view const text = path;
  std::size_t const colon = text.find(':');
  if (colon == std::string_view::npos) return IO_OBJECT_NULL;
  Fact<SharedRegistryNode> node =
      machine::CurrentMachine().Registry().NodeAt(text.substr(0, colon), text.substr(colon + 1));
  return node ? AddNode(*std::move(node)) : IO_OBJECT_NULL;
}

kern_return_t IORegistryEntryGetChildEntry(io_registry_entry_t entry, char const* plane,
                                           io_registry_entry_t* child) {
  SharedRegistryNode const node = Objects().Find(entry).node;
  if (node == nullptr) return kIOReturnBadArgument;
  auto const children = node->Children(plane);
  if (!children) return CodeOf(children.absence());
  SharedRegistryNode first = TakeNext(**children);
  if (first == nullptr) return kIOReturnNoDevice;
  *child = AddNode(std::move(first));
  return KERN_SUCCESS;
}

kern_return_t IORegistryEntryCreateIterator(io_registry_entry_t entry, char const* plane,
                                            IOOptionBits options, io_iterator_t* iterator) {
  if (options != 0) return kIOReturnUnsupported;
  SharedRegistryNode const node = Objects().Find(entry).node;
  if (node == nullptr) return kIOReturnBadArgument;
  auto children = node->Children(plane);
  if (!children) return CodeOf(children.absence());
  *iterator = Objects().Add({nullptr, std::move(children).value()});
  return KERN_SUCCESS;
}

io_object_t IOIteratorNext(io_iterator_t iterator) {
  auto const children = Objects().Find(iterator).children;
  if (children == nullptr) return IO_OBJECT_NULL;
  SharedRegistryNode next = TakeNext(*children);
  return next == nullptr ? IO_OBJECT_NULL : AddNode(std::move(next));
}

kern_return_t IORegistryEntryGetNameInPlane(io_registry_entry_t entry, char const* plane,
                                            io_name_t name) {
  SharedRegistryNode const node = Objects().Find(entry).node;
  if (node == nullptr) return kIOReturnBadArgument;
  return PutText(node->NameIn(plane), AsArray<io_name_t>(name));
}

kern_return_t IORegistryEntryGetPath(io_registry_entry_t entry, char const* plane,
                                     io_string_t path) {
  SharedRegistryNode const node = Objects().Find(entry).node;
  if (node == nullptr) return kIOReturnBadArgument;
  Fact<std::string> const below = node->PathIn(plane);
  if (!below) return CodeOf(below.absence());
  return PutText(std::string(plane) + ":" + *below, AsArray<io_string_t>(path));
}

kern_return_t IORegistryEntryCreateCFProperties(io_registry_entry_t entry,
                                                CFMutableDictionaryRef* properties, CFAllocatorRef,
                                                IOOptionBits options) {
  if (options != 0) return kIOReturnUnsupported;
  SharedRegistryNode const node = Objects().Find(entry).node;
  if (node == nullptr) return kIOReturnBadArgument;
  Fact<machine::RecordDictionary> const record = node->Properties();
  if (!record) return CodeOf(record.absence());
  *properties = CreateRecordedDictionary(*record);
  return KERN_SUCCESS;
}
