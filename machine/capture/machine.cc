#include "machine/capture/machine.h"

#include <cerrno>

#include "machine/capture/components.h"
#include "machine/capture/directory.h"
#include "machine/capture/registry.h"
#include "machine/capture/scsi.h"
#include "machine/capture/sessions.h"
#include "machine/capture/volumes.h"
#include "machine/live/files.h"

namespace machine::capture {
namespace {

// The files of a capture that has no folder of copies.
class NoFiles final : public FileSource {
 public:
  explicit NoFiles(std::string why) : why_(std::move(why)) {}

  Fact<ItemStatus> Status(std::string const& path, Links) const override { return Missing(path); }
  Fact<Item> Describe(std::string const& path, Links) const override { return Missing(path); }
  Fact<std::string> ReadLink(std::string const& path) const override { return Missing(path); }
  Fact<std::unique_ptr<Folder>> OpenFolder(std::string const& path) const override {
    return Missing(path);
  }
  Fact<std::unique_ptr<OpenFile>> OpenFork(std::string const& path, Fork, Access) const override {
    return Missing(path);
  }
  Fact<std::string> CanonicalFolder(std::string const& path) const override {
    return Missing(path);
  }

 private:
  Absence Missing(std::string const& path) const {
    Absence absence = {Outcome::kAbsent, path, std::string(kNotRecorded) + ": " + why_, ENOENT};
    AnnounceMissing(absence);
    return absence;
  }
  std::string const why_;
};

class CaptureMachine final : public Machine {
 public:
  CaptureMachine(OpenedCapture opened, CaptureChoices choices, RecordReader reader)
      : opened_(std::move(opened)),
        reader_(reader),
        copies_(MakeCopies()),
        volume_(Files(), reader),
        users_(opened_.facts, Files(), volume_, std::move(choices)),
        directory_(opened_.facts, Files(), reader) {}

  ClockSource const& Clock() const override { return clock_; }
  TimeZoneSource const& Zone() const override { return zone_; }
  EnvironmentSource const& Environment() const override { return environment_; }
  NameSource const& Names() const override { return names_; }
  MemorySource const& Memory() const override { return memory_; }
  ProcessorSource const& Processors() const override { return processors_; }
  HardwareSource const& Hardware() const override { return hardware_; }
  ProcessSource const& Processes() const override { return processes_; }
  GestaltSource const& Gestalt() const override { return gestalt_; }
  FileSource const& Files() const override {
    return opened_.is_volume ? *copies_ : static_cast<FileSource const&>(files_);
  }
  SystemSource const& System() const override { return system_; }
  UserSource const& Users() const override { return users_; }
  DirectorySource const& Directory() const override { return directory_; }
  SessionSource const& Sessions() const override { return sessions_; }
  VolumeSource const& Volumes() const override { return volumes_; }
  RegistrySource const& Registry() const override { return registry_; }
  ScsiSource const& Scsi() const override { return scsi_; }
  ComponentSource const& Components() const override { return components_; }

 private:
  std::unique_ptr<FileSource const> MakeCopies() const {
    if (!opened_.root) return std::make_unique<NoFiles>(opened_.why_no_files);
    return std::make_unique<live::Files>(*opened_.root, true);
  }

  OpenedCapture const opened_;
  RecordReader const reader_;
  std::unique_ptr<FileSource const> const copies_;
  capture::Files files_{opened_.facts, *copies_};
  MacVolume volume_;
  capture::Clock clock_{opened_.facts};
  capture::Zone zone_{opened_.facts, Files()};
  capture::Environment environment_{opened_.facts};
  capture::Names names_{opened_.facts, Files(), volume_};
  capture::System system_{opened_.facts, Files(), volume_};
  capture::Users users_;
  capture::Directory directory_;
  CapturedVolumes volumes_{opened_.facts, files_, volume_, opened_.root.has_value()};
  capture::Memory memory_{opened_.facts};
  capture::Processors processors_{opened_.facts};
  capture::Hardware hardware_{opened_.facts};
  capture::Processes processes_{opened_.facts};
  capture::Sessions sessions_{opened_.facts};
  capture::Gestalt gestalt_{opened_.facts, *this};
  capture::Registry registry_{opened_.facts, opened_.folder, reader_};
  capture::Scsi scsi_{opened_.facts};
  capture::RegisteredComponents components_{opened_.facts};
};

}  // namespace

std::shared_ptr<Machine const> MakeCapture(OpenedCapture opened, CaptureChoices choices,
                                           RecordReader reader) {
  return std::make_shared<CaptureMachine const>(std::move(opened), std::move(choices), reader);
}

}  // namespace machine::capture
