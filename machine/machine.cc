#include "machine/machine.h"

#include <atomic>
#include <mutex>

#include "machine/never_destroyed.h"

namespace machine {
namespace {

thread_local SourceObserver* observer = nullptr;

std::mutex& Guard() {
  static NeverDestroyed<std::mutex> guard;
  return *guard;
}

// Owns what `current` points to.
std::shared_ptr<Machine const>& Owner() {
  static NeverDestroyed<std::shared_ptr<Machine const>> owner;
  return *owner;
}

std::atomic<Machine const*> current = nullptr;
std::atomic<std::uint64_t> current_number = 0;

template <typename Source>
Source const& Unsupported() {
  static NeverDestroyed<Source const> source;
  return *source;
}

Absence NotSupported(char const* source) {
  Announce(source, Outcome::kNotSupported);
  return {Outcome::kNotSupported, source, {}};
}

}  // namespace

std::string_view NameOf(Outcome outcome) {
  switch (outcome) {
    case Outcome::kAnswered:
      return "answered";
    case Outcome::kAbsent:
      return "absent";
    case Outcome::kNotSupported:
      return "not supported";
    case Outcome::kPermissionRefused:
      return "permission refused";
    case Outcome::kMalformed:
      return "malformed";
    case Outcome::kTimedOut:
      return "timed out";
  }
  return {};
}

SourceObserver* SetSourceObserver(SourceObserver* next) { return std::exchange(observer, next); }
SourceObserver* CurrentSourceObserver() { return observer; }

Machine const& CurrentMachine() {
  if (Machine const* chosen = current.load(std::memory_order_acquire)) return *chosen;
  std::lock_guard lock(Guard());
  if (Owner() == nullptr) {
    Owner() = MakeLiveMachine();
    current.store(Owner().get(), std::memory_order_release);
  }
  return *Owner();
}

std::shared_ptr<Machine const> SetCurrentMachine(std::shared_ptr<Machine const> machine) {
  std::lock_guard lock(Guard());
  current.store(machine.get(), std::memory_order_release);
  current_number.fetch_add(1, std::memory_order_release);
  return std::exchange(Owner(), std::move(machine));
}

std::uint64_t CurrentMachineNumber() { return current_number.load(std::memory_order_acquire); }

Fact<std::int64_t> ClockSource::MicrosecondsSince1970() const { return NotSupported("clock"); }
Fact<std::int64_t> ClockSource::BootSecondsSince1970() const { return NotSupported("boot time"); }
Fact<TimeZone> TimeZoneSource::CurrentZone() const { return NotSupported("time zone"); }
Fact<std::string> EnvironmentSource::Variable(std::string const&) const {
  return NotSupported("environment");
}
Fact<std::vector<std::string>> EnvironmentSource::VariableNames() const {
  return NotSupported("environment");
}
Fact<std::string> NameSource::HostName() const { return NotSupported("host name"); }
Fact<std::string> NameSource::ComputerName() const { return NotSupported("computer name"); }
Fact<std::string> NameSource::HostIdentifier() const { return NotSupported("host identifier"); }
Fact<Platform> SystemSource::SystemPlatform() const { return NotSupported("platform"); }
Fact<SystemVersion> SystemSource::Version() const { return NotSupported("system version"); }
Fact<std::string> SystemSource::KernelRelease() const { return NotSupported("kernel release"); }
Fact<std::string> UserSource::CurrentUser() const { return NotSupported("current user"); }
Fact<std::string> UserSource::CurrentHome() const { return NotSupported("current user"); }
Fact<std::string> UserSource::HomeOf(std::string const&) const { return NotSupported("users"); }
Fact<SharedRegistryNode> RegistrySource::Root() const { return NotSupported("registry"); }
Fact<SharedRegistryNode> RegistrySource::NodeAt(std::string_view, std::string_view) const {
  return NotSupported("registry");
}
Fact<SharedVolumes> VolumeSource::Volumes() const { return NotSupported("volumes"); }
Fact<VolumeFacts> VolumeSource::FactsOf(Volume const&) const { return NotSupported("volumes"); }
Fact<std::vector<std::uint8_t>> ScsiSource::BusNumbers() const { return NotSupported("SCSI"); }
Fact<std::vector<std::uint8_t>> ScsiSource::TargetNumbers(std::uint8_t) const {
  return NotSupported("SCSI");
}
Fact<ScsiBus> ScsiSource::Bus(std::uint8_t) const { return NotSupported("SCSI"); }
Fact<std::string> ScsiSource::Inquiry(std::uint8_t, std::uint8_t) const {
  return NotSupported("SCSI");
}
Fact<SharedComponents> ComponentSource::Components() const { return NotSupported("components"); }
Fact<std::vector<std::string>> UserSource::UserNames() const { return NotSupported("users"); }
Fact<DirectoryRecords> DirectorySource::Find(DirectoryQuery const&) const {
  return NotSupported("directory");
}
Fact<RecordDictionary> SessionSource::ConsoleUser() const { return NotSupported("sessions"); }
Fact<std::uint64_t> MemorySource::PhysicalBytes() const { return NotSupported("memory"); }
Fact<std::uint64_t> MemorySource::SwapBytes() const { return NotSupported("swap"); }
Fact<std::uint32_t> ProcessorSource::OnlineCount() const { return NotSupported("processors"); }
Fact<Architecture> ProcessorSource::Kind() const { return NotSupported("processors"); }
Fact<std::uint32_t> ProcessorSource::PowerPCVersion() const { return NotSupported("processors"); }
Fact<std::uint32_t> ProcessorSource::HighestMegahertz() const { return NotSupported("processors"); }
Fact<std::string> HardwareSource::ProductName() const { return NotSupported("product name"); }
Fact<std::uint32_t> HardwareSource::UsbRelease() const { return NotSupported("USB"); }
Fact<bool> HardwareSource::HasUsb() const { return NotSupported("USB"); }
Fact<std::size_t> ProcessSource::CountProcesses() const { return NotSupported("processes"); }
Fact<std::vector<Process>> ProcessSource::AllProcesses() const { return NotSupported("processes"); }
Fact<Process> ProcessSource::ProcessWithPid(std::int32_t) const {
  return NotSupported("processes");
}
Fact<GestaltResponse> GestaltSource::Response(std::uint32_t) const {
  return NotSupported("Gestalt");
}
Fact<std::vector<std::uint32_t>> GestaltSource::Selectors() const {
  return NotSupported("Gestalt");
}

ClockSource const& Machine::Clock() const { return Unsupported<ClockSource>(); }
TimeZoneSource const& Machine::Zone() const { return Unsupported<TimeZoneSource>(); }
EnvironmentSource const& Machine::Environment() const { return Unsupported<EnvironmentSource>(); }
NameSource const& Machine::Names() const { return Unsupported<NameSource>(); }
MemorySource const& Machine::Memory() const { return Unsupported<MemorySource>(); }
ProcessorSource const& Machine::Processors() const { return Unsupported<ProcessorSource>(); }
HardwareSource const& Machine::Hardware() const { return Unsupported<HardwareSource>(); }
ProcessSource const& Machine::Processes() const { return Unsupported<ProcessSource>(); }
GestaltSource const& Machine::Gestalt() const { return Unsupported<GestaltSource>(); }
FileSource const& Machine::Files() const { return Unsupported<FileSource>(); }
SystemSource const& Machine::System() const { return Unsupported<SystemSource>(); }
UserSource const& Machine::Users() const { return Unsupported<UserSource>(); }
DirectorySource const& Machine::Directory() const { return Unsupported<DirectorySource>(); }
SessionSource const& Machine::Sessions() const { return Unsupported<SessionSource>(); }
RegistrySource const& Machine::Registry() const { return Unsupported<RegistrySource>(); }
VolumeSource const& Machine::Volumes() const { return Unsupported<VolumeSource>(); }
ScsiSource const& Machine::Scsi() const { return Unsupported<ScsiSource>(); }
ComponentSource const& Machine::Components() const { return Unsupported<ComponentSource>(); }

}  // namespace machine
