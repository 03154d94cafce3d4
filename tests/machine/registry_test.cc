#include "machine/registry.h"

#include <sys/stat.h>

#include <filesystem>
#include <set>

#include "tests/machine/on_recorded_tree.h"
#include "tests/machine/recorded_devices.h"
#include "tests/machine/registry_text.h"
#include "tests/support/scripted_machine.h"

namespace {

using machine::Outcome;
using machine::SharedRegistryNode;
using testing::ElementsAre;
using testing::IsEmpty;

class LiveRegistry : public OnRecordedTree {
 protected:
  SharedRegistryNode NodeAt(std::string_view plane, std::string_view path) const {
    auto node = machine->Registry().NodeAt(plane, path);
    return node ? *node : nullptr;
  }
  std::vector<std::string> PathsBelow(std::string_view plane, std::string_view path) const {
    std::vector<std::string> paths;
    for (auto const& child : ChildrenOf(*NodeAt(plane, path), plane)) {
      paths.push_back(*child->PathIn(plane));
    }
    return paths;
  }
  std::string PropertiesAt(std::string_view plane, std::string_view path) const {
    return TextOf(NodeAt(plane, path)->Properties());
  }
};

TEST_F(LiveRegistry, OfNothingHasNoPlane) {
  EXPECT_EQ(TextOf(machine->Registry()), "{}\n");
  tree.Write("/sys/class/power_supply/text", "");
  tree.Write("/sys/class/dmi/id/bios_vendor", "\n");
  tree.Write("/proc/device-tree/#size-cells", "");
  tree.Link("/sys/bus/usb/devices/usb1", "/");
  EXPECT_EQ(TextOf(machine->Registry()), "{}\n");
  EXPECT_EQ(NodeAt("", "/"), nullptr);
}

TEST_F(LiveRegistry, HasThePlanesThatHaveDevices) {
  WriteDevices(tree);
  WriteFirmware(tree);
  EXPECT_EQ(TextOf((*machine->Registry().Root())->Properties()),
            "{IORegistryPlanes={IOAudio='IOAudio' IODeviceTree='IODeviceTree' "
            "IOFireWire='IOFireWire' IOPower='IOPower' IOService='IOService' IOUSB='IOUSB'}}");
  EXPECT_THAT(PathsBelow("IOService", "/"),
              testing::UnorderedElementsAre("/pci0000:00", "/platform"));
  EXPECT_THAT(PathsBelow("IOUSB", "/"), ElementsAre("/usb1"));
  EXPECT_THAT(PathsBelow("IOUSB", "/usb1/1-2"), ElementsAre("/usb1/1-2/1-2:1.0"));
  EXPECT_THAT(PathsBelow("IOUSB", "/usb1/1-2/1-2:1.0"), IsEmpty());
  EXPECT_THAT(PathsBelow("IOPower", "/"), ElementsAre("/BAT0", "/wakeup7"));
  EXPECT_THAT(PathsBelow("IOAudio", "/"), ElementsAre("/card0"));
  EXPECT_THAT(PathsBelow("IOAudio", "/card0"), IsEmpty());
  EXPECT_THAT(PathsBelow("IOFireWire", "/fw0"), ElementsAre("/fw0/fw0.1"));
  EXPECT_THAT(PathsBelow("IODeviceTree", "/"), ElementsAre("/rom"));
}

TEST_F(LiveRegistry, ClassesAndPropertiesGoBySubsystem) {
  WriteDevices(tree);
  struct {
    char const *path, *class_name, *properties;
  } const cases[] = {
      {"/pci0000:00", "IOService", "{}"},
      {"/pci0000:00/0000:00:14.0", "IOPCIDevice",
       "{class=787248 class-code=<30030c00> device=7729 device-id=<311e0000> irq=26 vendor=32902 "
       "vendor-id=<86800000>}"},
      {"/pci0000:00/0000:00:14.0/usb1/1-2", "IOUSBDevice",
       "{USB Product Name='DataTraveler 3.0' USB Serial Number='0012' USB Vendor Name='Kingston' "
       "idProduct=5734 idVendor=2385 manufacturer='Kingston' product='DataTraveler 3.0' "
       "serial='0012'}"},
      {"/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0", "IOUSBInterface", "{}"},
      {"/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0/host0/block/sda", "IOMedia",
       "{BSD Name='sda' size=60555264}"},
      {"/pci0000:00/0000:00:19.0/net/eth0", "IONetworkInterface", "{BSD Name='eth0'}"},
      {"/platform/PNP0C0A:00", "IOPlatformDevice", "{}"},
      {"/platform/PNP0C0A:00/power_supply/BAT0", "IOService", "{}"},
  };
  for (auto const& row : cases) {
    ASSERT_NE(NodeAt("IOService", row.path), nullptr) << row.path;
    EXPECT_EQ(*NodeAt("IOService", row.path)->ClassName(), row.class_name) << row.path;
    EXPECT_EQ(PropertiesAt("IOService", row.path), row.properties) << row.path;
  }
}

TEST_F(LiveRegistry, OnlyHarmlessTextOfAttributesIsTaken) {
  WriteDevice(tree, "a", "block");
  struct {
    char const *name, *content, *property;
  } const cases[] = {
      {"decimal", "18446744073709551615\n", " size=18446744073709551615u"},
      {"negative", "-9223372036854775807", " size=-9223372036854775807"},
      {"too large", "18446744073709551616", " size='18446744073709551616'"},
      {"zeros", "007", " size='007'"},
      {"hexadecimal", "0xFFFFFFFFFFFFFFFF", " size=18446744073709551615u"},
      {"no digits", "0x", " size='0x'"},
      {"sign", "-", " size='-'"},
      {"inner blanks", " 8:0  x\n", " size='8:0  x'"},
      {"no text", "\xFF\xFE", ""},
      {"nothing", "", ""},
  };
  for (auto const& row : cases) {
    tree.Write("/sys/devices/a/size", row.content);
    EXPECT_EQ(PropertiesAt("IOService", "/a"), "{BSD Name='a'" + std::string(row.property) + "}")
        << row.name;
  }
  tree.Write("/sys/devices/a/size", std::string(4096, ' '));
  tree.Write("/sys/devices/a/dev", std::string(4097, '1'));
  tree.Write("/sys/devices/a/ro", "1");
  ::chmod(tree.At("/sys/devices/a/ro").c_str(), 0640);
  tree.Link("/sys/devices/a/range", "uevent");
  ::mkfifo(tree.At("/sys/devices/a/start").c_str(), 0644);
  tree.MakeFolder("/sys/devices/a/hidden");
  AnnouncementLog log;
  EXPECT_EQ(PropertiesAt("IOService", "/a"), "{BSD Name='a'}");
  EXPECT_THAT(log.entries,
              testing::Contains(testing::Pair("/sys/devices/a/ro", Outcome::kPermissionRefused)));
}

TEST_F(LiveRegistry, OneDeviceIsTheSameInEveryPlane) {
  WriteDevices(tree);
  auto const service = NodeAt("IOService", "/pci0000:00/0000:00:14.0/usb1/1-2");
  auto const usb = NodeAt("IOUSB", "/usb1/1-2");
  EXPECT_EQ(service->Identity(), usb->Identity());
  EXPECT_EQ(*service->PathIn("IOUSB"), "/usb1/1-2");
  EXPECT_EQ(*usb->PathIn("IOService"), "/pci0000:00/0000:00:14.0/usb1/1-2");
  EXPECT_EQ(service->PathIn("IOPower").outcome(), Outcome::kAbsent);
  EXPECT_EQ(service->Children("IOPower").outcome(), Outcome::kAbsent);
  EXPECT_EQ(NodeAt("IOService", "/pci0000:00")->NameIn("IOUSB").outcome(), Outcome::kAbsent);
  EXPECT_NE(service->Identity(), NodeAt("IOUSB", "/usb1")->Identity());
}

TEST_F(LiveRegistry, EveryPathLeadsBack) {
  for (char const* name : {"a@0", "a:b@1,2", "\xFF\x01", "o@", " ", "..."}) {
    WriteDevice(tree, name + std::string("/below"), "");
    tree.Write("/proc/device-tree/" + std::string(name) + "/name", name);
  }
  WriteDevices(tree);
  std::filesystem::recursive_directory_iterator const folders(tree.At("/sys/devices"));
  auto const count = std::count_if(begin(folders), end(folders), [](auto const& entry) {
    return entry.is_directory() && !entry.is_symlink();
  });
  std::ptrdiff_t visited = 0;
  for (char const* plane :
       {"IOService", "IODeviceTree", "IOUSB", "IOPower", "IOAudio", "IOFireWire"}) {
    std::vector<SharedRegistryNode> nodes = {NodeAt(plane, "/")};
    for (; !nodes.empty(); ++visited) {
      auto const node = nodes.back();
      nodes.pop_back();
      auto const again = NodeAt(plane, *node->PathIn(plane));
      ASSERT_NE(again, nullptr) << *node->PathIn(plane);
      EXPECT_EQ(again->Identity(), node->Identity());
      for (auto const& child : ChildrenOf(*node, plane)) nodes.push_back(child);
    }
  }
  EXPECT_EQ(visited, count + 1 + 7 + 12);
}

TEST_F(LiveRegistry, PathsThatLeadNowhere) {
  WriteDevices(tree);
  tree.Link("/sys/devices/link", "platform");
  tree.Link("/sys/devices/out", "/etc");
  for (char const* path : {"", "pci0000:00", "//", "/.", "/..", "/pci0000:00/", "/pci0000:00//x",
                           "/pci0000:00/../platform", "/link", "/link/PNP0C0A:00", "/out"}) {
    EXPECT_EQ(NodeAt("IOService", path), nullptr) << path;
  }
  for (char const* path : {"", "/1-2", "/usb1/", "/usb1/power", "/usb1/../usb1", "/usb9", "/."}) {
    EXPECT_EQ(NodeAt("IOUSB", path), nullptr) << path;
  }
  EXPECT_EQ(NodeAt("IOService", std::string("/pci0000:00\0x", 13)), nullptr);
}

TEST_F(LiveRegistry, WhatVanishedIsAbsent) {
  WriteDevices(tree);
  auto const node = NodeAt("IOService", "/platform");
  auto const children = node->Children("IOService");
  auto const child = *(*children)->Next();
  std::filesystem::remove_all(tree.At("/sys/devices/platform"));
  for (auto const& gone : {node, child}) {
    EXPECT_EQ(gone->PathIn("IOService").outcome(), Outcome::kAbsent);
    EXPECT_EQ(gone->ClassName().outcome(), Outcome::kAbsent);
    EXPECT_EQ(gone->Properties().outcome(), Outcome::kAbsent);
    EXPECT_EQ(gone->Children("IOService").outcome(), Outcome::kAbsent);
  }
}

TEST_F(LiveRegistry, TheFirmwaresTreeComesBeforeItsTables) {
  WriteFirmware(tree);
  EXPECT_EQ(PropertiesAt("IODeviceTree", "/"),
            "{manufacturer=<4c454e4f564f00> model=<3230485200> product-name=<3230485200>}");
  EXPECT_EQ(PropertiesAt("IODeviceTree", "/rom"),
            "{release-date=<30362f33302f3230323300> "
            "version=<4e314d45543638572028312e3533202900>}");
  EXPECT_EQ(NodeAt("IODeviceTree", "/rom/boot-rom"), nullptr);

  std::string const base = "/sys/firmware/devicetree/base";
  tree.Link("/proc/device-tree", "/sys/firmware/devicetree/base");
  tree.Write(base + "/compatible", std::string("a\0b\0", 4));
  tree.Write(base + "/memory@0/reg", std::string("\0\1", 2));
  tree.Write(base + "/soc/uart@1/name", "u");
  tree.Write(base + "/soc/uart@2/name", "v");
  tree.Write(base + "/soc/secret", "x");
  ::chmod(tree.At(base + "/soc/secret").c_str(), 0400);
  EXPECT_EQ(*NodeAt("IODeviceTree", "/")->NameIn("IODeviceTree"), "device-tree");
  EXPECT_EQ(PropertiesAt("IODeviceTree", "/"), "{compatible=<61006200>}");
  EXPECT_EQ(*NodeAt("IODeviceTree", "/memory")->PathIn("IODeviceTree"), "/memory@0");
  EXPECT_EQ(PropertiesAt("IODeviceTree", "/soc/uart@2"), "{name=<76>}");
  EXPECT_EQ(PropertiesAt("IODeviceTree", "/soc"), "{}");
  EXPECT_EQ(NodeAt("IODeviceTree", "/rom"), nullptr);
  for (char const* path : {"/soc/uart", "/soc/", "//", "/mem", "/soc/uart@1/name", "/."}) {
    EXPECT_EQ(NodeAt("IODeviceTree", path), nullptr) << path;
  }
}

TEST(RunningRegistry, ShowsTheFoldersOfTheKernel) {
  auto const machine = machine::MakeLiveMachine();
  auto const first = machine->Registry().NodeAt("IOService", "/");
  if (!first) GTEST_SKIP() << "no /sys/devices";
  std::set<std::string> names, folders;
  for (auto const& child : ChildrenOf(**first, "IOService")) {
    names.insert(*child->NameIn("IOService"));
  }
  for (auto const& entry : std::filesystem::directory_iterator("/sys/devices")) {
    if (entry.is_directory()) folders.insert(entry.path().filename());
  }
  EXPECT_EQ(names, folders);
  EXPECT_FALSE(names.empty());
}

}  // namespace
