// One of several machines, from the start of its worker until all it said is passed on.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/answer_writer.h"
#include "host/exit_status.h"
#include "host/kept_output.h"
#include "host/machine_failure.h"
#include "host/machine_worker.h"
#include "host/passed_output.h"

namespace gatotu::host {

class MachineTurn {
 public:
  MachineTurn(std::string machine, Format format);

  // As `MachineWorker::Start`; false, with `errno`, when there can be no worker now.
  bool Start(FunctionRef<ExitStatus()> ask, sigset_t const& signals);
  // There is to be none at all.
  void Fail(int error);

  std::string const& Machine() const { return machine_; }
  bool IsRunning() const { return worker_ != nullptr; }
  // Of one that is running.
  MachineWorker const& Worker() const { return *worker_; }
  // So much is kept that it has to wait for its turn.
  bool IsFull() const;

  // Keeps what the worker wrote, and how it ended.
  void Collect();
  // Ends a worker of which nothing was heard for longer than it may take.
  void EndIfSilent(MachineWorker::Clock::duration most);
  void Interrupt();
  // Nobody reads what is said about answers any more: nothing of it is kept.
  void DropMessages() { messages_.DropAll(); }

  // See `MachineWorker`.
  void Disown();

  // When it is this one's turn. Answers appear before what is said about them.
  void PassOn(PassedOutput& answers, PassedOutput& messages);
  ExitStatus Status() const { return status_; }

 private:
  void Keep(KeptOutput& output, std::string const& bytes);
  void Finish();
  void End(std::string_view code, std::string const& why, ExitStatus status);
  void PassOn(KeptOutput& kept, PassedOutput& output);

  std::string machine_;
  Format format_;
  std::unique_ptr<MachineWorker> worker_;
  KeptOutput answers_;
  KeptOutput messages_;
  std::optional<MachineFailure> failure_;
  bool is_interrupted_ = false;
  ExitStatus status_ = ExitStatus::kAnswered;
};

}  // namespace gatotu::host
