#include <algorithm>
#include <cstring>

#include "machine/capture/sources.h"

namespace machine::capture {
namespace {

constexpr char kKey[] = "Processes";

Fact<Process> ProcessIn(Field const& field) {
  Fact<std::int64_t> const pid = field["pid"].Integer(1, INT32_MAX);
  if (!pid) return pid.absence();
  Fact<std::string> const name = field["name"].Text();
  if (!name) return name.absence();
  Process process = {.pid = static_cast<std::int32_t>(*pid)};
  std::memcpy(process.name, name->data(), std::min(name->size(), sizeof process.name - 1));
  return process;
}

// In ascending order, of equal numbers the first.
Fact<std::vector<Process>> ProcessesIn(Field const& field) {
  if (field.As<RecordArray>() == nullptr) return field.Malformed("not an array");
  std::vector<Process> processes;
  for (Field const& item : field.Items()) {
    Fact<Process> const process = ProcessIn(item);
    if (!process) return process.absence();
    processes.push_back(*process);
  }
  std::stable_sort(processes.begin(), processes.end(),
                   [](Process const& left, Process const& right) { return left.pid < right.pid; });
  auto const last =
      std::unique(processes.begin(), processes.end(),
                  [](Process const& left, Process const& right) { return left.pid == right.pid; });
  processes.erase(last, processes.end());
  return processes;
}

}  // namespace

Fact<std::size_t> Processes::CountProcesses() const {
  constexpr char const* kCount = "ProcessCount";
  if (facts_.Knows(kCount)) {
    return facts_.Ask(kCount, [](Field const& field) -> Fact<std::size_t> {
      Fact<std::uint64_t> const count = field.Unsigned(INT32_MAX);
      if (!count) return count.absence();
      return static_cast<std::size_t>(*count);
    });
  }
  Fact<std::vector<Process>> const processes = AllProcesses();
  if (!processes) return processes.absence();
  return processes->size();
}

Fact<std::vector<Process>> Processes::AllProcesses() const {
  if (facts_.IsPartial(kKey)) return facts_.Missing(kKey);
  return facts_.Ask(kKey, ProcessesIn);
}

Fact<Process> Processes::ProcessWithPid(std::int32_t pid) const {
  std::string const name = std::string(kKey) + "." + std::to_string(pid);
  if (facts_[kKey].exists()) {
    Fact<std::vector<Process>> const processes = facts_.Ask(kKey, ProcessesIn);
    if (!processes) return processes.absence();
    for (Process const& process : *processes) {
      if (process.pid == pid) return process;
    }
    bool const is_known = !facts_.IsPartial(kKey) && !facts_.Knows(name);
    if (is_known) return Absence{Outcome::kAbsent, name, "no such process"};
  }
  return facts_.Missing(name);
}

}  // namespace machine::capture
