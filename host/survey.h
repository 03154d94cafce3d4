// The same expressions asked of many machines, by workers side by side. What they say comes in the
// order of the machines, and what is held of it meanwhile does not grow with their number.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "host/command_line.h"
#include "host/exit_status.h"
#include "host/interruption.h"
#include "host/machine_list.h"
#include "host/machine_turn.h"
#include "host/passed_output.h"

namespace gatotu::host {

class Survey {
 public:
  // Asks the expressions of `line`, not its file. `line` outlives the survey.
  Survey(CommandLine const& line, bool names_expression, MachineList machines);

  ExitStatus Hold();

 private:
  void StartWorkers();
  bool StartNext();
  std::size_t Running() const;
  ExitStatus Ask(std::string const& machine);

  void Wait();
  int WaitMilliseconds() const;
  bool IsReadFrom(MachineTurn const& turn) const;
  void Collect();
  void Interrupt();
  void PassOn();
  ExitStatus End();

  CommandLine const& line_;
  bool names_expression_;
  MachineList machines_;
  Interruption interruption_;
  PassedOutput answers_;
  PassedOutput messages_;
  MachineWorker::Clock::duration longest_silence_;  // 0: any
  std::deque<std::unique_ptr<MachineTurn>> turns_;  // started and not yet passed on, in order
  std::unique_ptr<MachineTurn> next_;               // not started yet
  bool has_more_ = true;
  bool is_list_late_ = false;
  bool is_interrupted_ = false;
  ExitStatus status_ = ExitStatus::kAnswered;
};

}  // namespace gatotu::host
