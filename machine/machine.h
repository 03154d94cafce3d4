// A machine that can be asked for facts: the running one, a recorded tree or capture, or one that a
// test scripts. One is in use at a time in a process, chosen by the host between evaluations.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "machine/components.h"
#include "machine/directory.h"
#include "machine/export.h"
#include "machine/fact.h"
#include "machine/files.h"
#include "machine/registry.h"
#include "machine/scsi.h"
#include "machine/sessions.h"
#include "machine/sources.h"
#include "machine/volumes.h"

namespace machine {

// Each accessor hands out a source that lives as long as the machine. The defaults are sources that
// answer "not supported", so a kind of machine overrides those it has.
class MACHINE_API Machine {
 public:
  virtual ~Machine() = default;

  virtual ClockSource const& Clock() const;
  virtual TimeZoneSource const& Zone() const;
  virtual EnvironmentSource const& Environment() const;
  virtual NameSource const& Names() const;
  virtual MemorySource const& Memory() const;
  virtual ProcessorSource const& Processors() const;
  virtual HardwareSource const& Hardware() const;
  virtual ProcessSource const& Processes() const;
  virtual GestaltSource const& Gestalt() const;
  virtual FileSource const& Files() const;
  virtual SystemSource const& System() const;
  virtual UserSource const& Users() const;
  virtual DirectorySource const& Directory() const;
  virtual SessionSource const& Sessions() const;
  virtual RegistrySource const& Registry() const;
  virtual VolumeSource const& Volumes() const;
  virtual ScsiSource const& Scsi() const;
  virtual ComponentSource const& Components() const;
};

// The machine in use; the live machine with root "/" when none was chosen, made at the first call.
// The reference holds until the next `SetCurrentMachine`.
MACHINE_API Machine const& CurrentMachine();

// Chooses the machine in use (null: back to the default) and returns the one chosen before. Only
// between evaluations.
MACHINE_API std::shared_ptr<Machine const> SetCurrentMachine(
    std::shared_ptr<Machine const> machine);

// Another number after each `SetCurrentMachine`, for what is kept of one machine's facts.
MACHINE_API std::uint64_t CurrentMachineNumber();

// The Linux machine whose files lie below `root`. With "/" it is the running one and system calls
// are asked too; below any other root only files are, and no path leads out of it. A root that
// cannot be opened makes every fact absent. Files are changed only where that is allowed: on the
// running machine unless said otherwise.
enum class Changes { kRunningMachineOnly, kAllowed, kRefused };
MACHINE_API std::shared_ptr<Machine const> MakeLiveMachine(
    std::string root = "/", Changes changes = Changes::kRunningMachineOnly);

}  // namespace machine
