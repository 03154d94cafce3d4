#include "host/machine_turn.h"

#include <sys/wait.h>

#include <cerrno>
#include <cstring>

namespace gatotu::host {
namespace {

// What a worker may be ahead of those before it. Then it waits, and the time counts as its own.
constexpr std::uint64_t kMostKept = std::uint64_t{256} << 20;

KeptOutput::Records RecordsOf(Format format) {
  return format == Format::kCsv ? KeptOutput::Records::kCsv : KeptOutput::Records::kLines;
}

bool IsOurs(int wait_status) {
  return WIFEXITED(wait_status) &&
         WEXITSTATUS(wait_status) <= static_cast<int>(ExitStatus::kUnusable);
}

std::string InWords(int wait_status) {
  if (!WIFSIGNALED(wait_status)) return "status " + std::to_string(WEXITSTATUS(wait_status));
  int const signal = WTERMSIG(wait_status);
  return "signal " + std::to_string(signal) + " (" + ::strsignal(signal) + ")";
}

}  // namespace

MachineTurn::MachineTurn(std::string machine, Format format)
    : machine_(std::move(machine)),
      format_(format),
      answers_(RecordsOf(format)),
      messages_(KeptOutput::Records::kLines) {}

bool MachineTurn::Start(FunctionRef<ExitStatus()> ask, sigset_t const& signals) {
  worker_ = MachineWorker::Start(ask, signals);
  return worker_ != nullptr;
}

void MachineTurn::Fail(int error) {
  End("no-worker", std::string("no process can be started: ") + std::strerror(error),
      ExitStatus::kUnusable);
}

bool MachineTurn::IsFull() const {
  return answers_.Waiting() > kMostKept || messages_.Waiting() > kMostKept;
}

void MachineTurn::Collect() {
  // In this order there is no message without the answers that were written before it.
  Keep(messages_, worker_->ReadMessages());
  Keep(answers_, worker_->ReadAnswers());
  if (worker_->HasEnded()) Finish();
}

void MachineTurn::Keep(KeptOutput& output, std::string const& bytes) {
  if (failure_ || output.Append(bytes)) return;
  End("no-room", std::string("what it says cannot be kept: ") + std::strerror(errno),
      ExitStatus::kNoAnswer);
}

void MachineTurn::Finish() {
  int const wait_status = worker_->WaitStatus();
  worker_.reset();
  if (!failure_ && IsOurs(wait_status)) {
    answers_.CompleteRest();
    messages_.CompleteRest();
    status_ = static_cast<ExitStatus>(WEXITSTATUS(wait_status));
    return;
  }
  answers_.DropRest();
  messages_.DropRest();
  if (failure_) return;
  // It was told to end before it could say so itself.
  if (is_interrupted_ && WIFSIGNALED(wait_status) && WTERMSIG(wait_status) == SIGINT) {
    status_ = ExitStatus::kInterrupted;
    return;
  }
  End("worker-ended", "the process that asked it ended by " + InWords(wait_status),
      ExitStatus::kUnusable);
}

void MachineTurn::EndIfSilent(MachineWorker::Clock::duration most) {
  if (MachineWorker::Clock::now() - worker_->LastHeard() <= most) return;
  End("time-limit", "nothing was heard of it within the time limit", ExitStatus::kInterrupted);
}

void MachineTurn::End(std::string_view code, std::string const& why, ExitStatus status) {
  failure_ = MachineFailure{machine_, code, machine_ + ": " + why};
  status_ = status;
  if (worker_ != nullptr) worker_->Signal(SIGKILL);
}

void MachineTurn::Interrupt() {
  is_interrupted_ = true;
  if (worker_ != nullptr) worker_->Signal(SIGINT);
}

void MachineTurn::Disown() {
  if (worker_ != nullptr) worker_->Disown();
}

void MachineTurn::PassOn(PassedOutput& answers, PassedOutput& messages) {
  PassOn(answers_, answers);
  PassOn(messages_, messages);
  if (IsRunning() || !failure_) return;
  if (format_ == Format::kJson) {
    answers.Write(JsonLineOf(*failure_));
  } else {
    messages.Write(ComplaintLine(failure_->message));
  }
}

void MachineTurn::PassOn(KeptOutput& kept, PassedOutput& output) {
  std::string bytes;
  while (kept.HasRecords() && !output.IsBroken()) {
    if (!kept.Take(bytes)) return End("no-room", "what it said is lost", ExitStatus::kNoAnswer);
    output.Write(bytes);
  }
}

}  // namespace gatotu::host
