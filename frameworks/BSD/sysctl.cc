#include <BSD/sysctl.h>

#include <cerrno>
#include <cstring>
#include <span>

#include "machine/machine.h"

namespace BSD {
namespace {

int Fail(int error) {
  errno = error;
  return -1;
}

int ErrorOf(machine::Outcome reason, int absent) {
  switch (reason) {
    case machine::Outcome::kPermissionRefused:
      return EACCES;
    case machine::Outcome::kMalformed:
      return EIO;
    case machine::Outcome::kNotSupported:
      return ENOTSUP;
    case machine::Outcome::kTimedOut:
      return ETIMEDOUT;
    default:
      return absent;
  }
}

kinfo_proc RecordOf(machine::Process const& process) {
  static_assert(sizeof process.name == sizeof extern_proc::p_comm);
  kinfo_proc record;
  record.kp_proc.p_pid = process.pid;
  std::memcpy(record.kp_proc.p_comm, process.name, sizeof process.name);
  return record;
}

// The caller's buffer: a size question when there is none.
struct Answer {
  void* buffer;
  std::size_t* size;

  int Give(void const* value, std::size_t value_size) const {
    if (size == nullptr) return Fail(EFAULT);
    if (buffer != nullptr) {
      if (*size < value_size) return Fail(ENOMEM);
      std::memcpy(buffer, value, value_size);
    }
    *size = value_size;
    return 0;
  }
};

// Room for the processes that start between the size question and the list.
std::size_t WithSlack(std::size_t count) { return count + count / 8 + 8; }

int AllProcesses(machine::ProcessSource const& source, Answer const& answer) {
  if (answer.size == nullptr) return Fail(EFAULT);
  if (answer.buffer == nullptr) {
    auto const count = source.CountProcesses();
    if (!count) return Fail(ErrorOf(count.outcome(), ENOENT));
    *answer.size = WithSlack(*count) * sizeof(kinfo_proc);
    return 0;
  }
  auto const processes = source.AllProcesses();
  if (!processes) return Fail(ErrorOf(processes.outcome(), ENOENT));
  std::size_t const size = processes->size() * sizeof(kinfo_proc);
  if (size > *answer.size) return Fail(ENOMEM);
  auto* record = static_cast<kinfo_proc*>(answer.buffer);
  for (machine::Process const& process : *processes) *record++ = RecordOf(process);
  *answer.size = size;
  return 0;
}

int OneProcess(machine::ProcessSource const& source, int pid, Answer const& answer) {
  auto const process = source.ProcessWithPid(pid);
  if (!process) return Fail(ErrorOf(process.outcome(), ESRCH));
  kinfo_proc const record = RecordOf(*process);
  return answer.Give(&record, sizeof record);
}

int BootTime(machine::ClockSource const& source, Answer const& answer) {
  auto const seconds = source.BootSecondsSince1970();
  if (!seconds) return Fail(ErrorOf(seconds.outcome(), ENOENT));
  timeval const time = {*seconds, 0};
  return answer.Give(&time, sizeof time);
}

}  // namespace

int sysctl(int const* name, unsigned namelen, void* oldp, std::size_t* oldlenp, void const* newp,
           std::size_t) {
  std::span const path(name, namelen);
  Answer const answer = {oldp, oldlenp};
  if (newp != nullptr) return Fail(EPERM);
  if (path.size() < 2 || path[0] != CTL_KERN) return Fail(ENOENT);
  machine::Machine const& machine = machine::CurrentMachine();
  if (path[1] == KERN_BOOTTIME && path.size() == 2) return BootTime(machine.Clock(), answer);
  if (path[1] != KERN_PROC || path.size() < 3) return Fail(ENOENT);
  if (path[2] == KERN_PROC_ALL && path.size() <= 4) {
    return AllProcesses(machine.Processes(), answer);
  }
  if (path[2] == KERN_PROC_PID && path.size() == 4) {
    return OneProcess(machine.Processes(), path[3], answer);
  }
  return Fail(ENOENT);
}

}  // namespace BSD
