// The sources of a capture: what `machine.plist` tells, and where it is silent what the system's
// own files below the capture's root tell.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "machine/capture/capture.h"
#include "machine/capture/facts.h"
#include "machine/capture/mac_volume.h"
#include "machine/gestalt.h"
#include "machine/sources.h"

namespace machine::capture {

// The clock stands where it was when the capture was taken.
class Clock final : public ClockSource {
 public:
  explicit Clock(Facts const& facts) : facts_(facts) {}
  Fact<std::int64_t> MicrosecondsSince1970() const override;
  Fact<std::int64_t> BootSecondsSince1970() const override;

 private:
  Facts const& facts_;
};

// Worked out once: a capture does not change. Of a zone that has only a name the rules are those of
// the capture's own zone files, else of this system's, which are the same for everyone.
class Zone final : public TimeZoneSource {
 public:
  Zone(Facts const& facts, FileSource const& files) : facts_(facts), files_(files) {}
  Fact<TimeZone> CurrentZone() const override;

 private:
  using Rules = std::shared_ptr<ZoneRules const>;

  Fact<TimeZone> FindZone() const;
  Fact<TimeZone> ZoneOfFile() const;
  Fact<Rules> RecordedRules() const;
  Rules RulesNamed(std::string const& name) const;

  Facts const& facts_;
  FileSource const& files_;
  mutable std::once_flag is_found_;
  mutable std::optional<Fact<TimeZone>> zone_;
};

class Environment final : public EnvironmentSource {
 public:
  explicit Environment(Facts const& facts) : facts_(facts) {}
  Fact<std::string> Variable(std::string const& name) const override;
  Fact<std::vector<std::string>> VariableNames() const override;

 private:
  Facts const& facts_;
};

class Names final : public NameSource {
 public:
  Names(Facts const& facts, FileSource const& files, MacVolume const& volume)
      : facts_(facts), files_(files), volume_(volume) {}
  Fact<std::string> HostName() const override;
  Fact<std::string> ComputerName() const override;
  Fact<std::string> HostIdentifier() const override;

 private:
  Facts const& facts_;
  FileSource const& files_;
  MacVolume const& volume_;
};

class System final : public SystemSource {
 public:
  System(Facts const& facts, FileSource const& files, MacVolume const& volume)
      : facts_(facts), files_(files), volume_(volume) {}
  Fact<Platform> SystemPlatform() const override;
  Fact<SystemVersion> Version() const override;
  Fact<std::string> KernelRelease() const override { return facts_.Text("KernelRelease"); }

 private:
  Fact<SystemVersion> FindVersion() const;

  Facts const& facts_;
  FileSource const& files_;
  MacVolume const& volume_;
};

// The current user is the one that was chosen, else the one that was recorded.
class Users final : public UserSource {
 public:
  Users(Facts const& facts, FileSource const& files, MacVolume const& volume,
        CaptureChoices choices)
      : facts_(facts), files_(files), volume_(volume), choices_(std::move(choices)) {}
  Fact<std::string> CurrentUser() const override;
  Fact<std::string> CurrentHome() const override;
  Fact<std::string> HomeOf(std::string const& user) const override;
  Fact<std::vector<std::string>> UserNames() const override;

 private:
  Fact<std::string> HomeInFiles(std::string const& user) const;

  Facts const& facts_;
  FileSource const& files_;
  MacVolume const& volume_;
  CaptureChoices const choices_;
};

class Memory final : public MemorySource {
 public:
  explicit Memory(Facts const& facts) : facts_(facts) {}
  Fact<std::uint64_t> PhysicalBytes() const override;
  Fact<std::uint64_t> SwapBytes() const override;

 private:
  Facts const& facts_;
};

class Processors final : public ProcessorSource {
 public:
  explicit Processors(Facts const& facts) : facts_(facts) {}
  Fact<std::uint32_t> OnlineCount() const override;
  Fact<Architecture> Kind() const override;
  Fact<std::uint32_t> PowerPCVersion() const override;
  Fact<std::uint32_t> HighestMegahertz() const override;

 private:
  Facts const& facts_;
};

class Hardware final : public HardwareSource {
 public:
  explicit Hardware(Facts const& facts) : facts_(facts) {}
  Fact<std::string> ProductName() const override;
  Fact<std::uint32_t> UsbRelease() const override;
  Fact<bool> HasUsb() const override;

 private:
  Facts const& facts_;
};

// Understood once. Those that are malformed are left out, which is said each time.
class Processes final : public ProcessSource {
 public:
  explicit Processes(Facts const& facts) : facts_(facts) {}
  Fact<std::size_t> CountProcesses() const override;
  Fact<std::vector<Process>> AllProcesses() const override;
  Fact<Process> ProcessWithPid(std::int32_t pid) const override;

 private:
  Fact<std::vector<Process>> Listed() const;

  Facts const& facts_;
  mutable std::once_flag is_read_;
  mutable std::optional<Fact<std::vector<Process>>> processes_;
  mutable std::vector<Absence> left_out_;
};

// Responses that were recorded, else what follows from the capture's other sources.
class Gestalt final : public GestaltSource {
 public:
  Gestalt(Facts const& facts, Machine const& machine) : facts_(facts), derived_(machine) {}
  Fact<GestaltResponse> Response(std::uint32_t selector) const override;
  Fact<std::vector<std::uint32_t>> Selectors() const override;

 private:
  Facts const& facts_;
  DerivedGestalt derived_;
};

}  // namespace machine::capture
