#include <algorithm>
#include <charconv>
#include <cstring>

#include "machine/live/folder_entries.h"
#include "machine/live/sources.h"
#include "machine/live/text.h"

namespace machine::live {
namespace {

constexpr char const* kFolder = "/proc";

// The number of the process that an entry of /proc stands for; 0 for the other entries.
std::int32_t NumberOfEntry(char const* name) {
  if (name[0] < '1' || name[0] > '9') return 0;
  return ParseNumber<std::int32_t>(name).value_or(0);
}

// "<pid>/comm"
struct NamePath {
  explicit NamePath(std::int32_t pid) {
    char* const end = std::to_chars(text, text + 12, pid).ptr;
    std::memcpy(end, "/comm", 6);
  }
  char text[20];
};

void AnnounceName(NamePath const& path, Outcome outcome, std::uint64_t bytes) {
  if (CurrentSourceObserver() == nullptr) return;
  Announce(std::string(kFolder) + "/" + path.text, outcome, bytes);
}

}  // namespace

// False when the process vanished, with `errno` set. The kernel ends a name with a line feed, and a
// name may hold line feeds of its own.
bool Processes::ReadName(int proc, Process& process) const {
  NamePath const path(process.pid);
  FileDescriptor const file = root_.OpenFileIn(proc, path.text);
  char text[128];
  ssize_t const size = file.is_open() ? ::read(file.number(), text, sizeof text) : -1;
  if (size < 0) {
    AnnounceName(path, OutcomeOf(errno), 0);
    return false;
  }
  AnnounceName(path, Outcome::kAnswered, static_cast<std::uint64_t>(size));
  std::size_t length = static_cast<std::size_t>(size);
  if (length > 0 && text[length - 1] == '\n') --length;
  std::memcpy(process.name, text, std::min(length, sizeof process.name - 1));
  return true;
}

Fact<std::size_t> Processes::CountProcesses() const {
  FileDescriptor const proc = root_.OpenFolder(kFolder);
  std::size_t count = 0;
  bool const is_read = proc.is_open() && ForEachEntry(proc.number(), [&](char const* name) {
                         count += static_cast<std::size_t>(name[0] >= '1' && name[0] <= '9');
                       });
  if (!is_read) return AnnounceAbsence(OutcomeOf(errno), kFolder);
  Announce(kFolder, Outcome::kAnswered);
  return count;
}

Fact<std::vector<Process>> Processes::AllProcesses() const {
  FileDescriptor const proc = root_.OpenFolder(kFolder);
  std::vector<Process> processes;
  bool const is_read = proc.is_open() && ForEachEntry(proc.number(), [&](char const* name) {
                         Process process = {.pid = NumberOfEntry(name)};
                         if (process.pid != 0 && ReadName(proc.number(), process))
                           processes.push_back(process);
                       });
  if (!is_read) return AnnounceAbsence(OutcomeOf(errno), kFolder);
  Announce(kFolder, Outcome::kAnswered);
  // The kernel lists in this order; a recorded tree may not.
  auto const by_pid = [](Process const& left, Process const& right) {
    return left.pid < right.pid;
  };
  if (!std::is_sorted(processes.begin(), processes.end(), by_pid)) {
    std::sort(processes.begin(), processes.end(), by_pid);
  }
  return processes;
}

// A thread has a folder too, though none that is listed: its group's number tells it from a
// process.
Fact<Process> Processes::ProcessWithPid(std::int32_t pid) const {
  std::string const folder = std::string(kFolder) + "/" + std::to_string(pid);
  if (pid <= 0) return AnnounceAbsence(Outcome::kAbsent, folder);
  FileDescriptor const proc = root_.OpenFolder(kFolder);
  if (!proc.is_open()) return AnnounceAbsence(OutcomeOf(errno), kFolder);
  Process process = {.pid = pid};
  if (!ReadName(proc.number(), process)) {
    return Absence{errno == ESRCH ? Outcome::kAbsent : OutcomeOf(errno), folder, {}};
  }
  if (Fact<std::string> const status = root_.ReadFile(folder + "/status")) {
    auto const group = FindValue(*status, "Tgid");
    if (group && *group != std::to_string(pid)) {
      return Absence{Outcome::kAbsent, folder, "a thread, not a process"};
    }
  }
  return process;
}

}  // namespace machine::live
