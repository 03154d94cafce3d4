// A machine that is asked through a recorder.
#include "machine/capture/components.h"
#include "machine/capture/recording.h"
#include "machine/capture/values.h"

namespace machine::capture {
namespace {

// The sources of one machine that are alike: each question is passed on, its answer kept.
class RecordingSources : public ClockSource,
                         public TimeZoneSource,
                         public EnvironmentSource,
                         public NameSource,
                         public SystemSource,
                         public UserSource,
                         public SessionSource {
 public:
  explicit RecordingSources(Recording& recording)
      : asked_(*recording.asked), facts_(recording.facts) {}

  Fact<std::int64_t> MicrosecondsSince1970() const override;
  Fact<std::int64_t> BootSecondsSince1970() const override;
  Fact<TimeZone> CurrentZone() const override;
  Fact<std::string> Variable(std::string const& name) const override {
    return facts_.Passed("Environment", KeyOfBytes(name), asked_.Environment().Variable(name),
                         RecordOfBytes);
  }
  Fact<std::vector<std::string>> VariableNames() const override {
    return facts_.Passed("EnvironmentNames", asked_.Environment().VariableNames(), RecordOfNames);
  }
  Fact<std::string> HostName() const override {
    return facts_.Passed("HostName", asked_.Names().HostName(), RecordOfBytes);
  }
  Fact<std::string> ComputerName() const override {
    return facts_.Passed("ComputerName", asked_.Names().ComputerName(), RecordOfBytes);
  }
  Fact<std::string> HostIdentifier() const override {
    return facts_.Passed("HostIdentifier", asked_.Names().HostIdentifier(), RecordOfBytes);
  }
  Fact<Platform> SystemPlatform() const override;
  Fact<SystemVersion> Version() const override;
  Fact<std::string> KernelRelease() const override {
    return facts_.Passed("KernelRelease", asked_.System().KernelRelease(), RecordOfBytes);
  }
  Fact<std::string> CurrentUser() const override {
    return facts_.Passed("CurrentUser", asked_.Users().CurrentUser(), RecordOfBytes);
  }
  Fact<std::string> CurrentHome() const override {
    return facts_.Passed("CurrentHome", asked_.Users().CurrentHome(), RecordOfBytes);
  }
  Fact<std::string> HomeOf(std::string const& user) const override;
  // Each is recorded once its home is asked.
  Fact<std::vector<std::string>> UserNames() const override { return asked_.Users().UserNames(); }
  Fact<RecordDictionary> ConsoleUser() const override {
    return facts_.Passed("ConsoleUser", asked_.Sessions().ConsoleUser(),
                         [](RecordDictionary const& user) { return user; });
  }

 private:
  Machine const& asked_;
  RecordedFacts& facts_;
};

Fact<std::int64_t> RecordingSources::MicrosecondsSince1970() const {
  constexpr std::int64_t kMicro = 1'000'000;
  Fact<std::int64_t> const now = asked_.Clock().MicrosecondsSince1970();
  std::int64_t const rest = now ? (*now % kMicro + kMicro) % kMicro : 0;
  facts_.Passed("Taken", now, [rest](std::int64_t time) { return RecordDate{time - rest}; });
  if (now) facts_.Keep("TakenMicroseconds", Record(rest));
  return now;
}

Fact<std::int64_t> RecordingSources::BootSecondsSince1970() const {
  return facts_.Passed("BootTime", asked_.Clock().BootSecondsSince1970(),
                       [](std::int64_t seconds) { return RecordDate{seconds * 1'000'000}; });
}

// With its rules, since the same name may stand for others elsewhere and later.
Fact<TimeZone> RecordingSources::CurrentZone() const {
  Fact<TimeZone> zone = asked_.Zone().CurrentZone();
  facts_.Passed("TimeZone", zone, [](TimeZone const& known) { return RecordOfBytes(known.name); });
  if (!zone) return zone;
  std::string const& file = zone->rules->compiled_file();
  facts_.Keep("TimeZoneRules",
              file.empty() ? Record(zone->rules->posix_text()) : Record(RecordBytes{file}));
  return zone;
}

Fact<Platform> RecordingSources::SystemPlatform() const {
  return facts_.Passed("Platform", asked_.System().SystemPlatform(), [](Platform platform) {
    return std::string(platform == Platform::kMacOS ? "macos" : "linux");
  });
}

Fact<SystemVersion> RecordingSources::Version() const {
  return facts_.Passed("SystemVersion", asked_.System().Version(), [](SystemVersion const& known) {
    RecordDictionary version;
    for (auto const& [key, text] : known) version.Add(key, RecordOfBytes(text));
    return version;
  });
}

Fact<std::string> RecordingSources::HomeOf(std::string const& user) const {
  return facts_.Passed("Users", KeyOfBytes(user), asked_.Users().HomeOf(user),
                       [](std::string const& home) {
                         RecordDictionary record;
                         record.Add("Home", RecordOfBytes(home));
                         return record;
                       });
}

class RecordingHardware : public MemorySource, public ProcessorSource, public HardwareSource {
 public:
  explicit RecordingHardware(Recording& recording)
      : asked_(*recording.asked), facts_(recording.facts) {}

  Fact<std::uint64_t> PhysicalBytes() const override {
    return facts_.Passed("Memory", "PhysicalBytes", asked_.Memory().PhysicalBytes(),
                         RecordOfNumber);
  }
  Fact<std::uint64_t> SwapBytes() const override {
    return facts_.Passed("Memory", "SwapBytes", asked_.Memory().SwapBytes(), RecordOfNumber);
  }
  Fact<std::uint32_t> OnlineCount() const override {
    return facts_.Passed("Processors", "Count", asked_.Processors().OnlineCount(), RecordOfNumber);
  }
  Fact<Architecture> Kind() const override {
    return facts_.Passed("Processors", "Kind", asked_.Processors().Kind(), [](Architecture kind) {
      return std::string(kind == Architecture::kX86       ? "x86"
                         : kind == Architecture::kPowerPC ? "ppc"
                                                          : "other");
    });
  }
  Fact<std::uint32_t> PowerPCVersion() const override {
    return facts_.Passed("Processors", "PowerPCVersion", asked_.Processors().PowerPCVersion(),
                         RecordOfNumber);
  }
  Fact<std::uint32_t> HighestMegahertz() const override {
    return facts_.Passed("Processors", "Megahertz", asked_.Processors().HighestMegahertz(),
                         RecordOfNumber);
  }
  Fact<std::string> ProductName() const override {
    return facts_.Passed("Hardware", "ProductName", asked_.Hardware().ProductName(), RecordOfBytes);
  }
  Fact<std::uint32_t> UsbRelease() const override {
    return facts_.Passed("Hardware", "USBRelease", asked_.Hardware().UsbRelease(), RecordOfNumber);
  }
  Fact<bool> HasUsb() const override {
    return facts_.Passed("Hardware", "HasUSB", asked_.Hardware().HasUsb(),
                         [](bool has_usb) { return has_usb; });
  }

 private:
  Machine const& asked_;
  RecordedFacts& facts_;
};

class RecordingProcesses : public ProcessSource, public GestaltSource {
 public:
  explicit RecordingProcesses(Recording& recording)
      : asked_(*recording.asked), facts_(recording.facts) {}

  Fact<std::size_t> CountProcesses() const override {
    return facts_.Passed("ProcessCount", asked_.Processes().CountProcesses(), RecordOfNumber);
  }
  Fact<std::vector<Process>> AllProcesses() const override {
    auto processes = asked_.Processes().AllProcesses();
    facts_.KeepProcesses(processes);
    return processes;
  }
  Fact<Process> ProcessWithPid(std::int32_t pid) const override {
    Fact<Process> process = asked_.Processes().ProcessWithPid(pid);
    facts_.KeepProcess(pid, process);
    return process;
  }
  Fact<GestaltResponse> Response(std::uint32_t selector) const override {
    return facts_.Passed("Gestalt", KeyOfSelector(selector), asked_.Gestalt().Response(selector),
                         [](GestaltResponse const& response) {
                           auto const* number = std::get_if<std::uint32_t>(&response);
                           if (number != nullptr) return Record(std::int64_t{*number});
                           return RecordOfBytes(std::get<std::string>(response));
                         });
  }
  Fact<std::vector<std::uint32_t>> Selectors() const override {
    return asked_.Gestalt().Selectors();
  }

 private:
  Machine const& asked_;
  RecordedFacts& facts_;
};

class RecordingDirectory : public DirectorySource {
 public:
  explicit RecordingDirectory(Recording& recording)
      : asked_(*recording.asked), directory_(recording.directory) {}

  Fact<DirectoryRecords> Find(DirectoryQuery const& query) const override {
    auto records = asked_.Directory().Find(query);
    directory_.Keep(query, records);
    return records;
  }

 private:
  Machine const& asked_;
  RecordedDirectory& directory_;
};

class RecordingComponents final : public ComponentSource {
 public:
  explicit RecordingComponents(Recording& recording)
      : asked_(*recording.asked), facts_(recording.facts) {}

  Fact<SharedComponents> Components() const override {
    return facts_.Passed(kComponents, asked_.Components().Components(),
                         [](SharedComponents const& components) { return RecordOf(*components); });
  }

 private:
  Machine const& asked_;
  RecordedFacts& facts_;
};

class RecordingMachine final : public Machine {
 public:
  explicit RecordingMachine(std::shared_ptr<Recording> recording)
      : recording_(std::move(recording)),
        sources_(*recording_),
        hardware_(*recording_),
        processes_(*recording_),
        directory_(*recording_),
        scsi_(recording_->asked->Scsi(), recording_->scsi),
        components_(*recording_),
        volumes_(recording_->asked->Volumes(), recording_->volumes),
        registry_(recording_->asked, recording_->facts, recording_->registry),
        files_(MakeRecordingFiles(*recording_)) {}

  ClockSource const& Clock() const override { return sources_; }
  TimeZoneSource const& Zone() const override { return sources_; }
  EnvironmentSource const& Environment() const override { return sources_; }
  NameSource const& Names() const override { return sources_; }
  MemorySource const& Memory() const override { return hardware_; }
  ProcessorSource const& Processors() const override { return hardware_; }
  HardwareSource const& Hardware() const override { return hardware_; }
  ProcessSource const& Processes() const override { return processes_; }
  GestaltSource const& Gestalt() const override { return processes_; }
  FileSource const& Files() const override { return *files_; }
  SystemSource const& System() const override { return sources_; }
  UserSource const& Users() const override { return sources_; }
  DirectorySource const& Directory() const override { return directory_; }
  SessionSource const& Sessions() const override { return sources_; }
  RegistrySource const& Registry() const override { return registry_; }
  VolumeSource const& Volumes() const override { return volumes_; }
  ScsiSource const& Scsi() const override { return scsi_; }
  ComponentSource const& Components() const override { return components_; }

 private:
  std::shared_ptr<Recording> const recording_;
  RecordingSources const sources_;
  RecordingHardware const hardware_;
  RecordingProcesses const processes_;
  RecordingDirectory const directory_;
  RecordingScsi const scsi_;
  RecordingComponents const components_;
  RecordingVolumes const volumes_;
  RecordingRegistry const registry_;
  std::unique_ptr<FileSource const> const files_;
};

}  // namespace

std::shared_ptr<Machine const> MakeRecordingMachine(std::shared_ptr<Recording> recording) {
  return std::make_shared<RecordingMachine const>(std::move(recording));
}

}  // namespace machine::capture
