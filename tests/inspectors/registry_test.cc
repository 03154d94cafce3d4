// The registry, the firmware and the system, asked through what they register.
#include "inspectors/system/registry.h"

#include <optional>
#include <utility>

#include "inspectors/system/bios.h"
#include "inspectors/system/operating_system.h"
#include "tests/inspectors/asking.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/on_scripted_machine.h"
#include "tests/support/real_function.h"
#include "tests/support/scripted_registry.h"

namespace {

int needless_releases = 0;
std::vector<CFDictionaryRef> dictionaries;  // that were handed out, each held once more

}  // namespace

// In front of the real ones for the whole program.
kern_return_t IOObjectRelease(io_object_t object) {
  kern_return_t const status = RealFunction<kern_return_t(io_object_t)>("IOObjectRelease")(object);
  if (status != KERN_SUCCESS) ++needless_releases;
  return status;
}

kern_return_t IORegistryEntryCreateCFProperties(io_registry_entry_t entry,
                                                CFMutableDictionaryRef* properties,
                                                CFAllocatorRef allocator, IOOptionBits options) {
  auto* const create = RealFunction<decltype(IORegistryEntryCreateCFProperties)>(
      "IORegistryEntryCreateCFProperties");
  kern_return_t const status = create(entry, properties, allocator, options);
  if (status != KERN_SUCCESS) return status;
  CFRetain(*properties);
  dictionaries.push_back(*properties);
  return status;
}

namespace {

// Whether all that the registry handed out while this lived was given back, and that once. It needs
// a machine with a registry at either end.
class EverythingIsGivenBack {
 public:
  ~EverythingIsGivenBack() {
    // Numbers ascend, and none is given twice.
    io_object_t const end = NextNumber();
    for (io_object_t each = start_; each < end; ++each) {
      EXPECT_EQ(IOObjectGetUserRetainCount(each), 0u);
    }
    EXPECT_EQ(std::exchange(needless_releases, 0), 0);
    for (CFDictionaryRef const each : std::exchange(dictionaries, {})) {
      EXPECT_EQ(CFGetRetainCount(each), 1);
      CFRelease(each);
    }
  }

 private:
  static io_object_t NextNumber() {
    io_registry_entry_t const root = IORegistryGetRootEntry(MACH_PORT_NULL);
    EXPECT_EQ(IOObjectRelease(root), KERN_SUCCESS);
    return root;
  }

  io_object_t const start_ = NextNumber();
};

registry_node NodeOfRoot(std::string const& name) {
  return node_by_path(Bytes(name), name.size(), theroot());
}
registry_node NodeOf(registry_node const& node, std::string const& name) {
  return named_node_of(Bytes(name), name.size(), node);
}

class Registry : public OnScriptedMachine {
 protected:
  Registry() {
    machine_->registry = registry_;
    check_.emplace();
  }
  void TearDown() override {
    EXPECT_EQ(registry_->LiveNodes(), 0);
    machine_->registry = registry_;
  }

  std::shared_ptr<ScriptedRegistry> registry_ = std::make_shared<ScriptedRegistry>();
  std::optional<EverythingIsGivenBack> check_;
};

TEST_F(Registry, EveryCopyIsTheSameEntryAndTheLastReleasesIt) {
  std::unique_ptr<registry_node> last;
  {
    registry_node const node = serviceplane(theroot()), copy = node;
    last = std::make_unique<registry_node>(copy);
    EXPECT_EQ(IOObjectGetUserRetainCount(node.Entry()), 1u);
  }
  EXPECT_EQ(Shown(name_of(*last)), "top");
  EXPECT_STREQ(last->Plane(), "IOService");
  io_registry_entry_t const number = last->Entry();
  *last = NodeOf(*last, "b");
  EXPECT_EQ(IOObjectGetUserRetainCount(number), 0u);
  EXPECT_EQ(Shown(name_of(*last)), "b");
}

TEST_F(Registry, AWalkReleasesWhatItTookOnEveryWayOut) {
  registry_node const first = serviceplane(theroot());
  OSXRegistryIterator whole;
  EXPECT_EQ(Shown(name_of(whole.First(first))), "a@0");
  EXPECT_EQ(Shown(path_of(whole.Next(first))), "IOService:/b");
  EXPECT_THROW(whole.Next(first), NoSuchObject);
  EXPECT_THROW(whole.Next(first), NoSuchObject);
  EXPECT_EQ(Shown(name_of(whole.First(first))), "a@0");
  OSXRegistryIterator broken_off, of_leaf, never_started;
  broken_off.First(first);
  EXPECT_THROW(of_leaf.First(NodeOf(first, "b")), NoSuchObject);
  EXPECT_THROW(never_started.Next(first), NoSuchObject);
}

TEST_F(Registry, PlanesAreAskedOfTheRegistryItself) {
  registry_root const root(IORegistryEntryFromPath(MACH_PORT_NULL, "IOService:/b"));
  EXPECT_EQ(Shown(name_of(serviceplane(root))), "top");
  for (auto const plane : {powerplane, devicetreeplane, audioplane, firewireplane, usbplane}) {
    EXPECT_THROW(plane(theroot()), NoSuchObject);
  }
  machine_->registry = nullptr;
  EXPECT_THROW(theroot(), NoSuchObject);
  EXPECT_THROW(serviceplane(root), NoSuchObject);
}

TEST_F(Registry, NodesByPath) {
  EXPECT_EQ(Shown(name_of(NodeOfRoot("IOService:/a@0"))), "a@0");
  EXPECT_STREQ(NodeOfRoot("IOService:/").Plane(), "IOService");
  for (char const* name : {"", "/b", "b", "IOService", "IOService:b", "IOUSB:/b", ":/b"}) {
    EXPECT_THROW(NodeOfRoot(name), NoSuchObject) << name;
  }
  std::string const longest(512 - 11, 'x');
  registry_->AddLeaf(longest);
  registry_->AddLeaf(longest + "x");
  registry_->AddLeaf("");
  EXPECT_NO_THROW(NodeOfRoot("IOService:/" + longest));
  EXPECT_THROW(NodeOfRoot("IOService:/" + longest + "x"), NoSuchObject);
  EXPECT_THROW(path_of(NodeOfRoot("IOService:/" + longest)), NoSuchObject);
  EXPECT_THROW(NodeOfRoot(std::string(128, 'p') + ":/b"), NoSuchObject);
}

TEST_F(Registry, NodesBelowNodes) {
  registry_->AddLeaf("b/c");
  registry_node const first = serviceplane(theroot());
  EXPECT_EQ(Shown(path_of(NodeOf(first, "b/c"))), "IOService:/b/c");
  EXPECT_EQ(Shown(path_of(NodeOf(NodeOf(first, "b"), "c"))), "IOService:/b/c");
  EXPECT_THROW(NodeOf(first, "/b"), NoSuchObject);
  std::string const longest(511 - 11, 'x');
  registry_->AddLeaf(longest);
  registry_->AddLeaf(longest + "x");
  EXPECT_EQ(Shown(path_of(NodeOf(first, longest))).size(), 511u);
  EXPECT_THROW(NodeOf(NodeOf(first, longest), ""), NoSuchObject);
  EXPECT_THROW(NodeOf(first, longest + "x"), NoSuchObject);
}

TEST_F(Registry, DictionariesAreReleasedByTheLastOfTheirValues) {
  {
    OSXDictionary const dictionary = dictionary_of(serviceplane(theroot()));
    ASSERT_EQ(dictionaries.size(), 1u);
    EXPECT_EQ(CFGetRetainCount(dictionaries[0]), 2);
  }
  EXPECT_EQ(CFGetRetainCount(dictionaries[0]), 1);
  EXPECT_NO_THROW(dictionary_of_root(theroot()));
  EXPECT_THROW(dictionary_of(NodeOfRoot("IOService:/b")), NoSuchObject);
}

// The firmware's version in trees that have it in one place, the other, or both.
TEST(Bios, VersionIsWhereNewOrOldMachinesHaveIt) {
  struct {
    char const *newer, *older;
    std::string version;
  } const cases[] = {{"1", "2", "1"},
                     {nullptr, "2", "2"},
                     {"1", nullptr, "1"},
                     {"", "2", ""},
                     {nullptr, nullptr, kNone}};
  for (auto const& row : cases) {
    RecordedTree tree;
    if (row.newer != nullptr) {
      tree.Write("/proc/device-tree/rom/boot-rom/BootROM-version",
                 row.newer + std::string(1, '\0'));
    }
    if (row.older != nullptr) {
      tree.Write("/proc/device-tree/rom/version", row.older + std::string(1, '\0'));
    }
    tree.Write("/proc/device-tree/rom/boot-rom/name", "boot-rom");
    MachineInUse const use(tree.Machine());
    EverythingIsGivenBack const check;
    EXPECT_EQ(Answers({"date", "version"}, "bios", &kEmptyObject), kNone + ", " + row.version);
    EXPECT_EQ(Told([] { return AsString(Bios_of_world()); }), row.version);
  }
}

class OperatingSystems : public OnScriptedMachine {
 protected:
  OperatingSystem const system_ = operating_system();
};

TEST_F(OperatingSystems, SayWhatTheyAre) {
  machine_->version = {{"ProductName", "Mac OS X"},
                       {"ProductVersion", "10.4.11"},
                       {"ProductBuildVersion", "8S165"},
                       {"Architecture", "i386"}};
  EXPECT_EQ(Shown(AsString(system_)), "Mac OS X 10.4.11");
  EXPECT_EQ(Answers({"name", "build number", "build", "architecture", "version", "release", "mac",
                     "unix", "windows"},
                    "operating system", &system_),
            "Mac OS X, 8S165, 8S165, i386, 10 4 11 128 0 10.4.11, 10 4 11 128 0 10.4.11, true, "
            "false, false");
  inspector_string const build = BuildOf({}, system_);
  BuildOf({}, system_);
  EXPECT_EQ(build.start, BuildOf({}, system_).start);
}

TEST_F(OperatingSystems, WhatIsNotToldIsNoSuchObject) {
  EXPECT_EQ(Answers({"name", "build", "architecture"}, "operating system", &system_),
            kNone + ", " + kNone + ", " + kNone);
  machine_->version = machine::SystemVersion{{"ProductName", "Rolling"}};
  EXPECT_EQ(Answers({"name", "release"}, "operating system", &system_), "Rolling, " + kNone);
  EXPECT_THROW(AsString(system_), NoSuchObject);
  EXPECT_THROW(Up_Time_of(system_), NoSuchObject);
  EXPECT_EQ(Answer("boot time", "operating system", &system_), "0");
  machine_->boot_seconds = 1'000;
  EXPECT_EQ(Answer("boot time", "operating system", &system_), "1000000000");
  machine_->microseconds = 1'060'000'000;
  EXPECT_TRUE(Up_Time_of(system_) == moment_now() - Boot_Time_of(system_));
}

}  // namespace
