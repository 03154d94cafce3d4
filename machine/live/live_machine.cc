#include "machine/gestalt.h"
#include "machine/live/sources.h"
#include "machine/machine.h"

namespace machine {
namespace {

class LiveMachine final : public Machine {
 public:
  explicit LiveMachine(std::string root) : root_(std::move(root)) {}

  ClockSource const& Clock() const override { return clock_; }
  TimeZoneSource const& Zone() const override { return zone_; }
  EnvironmentSource const& Environment() const override { return environment_; }
  NameSource const& Names() const override { return names_; }
  MemorySource const& Memory() const override { return memory_; }
  ProcessorSource const& Processors() const override { return processors_; }
  HardwareSource const& Hardware() const override { return hardware_; }
  ProcessSource const& Processes() const override { return processes_; }
  GestaltSource const& Gestalt() const override { return gestalt_; }

 private:
  live::Root root_;
  live::Clock clock_{root_};
  live::Zone zone_{root_};
  live::Environment environment_{root_};
  live::Names names_{root_};
  live::Memory memory_{root_};
  live::Processors processors_{root_};
  live::Hardware hardware_{root_};
  live::Processes processes_{root_};
  DerivedGestalt gestalt_{*this};
};

}  // namespace

std::shared_ptr<Machine const> MakeLiveMachine(std::string root, Changes) {
  return std::make_shared<LiveMachine const>(std::move(root));
}

}  // namespace machine
