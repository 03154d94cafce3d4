// What a machine can be asked, as small sources of plain values. Every source is whole by itself:
// what a machine does not override answers "not supported". Sources keep no state that a caller
// could notice; each call asks anew.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "machine/export.h"
#include "machine/fact.h"
#include "machine/time_zone.h"

namespace machine {

class MACHINE_API ClockSource {
 public:
  virtual ~ClockSource() = default;
  virtual Fact<std::int64_t> MicrosecondsSince1970() const;
  // When the machine was started, in seconds since 1970.
  virtual Fact<std::int64_t> BootSecondsSince1970() const;
};

class MACHINE_API TimeZoneSource {
 public:
  virtual ~TimeZoneSource() = default;
  virtual Fact<TimeZone> CurrentZone() const;
};

class MACHINE_API EnvironmentSource {
 public:
  virtual ~EnvironmentSource() = default;
  virtual Fact<std::string> Variable(std::string const& name) const;
  // In the environment's own order, each name once.
  virtual Fact<std::vector<std::string>> VariableNames() const;
};

class MACHINE_API NameSource {
 public:
  virtual ~NameSource() = default;
  virtual Fact<std::string> HostName() const;
  // The name people gave the machine, UTF-8.
  virtual Fact<std::string> ComputerName() const;
  // What tells this machine from every other, as it stands in the names of files that hold for one
  // host only.
  virtual Fact<std::string> HostIdentifier() const;
};

// Decides which folders the system's own are.
enum class Platform { kLinux, kMacOS };

// "ProductName", "ProductVersion", "ProductBuildVersion", "Architecture" (the kernel's, such as
// "x86_64") and what else the system says of itself, UTF-8, each key once.
using SystemVersion = std::vector<std::pair<std::string, std::string>>;

class MACHINE_API SystemSource {
 public:
  virtual ~SystemSource() = default;
  virtual Fact<Platform> SystemPlatform() const;
  virtual Fact<SystemVersion> Version() const;
  // Of the kernel, "6.1.0-13-amd64".
  virtual Fact<std::string> KernelRelease() const;
};

// The users, as far as paths need them. Homes are absolute paths of the machine.
class MACHINE_API UserSource {
 public:
  virtual ~UserSource() = default;
  // The user whose home "~" means.
  virtual Fact<std::string> CurrentUser() const;
  virtual Fact<std::string> CurrentHome() const;
  virtual Fact<std::string> HomeOf(std::string const& user) const;
  // Those that are known without asking for one by its name; there may be more.
  virtual Fact<std::vector<std::string>> UserNames() const;
};

class MACHINE_API MemorySource {
 public:
  virtual ~MemorySource() = default;
  virtual Fact<std::uint64_t> PhysicalBytes() const;
  // 0 when swapping is off.
  virtual Fact<std::uint64_t> SwapBytes() const;
};

enum class Architecture { kX86, kPowerPC, kOther };

class MACHINE_API ProcessorSource {
 public:
  virtual ~ProcessorSource() = default;
  virtual Fact<std::uint32_t> OnlineCount() const;
  virtual Fact<Architecture> Kind() const;
  // The processor version register of a PowerPC: version in the upper half, revision in the lower.
  virtual Fact<std::uint32_t> PowerPCVersion() const;
  // The highest frequency that any processor reaches, rounded to whole megahertz.
  virtual Fact<std::uint32_t> HighestMegahertz() const;
};

class MACHINE_API HardwareSource {
 public:
  virtual ~HardwareSource() = default;
  virtual Fact<std::string> ProductName() const;
  // The release of the first USB root hub, binary-coded decimal (0x0310 is 3.1.0). Absent without a
  // USB bus.
  virtual Fact<std::uint32_t> UsbRelease() const;
  virtual Fact<bool> HasUsb() const;
};

struct Process {
  std::int32_t pid = 0;
  char name[17] = {};  // at most 16 bytes of any kind, then NUL
};

class MACHINE_API ProcessSource {
 public:
  virtual ~ProcessSource() = default;
  // About how many there are, without reading any.
  virtual Fact<std::size_t> CountProcesses() const;
  // In ascending order of number. Those that vanish meanwhile are left out.
  virtual Fact<std::vector<Process>> AllProcesses() const;
  // Absent when the number names no process.
  virtual Fact<Process> ProcessWithPid(std::int32_t pid) const;
};

// A number, or bytes (for those selectors whose response is a text).
using GestaltResponse = std::variant<std::uint32_t, std::string>;

class MACHINE_API GestaltSource {
 public:
  virtual ~GestaltSource() = default;
  // The selector is four characters, the first in the most significant byte. Absent or not
  // supported: the selector is undefined on this machine.
  virtual Fact<GestaltResponse> Response(std::uint32_t selector) const;
  // Those that may have a response, as far as this source knows.
  virtual Fact<std::vector<std::uint32_t>> Selectors() const;
};

}  // namespace machine
