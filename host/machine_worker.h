// A process that asks one machine, forked of the command when all vocabularies are loaded. Being a
// copy it starts within a millisecond, and what it comes to grief by costs its machine's answer
// alone.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <string>

#include "evaluator/function_ref.h"
#include "host/exit_status.h"
#include "machine/file_descriptor.h"

namespace gatotu::host {

class MachineWorker {
 public:
  using Clock = std::chrono::steady_clock;

  // Runs `ask` in a new process, with pipes to us in the place of standard output and standard
  // error, and signals blocked as in `signals`. Null, with `errno`, when there can be none. To be
  // called while there is one thread. The worker ends with the command, however that ends.
  static std::unique_ptr<MachineWorker> Start(FunctionRef<ExitStatus()> ask,
                                              sigset_t const& signals);
  // Kills what still runs, and leaves no zombie.
  ~MachineWorker();
  MachineWorker(MachineWorker const&) = delete;
  MachineWorker& operator=(MachineWorker const&) = delete;

  // To be polled; -1 when all was read.
  int Answers() const { return answers_.number(); }
  int Messages() const { return messages_.number(); }

  // At most 64 KiB, as much as a pipe holds, of what there is without waiting.
  std::string ReadAnswers() { return Read(answers_); }
  std::string ReadMessages() { return Read(messages_); }

  // When it started, or something was read.
  Clock::time_point LastHeard() const { return last_heard_; }

  void Signal(int signal) const { ::kill(process_, signal); }

  // In a copy of the command, whose worker this is not: its end is nothing to that one.
  void Disown() { process_ = 0; }

  bool HasEnded() const { return !answers_.is_open() && !messages_.is_open(); }
  // As `waitpid` tells, once it has ended.
  int WaitStatus();

 private:
  MachineWorker(pid_t process, machine::FileDescriptor answers, machine::FileDescriptor messages)
      : process_(process), answers_(std::move(answers)), messages_(std::move(messages)) {}

  std::string Read(machine::FileDescriptor& from);

  pid_t process_;  // 0: has been waited for, or is not ours
  machine::FileDescriptor answers_;
  machine::FileDescriptor messages_;
  Clock::time_point last_heard_ = Clock::now();
};

}  // namespace gatotu::host
