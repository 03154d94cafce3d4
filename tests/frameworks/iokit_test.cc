#include <IOKit/IOKitLib.h>

#include "tests/support/on_scripted_machine.h"
#include "tests/support/scripted_registry.h"

namespace {

class IOKit : public OnScriptedMachine {
 protected:
  IOKit() { machine_->registry = registry_; }
  static std::string NameOf(io_registry_entry_t entry) {
    io_name_t name;
    kern_return_t const status = IORegistryEntryGetNameInPlane(entry, kIOServicePlane, name);
    return status == KERN_SUCCESS ? name : "status " + std::to_string(status & 0xFFFF);
  }
  static io_registry_entry_t First() {
    io_registry_entry_t const root = IORegistryGetRootEntry(MACH_PORT_NULL);
    io_registry_entry_t first = IO_OBJECT_NULL;
    EXPECT_EQ(IORegistryEntryGetChildEntry(root, kIOServicePlane, &first), KERN_SUCCESS);
    EXPECT_EQ(IOObjectRelease(root), KERN_SUCCESS);
    return first;
  }
  static io_registry_entry_t Leaf(std::string const& name) {
    return IORegistryEntryFromPath(MACH_PORT_NULL, ("IOService:/" + name).c_str());
  }

  std::shared_ptr<ScriptedRegistry> registry_ = std::make_shared<ScriptedRegistry>();
};

TEST_F(IOKit, AReferenceEndsWithItsLastRelease) {
  io_object_t const entry = First();
  EXPECT_EQ(IOObjectGetUserRetainCount(entry), 1u);
  EXPECT_EQ(IOObjectRetain(entry), KERN_SUCCESS);
  EXPECT_EQ(IOObjectGetUserRetainCount(entry), 2u);
  EXPECT_EQ(IOObjectRelease(entry), KERN_SUCCESS);
  EXPECT_EQ(NameOf(entry), "top");
  EXPECT_EQ(registry_->LiveNodes(), 1);
  EXPECT_EQ(IOObjectRelease(entry), KERN_SUCCESS);
  EXPECT_EQ(registry_->LiveNodes(), 0);
  EXPECT_EQ(IOObjectGetUserRetainCount(entry), 0u);
  for (io_object_t const none : {entry, io_object_t{IO_OBJECT_NULL}, ~io_object_t{0}}) {
    EXPECT_EQ(IOObjectRelease(none), kIOReturnBadArgument);
    EXPECT_EQ(IOObjectRetain(none), kIOReturnBadArgument);
    EXPECT_EQ(NameOf(none), "status 706");
    EXPECT_EQ(IOIteratorNext(none), IO_OBJECT_NULL);
  }
}

TEST_F(IOKit, AnIteratorGivesEachChildOnceAndItsReferenceWithIt) {
  io_registry_entry_t const first = First();
  io_iterator_t iterator = IO_OBJECT_NULL;
  EXPECT_EQ(IORegistryEntryCreateIterator(first, kIOServicePlane, 1, &iterator),
            kIOReturnUnsupported);
  ASSERT_EQ(IORegistryEntryCreateIterator(first, kIOServicePlane, 0, &iterator), KERN_SUCCESS);
  IOObjectRelease(first);
  std::vector<std::string> names;
  while (io_object_t const child = IOIteratorNext(iterator)) {
    EXPECT_EQ(IOObjectGetUserRetainCount(child), 1u);
    names.push_back(NameOf(child));
    IOObjectRelease(child);
  }
  EXPECT_THAT(names, testing::ElementsAre("a@0", "b"));
  EXPECT_EQ(NameOf(iterator), "status 706");
  IOObjectRelease(iterator);
  EXPECT_EQ(registry_->LiveNodes(), 0);
}

TEST_F(IOKit, FailuresHaveCodesAndLeaveNothingBehind) {
  io_registry_entry_t const first = First();
  io_registry_entry_t child = IO_OBJECT_NULL;
  EXPECT_EQ(IORegistryEntryGetChildEntry(first, kIOUSBPlane, &child), kIOReturnNotFound);
  io_registry_entry_t const leaf = Leaf("b");
  EXPECT_EQ(IORegistryEntryGetChildEntry(leaf, kIOServicePlane, &child), kIOReturnNoDevice);
  EXPECT_EQ(child, IO_OBJECT_NULL);
  for (char const* path : {"", "IOService", ":", "IOService:/c", "IOUSB:/b", "/b"}) {
    EXPECT_EQ(IORegistryEntryFromPath(MACH_PORT_NULL, path), IO_OBJECT_NULL) << path;
  }
  CFMutableDictionaryRef properties = nullptr;
  EXPECT_EQ(IORegistryEntryCreateCFProperties(leaf, &properties, kCFAllocatorDefault, 0),
            kIOReturnNotPrivileged);
  EXPECT_EQ(properties, nullptr);
  IOObjectRelease(first);
  IOObjectRelease(leaf);
  EXPECT_EQ(registry_->LiveNodes(), 0);
  machine_->registry = nullptr;
  EXPECT_EQ(IORegistryGetRootEntry(MACH_PORT_NULL), IO_OBJECT_NULL);
}

TEST_F(IOKit, WhatDoesNotFitIsRefusedWhole) {
  io_string_t path;
  for (std::size_t const length : {127, 128, 500, 501}) {
    registry_->AddLeaf(std::string(length, 'x'));
    io_object_t const entry = Leaf(std::string(length, 'x'));
    EXPECT_EQ(NameOf(entry), length < 128 ? std::string(length, 'x') : "status 731");
    EXPECT_EQ(IORegistryEntryGetPath(entry, kIOServicePlane, path),
              length < 501 ? KERN_SUCCESS : kIOReturnNoSpace);
    IOObjectRelease(entry);
  }
}

TEST_F(IOKit, TwoNumbersMayStandForOneEntry) {
  io_object_t const entry = First(), again = First(), other = Leaf("b");
  EXPECT_NE(entry, again);
  EXPECT_TRUE(IOObjectIsEqualTo(entry, again));
  EXPECT_FALSE(IOObjectIsEqualTo(entry, other));
  for (io_object_t const object : {entry, again, other}) IOObjectRelease(object);
  EXPECT_FALSE(IOObjectIsEqualTo(entry, again));
}

}  // namespace
