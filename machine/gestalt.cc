#include "machine/gestalt.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace machine {
namespace {

constexpr std::uint32_t Code(char const (&text)[5]) {
  std::uint32_t code = 0;
  for (int i = 0; i < 4; ++i) code = code << 8 | static_cast<unsigned char>(text[i]);
  return code;
}

// A selector that this machine gives no answer to though its sources answered: said to the
// observer, who would otherwise see sources without a fault and no answer.
Absence Undefined(std::uint32_t selector, std::string where = {}) {
  std::string source = "Gestalt ";
  for (int shift = 24; shift >= 0; shift -= 8) source += static_cast<char>(selector >> shift);
  Announce(where.empty() ? source : source + " (" + where + ")", Outcome::kNotSupported);
  return {Outcome::kNotSupported, std::move(source), std::move(where)};
}

Fact<GestaltResponse> MemoryMegabytes(Machine const& machine) {
  Fact<std::uint64_t> const bytes = machine.Memory().PhysicalBytes();
  if (!bytes) return bytes.absence();
  std::uint64_t const megabytes = (*bytes >> 20) + ((*bytes & 0xfffff) != 0);
  if (megabytes > UINT32_MAX) return Undefined(Code("ramm"), "more than 32 bits");
  return static_cast<std::uint32_t>(megabytes);
}

Fact<GestaltResponse> LogicalMemory(Machine const& machine) {
  Fact<std::uint64_t> const physical = machine.Memory().PhysicalBytes();
  if (!physical) return physical.absence();
  Fact<std::uint64_t> const swap = machine.Memory().SwapBytes();
  if (!swap) return swap.absence();
  if (*physical > UINT32_MAX || *swap > UINT32_MAX - *physical) {
    return Undefined(Code("lram"), "more than 32 bits");
  }
  return static_cast<std::uint32_t>(*physical + *swap);
}

Fact<GestaltResponse> VirtualMemory(Machine const& machine) {
  Fact<std::uint64_t> const swap = machine.Memory().SwapBytes();
  if (!swap) return swap.absence();
  return std::uint32_t{*swap > 0};
}

Fact<GestaltResponse> SystemArchitecture(Machine const& machine) {
  Fact<Architecture> const kind = machine.Processors().Kind();
  if (!kind) return kind.absence();
  switch (*kind) {
    case Architecture::kX86:
      return std::uint32_t{10};
    case Architecture::kPowerPC:
      return std::uint32_t{2};
    case Architecture::kOther:
      break;
  }
  return Undefined(Code("sysa"), "no code for this processor");
}

// The upper half of the processor version register (its values are in the processors' user manuals)
// and the published Gestalt code for it.
struct PowerPCCode {
  std::uint16_t version;
  std::uint32_t code;
};
constexpr PowerPCCode kPowerPCCodes[] = {
    {0x0001, 0x101}, {0x0003, 0x103}, {0x0004, 0x104}, {0x0006, 0x106}, {0x0007, 0x107},
    {0x0008, 0x108}, {0x0009, 0x109}, {0x000A, 0x10A}, {0x000C, 0x10C}, {0x0039, 0x139},
    {0x003C, 0x13C}, {0x0044, 0x144}, {0x7000, 0x120}, {0x8000, 0x110}, {0x8001, 0x111},
    {0x8002, 0x112}, {0x8003, 0x112}, {0x800C, 0x10C},
};

Fact<GestaltResponse> ProcessorCode(Machine const& machine, std::uint32_t selector) {
  Fact<Architecture> const kind = machine.Processors().Kind();
  if (!kind) return kind.absence();
  if (*kind == Architecture::kX86) return Code("ixxx");
  if (*kind != Architecture::kPowerPC) return Undefined(selector, "no code for this processor");
  Fact<std::uint32_t> const version = machine.Processors().PowerPCVersion();
  if (!version) return version.absence();
  auto const* row = std::lower_bound(
      std::begin(kPowerPCCodes), std::end(kPowerPCCodes), *version >> 16,
      [](PowerPCCode const& left, std::uint32_t right) { return left.version < right; });
  if (row == std::end(kPowerPCCodes) || row->version != *version >> 16) {
    return Undefined(selector, "no code for this processor version");
  }
  return row->code;
}

Fact<GestaltResponse> ProcessorType(Machine const& machine) {
  return ProcessorCode(machine, Code("cput"));
}
Fact<GestaltResponse> ProcessorFamily(Machine const& machine) {
  return ProcessorCode(machine, Code("cpuf"));
}

Fact<GestaltResponse> ProcessorClock(Machine const& machine) {
  Fact<std::uint32_t> const megahertz = machine.Processors().HighestMegahertz();
  if (!megahertz) return megahertz.absence();
  return *megahertz;
}

Fact<GestaltResponse> MachineName(Machine const& machine) {
  Fact<std::string> const name = machine.Hardware().ProductName();
  if (!name) return name.absence();
  return *name;
}

// Bit 0: there is USB; bit 1: it does isochronous transfers, as every host controller here does.
Fact<GestaltResponse> UsbAttributes(Machine const& machine) {
  Fact<bool> const has_usb = machine.Hardware().HasUsb();
  if (!has_usb) return has_usb.absence();
  return std::uint32_t{*has_usb ? 3u : 0u};
}

// A numeric version: the release's two bytes, then the stage of a release.
Fact<GestaltResponse> UsbVersion(Machine const& machine) {
  constexpr std::uint32_t kReleaseStage = 0x80;
  Fact<std::uint32_t> const release = machine.Hardware().UsbRelease();
  if (!release) return release.absence();
  return *release << 16 | kReleaseStage << 8;
}

// Major, minor and bug fix as in 0x1049 for 10.4.9: the major number in two decimal digits, the
// others in one, where 9 stands for all that is more.
Fact<GestaltResponse> SystemVersionCode(Machine const& machine) {
  Fact<Platform> const platform = machine.System().SystemPlatform();
  if (!platform) return platform.absence();
  if (*platform != Platform::kMacOS) return Undefined(Code("sysv"), "no such system");
  Fact<SystemVersion> const version = machine.System().Version();
  if (!version) return version.absence();
  for (auto const& [key, text] : *version) {
    if (key != "ProductVersion") continue;
    unsigned parts[3] = {};
    if (std::sscanf(text.c_str(), "%4u.%4u.%4u", &parts[0], &parts[1], &parts[2]) < 1) break;
    if (parts[0] > 99) break;
    return parts[0] / 10 << 12 | parts[0] % 10 << 8 | std::min(parts[1], 9u) << 4 |
           std::min(parts[2], 9u);
  }
  return Undefined(Code("sysv"), "no version");
}

struct Row {
  std::uint32_t selector;
  Fact<GestaltResponse> (*respond)(Machine const&);
};
constexpr Row kRows[] = {
    {Code("cpuf"), ProcessorFamily},    {Code("cput"), ProcessorType},
    {Code("lram"), LogicalMemory},      {Code("mclk"), ProcessorClock},
    {Code("mnam"), MachineName},        {Code("ramm"), MemoryMegabytes},
    {Code("sysa"), SystemArchitecture}, {Code("sysv"), SystemVersionCode},
    {Code("usb "), UsbAttributes},      {Code("usbv"), UsbVersion},
    {Code("vm  "), VirtualMemory},
};

}  // namespace

Fact<GestaltResponse> DerivedGestalt::Response(std::uint32_t selector) const {
  for (Row const& row : kRows) {
    if (row.selector == selector) return row.respond(machine_);
  }
  return Undefined(selector);
}

Fact<std::vector<std::uint32_t>> DerivedGestalt::Selectors() const {
  std::vector<std::uint32_t> selectors;
  for (Row const& row : kRows) selectors.push_back(row.selector);
  return selectors;
}

}  // namespace machine
