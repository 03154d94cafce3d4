#include "machine/gestalt.h"
#include "machine/live/directory.h"
#include "machine/live/files.h"
#include "machine/live/registry.h"
#include "machine/live/scsi.h"
#include "machine/live/sessions.h"
#include "machine/live/sources.h"
#include "machine/live/volumes.h"
#include "machine/machine.h"

namespace machine {
namespace {

class LiveMachine final : public Machine {
 public:
  LiveMachine(std::string root, Changes changes)
      : root_(root),
        files_(root_, !AreAllowed(changes)),
        registry_(std::make_shared<live::Root const>(std::move(root))) {}

  ClockSource const& Clock() const override { return clock_; }
  TimeZoneSource const& Zone() const override { return zone_; }
  EnvironmentSource const& Environment() const override { return environment_; }
  NameSource const& Names() const override { return names_; }
  MemorySource const& Memory() const override { return memory_; }
  ProcessorSource const& Processors() const override { return processors_; }
  HardwareSource const& Hardware() const override { return hardware_; }
  ProcessSource const& Processes() const override { return processes_; }
  GestaltSource const& Gestalt() const override { return gestalt_; }
  FileSource const& Files() const override { return files_; }
  SystemSource const& System() const override { return system_; }
  UserSource const& Users() const override { return users_; }
  DirectorySource const& Directory() const override { return directory_; }
  SessionSource const& Sessions() const override { return sessions_; }
  VolumeSource const& Volumes() const override { return volumes_; }
  ScsiSource const& Scsi() const override { return scsi_; }
  RegistrySource const& Registry() const override { return registry_; }

 private:
  bool AreAllowed(Changes changes) const {
    if (changes == Changes::kRunningMachineOnly) return root_.is_running();
    return changes == Changes::kAllowed;
  }

  live::Root root_;
  live::Clock clock_{root_};
  live::Zone zone_{root_};
  live::Environment environment_{root_};
  live::Files files_;
  live::Names names_{root_, files_};
  live::Memory memory_{root_};
  live::Processors processors_{root_};
  live::Hardware hardware_{root_};
  live::Processes processes_{root_};
  live::System system_{root_, files_};
  live::Users users_{root_, files_};
  live::Directory directory_{root_, files_};
  live::Sessions sessions_{root_};
  live::MountedVolumes volumes_{root_};
  live::Scsi scsi_{root_};
  live::Registry registry_;
  DerivedGestalt gestalt_{*this};
};

}  // namespace

std::shared_ptr<Machine const> MakeLiveMachine(std::string root, Changes changes) {
  return std::make_shared<LiveMachine const>(std::move(root), changes);
}

}  // namespace machine
