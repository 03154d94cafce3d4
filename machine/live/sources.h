// The sources of a Linux machine, each over the files below one root.
#pragma once

#include <memory>
#include <mutex>

#include "machine/live/root.h"
#include "machine/sources.h"
#include "machine/system_files.h"

namespace machine::live {

// The clock runs on the running machine only; a recorded tree has none.
class Clock final : public ClockSource {
 public:
  explicit Clock(Root const& root) : root_(root) {}
  Fact<std::int64_t> MicrosecondsSince1970() const override;
  Fact<std::int64_t> BootSecondsSince1970() const override;

 private:
  Root const& root_;
};

// TZ on the running machine, else /etc/localtime. A compiled zone is kept while its file stays the
// same.
class Zone final : public TimeZoneSource {
 public:
  explicit Zone(Root const& root) : root_(root) {}
  Fact<TimeZone> CurrentZone() const override;

 private:
  using Rules = std::shared_ptr<ZoneRules const>;

  Fact<TimeZone> ZoneOfVariable(std::string const& text) const;
  Fact<TimeZone> ZoneOfFile() const;
  Fact<Rules> RulesIn(std::string const& path) const;

  Root const& root_;
  mutable std::mutex guard_;  // of the kept rules
  mutable std::string kept_path_, kept_identity_;
  mutable Rules kept_rules_;
};

// The process's own, on the running machine only.
class Environment final : public EnvironmentSource {
 public:
  explicit Environment(Root const& root) : root_(root) {}
  Fact<std::string> Variable(std::string const& name) const override;
  Fact<std::vector<std::string>> VariableNames() const override;

 private:
  Root const& root_;
};

class Names final : public NameSource {
 public:
  Names(Root const& root, FileSource const& files) : root_(root), files_(files) {}
  Fact<std::string> HostName() const override;
  Fact<std::string> ComputerName() const override;
  Fact<std::string> HostIdentifier() const override;

 private:
  Root const& root_;
  FileSource const& files_;
  mutable std::mutex guard_;
  mutable std::string kept_identity_, kept_identifier_;
};

// The kernel's release and architecture are the running machine's own, or as a tree recorded them.
class System final : public SystemSource {
 public:
  System(Root const& root, FileSource const& files) : root_(root), files_(files) {}
  // The machine that runs this process is a Linux machine, whatever its files say.
  Fact<Platform> SystemPlatform() const override {
    if (root_.is_running()) return Platform::kLinux;
    return PlatformOfFiles(files_);
  }
  Fact<SystemVersion> Version() const override;
  Fact<std::string> KernelRelease() const override;

 private:
  Root const& root_;
  FileSource const& files_;
};

// The running machine's by its name service; its current user is the process's. A recorded tree has
// accounts, none of them current.
class Users final : public UserSource {
 public:
  Users(Root const& root, FileSource const& files) : root_(root), files_(files) {}
  Fact<std::string> CurrentUser() const override;
  Fact<std::string> CurrentHome() const override;
  Fact<std::string> HomeOf(std::string const& user) const override;

 private:
  Root const& root_;
  FileSource const& files_;
};

// Installed memory by the firmware's tables, else by the kernel's memory blocks, else what the
// kernel has for use.
class Memory final : public MemorySource {
 public:
  explicit Memory(Root const& root) : root_(root) {}
  Fact<std::uint64_t> PhysicalBytes() const override;
  Fact<std::uint64_t> SwapBytes() const override;

 private:
  Fact<std::uint64_t> BytesOfMemoryDevices() const;
  Fact<std::uint64_t> BytesOfMemoryBlocks() const;
  Fact<std::uint64_t> BytesInMemoryInfo(std::string const& key) const;

  Root const& root_;
};

class Processors final : public ProcessorSource {
 public:
  explicit Processors(Root const& root) : root_(root) {}
  Fact<std::uint32_t> OnlineCount() const override;
  Fact<Architecture> Kind() const override;
  Fact<std::uint32_t> PowerPCVersion() const override;
  Fact<std::uint32_t> HighestMegahertz() const override;

 private:
  Root const& root_;
};

class Hardware final : public HardwareSource {
 public:
  explicit Hardware(Root const& root) : root_(root) {}
  Fact<std::string> ProductName() const override;
  Fact<std::uint32_t> UsbRelease() const override;
  Fact<bool> HasUsb() const override;

 private:
  Fact<std::string> FirstRootHub() const;

  Root const& root_;
};

class Processes final : public ProcessSource {
 public:
  explicit Processes(Root const& root) : root_(root) {}
  Fact<std::size_t> CountProcesses() const override;
  Fact<std::vector<Process>> AllProcesses() const override;
  Fact<Process> ProcessWithPid(std::int32_t pid) const override;

 private:
  bool ReadName(int proc, Process& process) const;

  Root const& root_;
};

}  // namespace machine::live
