#include <algorithm>

#include "machine/live/sources.h"
#include "machine/live/text.h"

namespace machine::live {
namespace {

constexpr char const* kUsbDevices = "/sys/bus/usb/devices";

// Root hubs are "usb1", "usb2", ...; other entries are named by bus and port.
std::optional<std::uint32_t> NumberOfRootHub(std::string_view name) {
  if (!name.starts_with("usb")) return {};
  return ParseNumber<std::uint32_t>(name.substr(3));
}

}  // namespace

Fact<std::string> Hardware::ProductName() const {
  return root_.ReadText("/sys/class/dmi/id/product_name");
}

Fact<std::string> Hardware::FirstRootHub() const {
  Fact<std::vector<std::string>> const names = root_.List(kUsbDevices);
  if (!names) return names.absence();
  std::optional<std::uint32_t> first;
  for (std::string const& name : *names) {
    if (auto const number = NumberOfRootHub(name))
      first = std::min(first.value_or(*number), *number);
  }
  if (!first) return Absence{Outcome::kAbsent, kUsbDevices, "root hub"};
  return "usb" + std::to_string(*first);
}

Fact<bool> Hardware::HasUsb() const {
  Fact<std::string> const hub = FirstRootHub();
  if (!hub) return hub.absence();
  return true;
}

Fact<std::uint32_t> Hardware::UsbRelease() const {
  Fact<std::string> const hub = FirstRootHub();
  if (!hub) return hub.absence();
  std::string const path = std::string(kUsbDevices) + "/" + *hub + "/bcdDevice";
  Fact<std::string> const text = root_.ReadText(path);
  if (!text) return text.absence();
  if (auto const release = ParseNumber<std::uint16_t>(*text, 16)) return std::uint32_t{*release};
  return Absence{Outcome::kMalformed, path, {}};
}

}  // namespace machine::live
