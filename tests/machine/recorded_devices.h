// The devices of some Linux machine as its kernel shows them.
#pragma once

#include <string>

#include "tests/machine/recorded_tree.h"

// With the link in a folder, where there is one, by which the class or bus knows the device.
inline void WriteDevice(RecordedTree const& tree, std::string const& path,
                        std::string const& subsystem, std::string const& folder = {}) {
  std::string const device = "/sys/devices/" + path;
  tree.Write(device + "/uevent", "");
  if (!subsystem.empty()) tree.Link(device + "/subsystem", "../../bus/" + subsystem);
  if (folder.empty()) return;
  std::string up;
  for (char byte : folder) up += byte == '/' ? "../" : "";
  tree.Link(folder + path.substr(path.rfind('/')), up + device.substr(1));
}

inline void WriteDevices(RecordedTree const& tree) {
  std::string const controller = "pci0000:00/0000:00:14.0";
  WriteDevice(tree, controller, "pci");
  tree.Write("/sys/devices/" + controller + "/vendor", "0x8086\n");
  tree.Write("/sys/devices/" + controller + "/device", "0x1e31\n");
  tree.Write("/sys/devices/" + controller + "/class", "0x0c0330\n");
  tree.Write("/sys/devices/" + controller + "/irq", "26\n");
  tree.Write("/sys/devices/" + controller + "/config", "not asked for");
  std::string const hub = controller + "/usb1", stick = hub + "/1-2";
  WriteDevice(tree, hub, "usb", "/sys/bus/usb/devices");
  WriteDevice(tree, stick, "usb", "/sys/bus/usb/devices");
  WriteDevice(tree, stick + "/1-2:1.0", "usb", "/sys/bus/usb/devices");
  tree.Write("/sys/devices/" + stick + "/idVendor", "0951\n");
  tree.Write("/sys/devices/" + stick + "/idProduct", "1666\n");
  tree.Write("/sys/devices/" + stick + "/product", "DataTraveler 3.0\n");
  tree.Write("/sys/devices/" + stick + "/manufacturer", "Kingston\n");
  tree.Write("/sys/devices/" + stick + "/serial", "0012\n");
  std::string const disk = stick + "/1-2:1.0/host0/block/sda";
  WriteDevice(tree, disk, "block");
  tree.Write("/sys/devices/" + disk + "/size", "60555264\n");
  WriteDevice(tree, "pci0000:00/0000:00:19.0/net/eth0", "net");
  WriteDevice(tree, "platform/PNP0C0A:00", "platform");
  WriteDevice(tree, "platform/PNP0C0A:00/power_supply/BAT0", "power_supply",
              "/sys/class/power_supply");
  WriteDevice(tree, "platform/PNP0C0A:00/wakeup/wakeup7", "wakeup", "/sys/class/wakeup");
  WriteDevice(tree, "pci0000:00/0000:00:1b.0/sound/card0", "sound", "/sys/class/sound");
  WriteDevice(tree, "pci0000:00/0000:00:1b.0/sound/card0/controlC0", "sound", "/sys/class/sound");
  WriteDevice(tree, "pci0000:00/0000:01:00.0/fw0", "firewire", "/sys/bus/firewire/devices");
  WriteDevice(tree, "pci0000:00/0000:01:00.0/fw0/fw0.1", "firewire", "/sys/bus/firewire/devices");
}

inline void WriteFirmware(RecordedTree const& tree) {
  tree.Write("/sys/class/dmi/id/sys_vendor", "LENOVO\n");
  tree.Write("/sys/class/dmi/id/product_name", "20HR\n");
  tree.Write("/sys/class/dmi/id/bios_version", "N1MET68W (1.53 )\n");
  tree.Write("/sys/class/dmi/id/bios_date", "06/30/2023\n");
  tree.Write("/sys/class/dmi/id/bios_vendor", " \n");
}
