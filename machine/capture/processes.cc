#include <algorithm>
#include <cstring>

#include "machine/capture/item_list.h"
#include "machine/capture/sources.h"

namespace machine::capture {
namespace {

constexpr char kKey[] = "Processes", kCount[] = "ProcessCount";

// No kernel has numbers for more.
constexpr std::uint64_t kMostProcesses = std::uint64_t{1} << 22;

Fact<Process> ProcessIn(Field const& field) {
  Fact<std::int64_t> const pid = field["pid"].Integer(1, INT32_MAX);
  if (!pid) return pid.absence();
  Fact<std::string> const name = field["name"].Text();
  if (!name) return name.absence();
  Process process = {.pid = static_cast<std::int32_t>(*pid)};
  std::memcpy(process.name, name->data(), std::min(name->size(), sizeof process.name - 1));
  return process;
}

Fact<std::size_t> CountIn(Field const& field) {
  Fact<std::uint64_t> const count = field.Unsigned(kMostProcesses);
  if (!count) return count.absence();
  return static_cast<std::size_t>(*count);
}

// In ascending order, of equal numbers the first.
Fact<std::vector<Process>> ProcessesIn(Field const& field, std::vector<Absence>& left_out) {
  auto listed = ItemsIn(field, ProcessIn, left_out);
  if (!listed) return listed;
  std::vector<Process>& processes = listed.value();
  std::ranges::stable_sort(processes, {}, &Process::pid);
  auto const is_same = [](Process const& left, Process const& right) {
    return left.pid == right.pid;
  };
  processes.erase(std::unique(processes.begin(), processes.end(), is_same), processes.end());
  return listed;
}

}  // namespace

Fact<std::vector<Process>> Processes::Listed() const {
  return facts_.Ask(kKey, [this](Field const& field) {
    std::call_once(is_read_, [&] { processes_ = ProcessesIn(field, left_out_); });
    std::ranges::for_each(left_out_, AnnounceLeftOut);
    return *processes_;
  });
}

// Never less than are listed, as who asks makes room for so many.
Fact<std::size_t> Processes::CountProcesses() const {
  Fact<std::size_t> count = std::size_t{0};
  bool const is_told = facts_.Knows(kCount);
  if (is_told) count = facts_.Ask(kCount, CountIn);
  bool const is_listed = facts_[kKey].exists() && !facts_.IsPartial(kKey);
  bool const is_refused = !count && count.outcome() != Outcome::kMalformed;
  if (is_refused || (is_told && !is_listed)) return count;
  Fact<std::vector<Process>> const processes = AllProcesses();
  if (!processes) return processes.absence();
  return std::max(processes->size(), count ? *count : 0);
}

Fact<std::vector<Process>> Processes::AllProcesses() const {
  if (facts_.IsPartial(kKey)) return facts_.Missing(kKey);
  return Listed();
}

Fact<Process> Processes::ProcessWithPid(std::int32_t pid) const {
  std::string const name = std::string(kKey) + "." + std::to_string(pid);
  if (facts_[kKey].exists()) {
    Fact<std::vector<Process>> const processes = Listed();
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
