// A machine that a test scripts: set what it knows, and all else is absent. It counts what it is
// asked and announces nothing.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "machine/gestalt.h"
#include "machine/machine.h"

class ScriptedMachine final : public machine::Machine,
                              private machine::ClockSource,
                              private machine::TimeZoneSource,
                              private machine::EnvironmentSource,
                              private machine::NameSource,
                              private machine::MemorySource,
                              private machine::ProcessorSource,
                              private machine::HardwareSource,
                              private machine::ProcessSource,
                              private machine::GestaltSource,
                              private machine::SystemSource,
                              private machine::UserSource,
                              private machine::SessionSource {
 public:
  std::optional<std::int64_t> microseconds, boot_seconds;
  std::optional<machine::TimeZone> zone;
  std::map<std::string, std::string> environment;
  std::optional<std::string> host_name, computer_name, product_name;
  std::optional<std::uint64_t> physical_bytes, swap_bytes;
  std::optional<std::uint32_t> online_processors, power_pc_version, megahertz, usb_release;
  std::optional<machine::Architecture> architecture;
  std::vector<machine::Process> processes;
  // These answer "not supported" where there is none.
  std::shared_ptr<machine::FileSource const> files;
  std::shared_ptr<machine::DirectorySource const> directory;
  std::shared_ptr<machine::RegistrySource const> registry;
  std::shared_ptr<machine::VolumeSource const> volumes;
  std::shared_ptr<machine::ScsiSource const> scsi;
  std::shared_ptr<machine::ComponentSource const> components;
  // By selector; one that is not here follows from the other facts.
  std::map<std::string, machine::GestaltResponse> gestalt;

  std::optional<machine::Platform> platform;
  std::optional<machine::SystemVersion> version;
  std::optional<std::string> host_identifier, kernel_release, current_user, current_home;
  std::map<std::string, std::string> homes;
  std::optional<machine::RecordDictionary> console_user;

  // Why everything that is not set is missing.
  machine::Outcome reason = machine::Outcome::kAbsent;
  // Runs after each count of the processes, so that they can change before the list is read.
  std::function<void()> after_count;

  struct Calls {
    int all_processes = 0, one_process = 0, gestalt = 0;
  };
  Calls const& calls() const { return calls_; }

  void AddProcess(std::int32_t pid, std::string const& name);
  // A zone by a rule such as "CET-1CEST,M3.5.0,M10.5.0/3".
  void SetZone(std::string const& name, std::string const& rule);

  machine::ClockSource const& Clock() const override { return *this; }
  machine::TimeZoneSource const& Zone() const override { return *this; }
  machine::EnvironmentSource const& Environment() const override { return *this; }
  machine::NameSource const& Names() const override { return *this; }
  machine::MemorySource const& Memory() const override { return *this; }
  machine::ProcessorSource const& Processors() const override { return *this; }
  machine::HardwareSource const& Hardware() const override { return *this; }
  machine::ProcessSource const& Processes() const override { return *this; }
  machine::GestaltSource const& Gestalt() const override { return *this; }
  machine::SystemSource const& System() const override { return *this; }
  machine::UserSource const& Users() const override { return *this; }
  machine::SessionSource const& Sessions() const override { return *this; }
  machine::DirectorySource const& Directory() const override {
    return directory != nullptr ? *directory : Machine::Directory();
  }
  machine::FileSource const& Files() const override { return files ? *files : Machine::Files(); }
  machine::RegistrySource const& Registry() const override {
    return registry != nullptr ? *registry : Machine::Registry();
  }
  machine::VolumeSource const& Volumes() const override {
    return volumes != nullptr ? *volumes : Machine::Volumes();
  }
  machine::ScsiSource const& Scsi() const override { return scsi ? *scsi : Machine::Scsi(); }
  machine::ComponentSource const& Components() const override {
    return components != nullptr ? *components : Machine::Components();
  }

 private:
  template <typename T>
  using Fact = machine::Fact<T>;
  using Texts = std::map<std::string, std::string>;

  template <typename T>
  Fact<T> Of(std::optional<T> const& value) const {
    if (value) return *value;
    return Missing();
  }
  machine::Absence Missing() const { return {reason, "script", {}}; }
  Fact<std::string> In(Texts const& texts, std::string const& name) const;
  static std::vector<std::string> NamesOf(Texts const& texts);

  Fact<std::int64_t> MicrosecondsSince1970() const override { return Of(microseconds); }
  Fact<std::int64_t> BootSecondsSince1970() const override { return Of(boot_seconds); }
  Fact<machine::TimeZone> CurrentZone() const override { return Of(zone); }
  Fact<std::string> Variable(std::string const& name) const override {
    return In(environment, name);
  }
  Fact<std::vector<std::string>> VariableNames() const override { return NamesOf(environment); }
  Fact<std::string> HostName() const override { return Of(host_name); }
  Fact<std::string> ComputerName() const override { return Of(computer_name); }
  Fact<std::string> HostIdentifier() const override { return Of(host_identifier); }
  Fact<machine::Platform> SystemPlatform() const override { return Of(platform); }
  Fact<machine::SystemVersion> Version() const override { return Of(version); }
  Fact<std::string> KernelRelease() const override { return Of(kernel_release); }
  Fact<std::string> CurrentUser() const override { return Of(current_user); }
  Fact<std::string> CurrentHome() const override { return Of(current_home); }
  Fact<std::string> HomeOf(std::string const& user) const override { return In(homes, user); }
  Fact<std::vector<std::string>> UserNames() const override { return NamesOf(homes); }
  Fact<machine::RecordDictionary> ConsoleUser() const override { return Of(console_user); }
  Fact<std::uint64_t> PhysicalBytes() const override { return Of(physical_bytes); }
  Fact<std::uint64_t> SwapBytes() const override { return Of(swap_bytes); }
  Fact<std::uint32_t> OnlineCount() const override { return Of(online_processors); }
  Fact<machine::Architecture> Kind() const override { return Of(architecture); }
  Fact<std::uint32_t> PowerPCVersion() const override { return Of(power_pc_version); }
  Fact<std::uint32_t> HighestMegahertz() const override { return Of(megahertz); }
  Fact<std::string> ProductName() const override { return Of(product_name); }
  Fact<std::uint32_t> UsbRelease() const override { return Of(usb_release); }
  Fact<bool> HasUsb() const override { return usb_release ? Fact<bool>(true) : Missing(); }
  Fact<std::size_t> CountProcesses() const override;
  Fact<std::vector<machine::Process>> AllProcesses() const override;
  Fact<machine::Process> ProcessWithPid(std::int32_t pid) const override;
  Fact<machine::GestaltResponse> Response(std::uint32_t selector) const override;
  Fact<std::vector<std::uint32_t>> Selectors() const override;

  mutable Calls calls_;
  machine::DerivedGestalt derived_{*this};
};

// Makes a machine the one in use for as long as this lives.
class MachineInUse {
 public:
  explicit MachineInUse(std::shared_ptr<machine::Machine const> machine)
      : before_(machine::SetCurrentMachine(std::move(machine))) {}
  ~MachineInUse() { machine::SetCurrentMachine(std::move(before_)); }
  MachineInUse(MachineInUse const&) = delete;
  MachineInUse& operator=(MachineInUse const&) = delete;

 private:
  std::shared_ptr<machine::Machine const> before_;
};

// Keeps what is announced on this thread for as long as this lives.
class AnnouncementLog final : public machine::SourceObserver {
 public:
  AnnouncementLog() : before_(machine::SetSourceObserver(this)) {}
  ~AnnouncementLog() override { machine::SetSourceObserver(before_); }

  void Consulted(machine::Announcement const& announcement) override {
    entries.emplace_back(std::string(announcement.source), announcement.outcome);
    bytes += announcement.bytes;
  }

  std::vector<std::pair<std::string, machine::Outcome>> entries;
  std::uint64_t bytes = 0;

 private:
  machine::SourceObserver* before_;
};
