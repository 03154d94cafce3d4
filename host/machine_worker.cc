#include "host/machine_worker.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <exception>

#include "host/output.h"

namespace gatotu::host {
namespace {

using machine::FileDescriptor;

constexpr std::size_t kPipeBytes = std::size_t{64} << 10;

// The end that is read does not wait; that is nothing to the other one.
bool MakePipe(FileDescriptor& to_read, FileDescriptor& to_write) {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) return false;
  to_read = FileDescriptor(ends[0]);
  to_write = FileDescriptor(ends[1]);
  return ::fcntl(ends[0], F_SETFL, O_NONBLOCK) == 0;
}

// Asks in the new process, which takes nothing of the command's own end: no destructor, no exit
// handler.
[[noreturn]] void Work(pid_t command, FunctionRef<ExitStatus()> ask) {
  // A group of its own: Ctrl-C is for the command, which tells its workers what to do.
  ::setpgid(0, 0);
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ExitStatus status = ExitStatus::kUnusable;
  try {
    // The command may be gone already, and then nobody would tell.
    if (::getppid() == command) status = ask();
  } catch (std::exception const& failure) {
    Complain(failure.what());
    status = ExitStatus::kNoAnswer;
  }
  ::_exit(static_cast<int>(status));
}

}  // namespace

std::unique_ptr<MachineWorker> MachineWorker::Start(FunctionRef<ExitStatus()> ask,
                                                    sigset_t const& signals) {
  FileDescriptor answers, messages, answers_end, messages_end;
  FileDescriptor const nothing(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  if (!nothing.is_open() || !MakePipe(answers, answers_end) || !MakePipe(messages, messages_end)) {
    return nullptr;
  }
  // Whoever started us may have had it ignored, and then nobody is told how a process ended.
  ::signal(SIGCHLD, SIG_DFL);
  pid_t const command = ::getpid();
  pid_t const process = ::fork();
  if (process < 0) return nullptr;
  if (process == 0) {
    ::dup2(nothing.number(), STDIN_FILENO);
    ::dup2(answers_end.number(), STDOUT_FILENO);
    ::dup2(messages_end.number(), STDERR_FILENO);
    ::sigprocmask(SIG_SETMASK, &signals, nullptr);
    Work(command, ask);
  }
  return std::unique_ptr<MachineWorker>(
      new MachineWorker(process, std::move(answers), std::move(messages)));
}

MachineWorker::~MachineWorker() {
  if (process_ == 0) return;
  Signal(SIGKILL);
  WaitStatus();
}

std::string MachineWorker::Read(FileDescriptor& from) {
  char buffer[kPipeBytes];
  ssize_t const got = from.is_open() ? ::read(from.number(), buffer, sizeof buffer) : 0;
  if (got == 0 || (got < 0 && errno != EAGAIN && errno != EINTR)) from = FileDescriptor();
  if (got <= 0) return {};
  last_heard_ = Clock::now();
  return {buffer, static_cast<std::size_t>(got)};
}

int MachineWorker::WaitStatus() {
  int status = 0;
  while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = 0;
  return status;
}

}  // namespace gatotu::host
