#include "machine/capture/document.h"
#include "machine/capture/recording.h"
#include "machine/capture/values.h"

namespace machine::capture {
namespace {

constexpr char kEnvironment[] = "Environment", kEnvironmentNames[] = "EnvironmentNames";
constexpr char kProcesses[] = "Processes";

}  // namespace

// The clock stands where it was read first.
void RecordedFacts::Keep(std::string const& key, Fact<Record> fact) {
  std::lock_guard lock(guard_);
  if (key == "Taken" || key == "TakenMicroseconds") {
    facts_.try_emplace(key, std::move(fact));
  } else {
    facts_.insert_or_assign(key, std::move(fact));
  }
}

void RecordedFacts::Keep(std::string const& group, std::string const& key, Fact<Record> fact) {
  std::lock_guard lock(guard_);
  groups_[group].insert_or_assign(key, std::move(fact));
}

void RecordedFacts::KeepProcess(std::int32_t pid, Fact<Process> const& process) {
  std::lock_guard lock(guard_);
  if (process) processes_[pid] = process->name;
  if (!process) groups_[kProcesses].insert_or_assign(std::to_string(pid), process.absence());
}

void RecordedFacts::KeepProcesses(Fact<std::vector<Process>> const& processes) {
  std::lock_guard lock(guard_);
  has_all_processes_ = processes.has_value();
  if (!processes) facts_.insert_or_assign(kProcesses, processes.absence());
  if (!processes) return;
  facts_.erase(kProcesses);
  processes_.clear();
  for (Process const& process : *processes) processes_[process.pid] = process.name;
}

// Partial unless every variable was asked. The names keep the order, which dictionaries need not.
void RecordedFacts::AddEnvironment(RecordDictionary& document, RecordArray& partial) const {
  auto const group = groups_.find(kEnvironment);
  auto const names = facts_.find(kEnvironmentNames);
  RecordDictionary values;
  if (group != groups_.end()) {
    for (auto const& [key, value] : group->second) {
      if (value) values.Add(key, *value);
    }
  }
  bool const has_names = names != facts_.end() && names->second;
  std::size_t const count = has_names ? names->second->As<RecordArray>()->size() : 0;
  if (!has_names || count != values.entries().size()) {
    partial.emplace_back(std::string(kEnvironment));
  }
  if (has_names || !values.entries().empty()) document.Add(kEnvironment, std::move(values));
}

void RecordedFacts::AddProcesses(RecordDictionary& document, RecordArray& partial) const {
  if (!has_all_processes_) partial.emplace_back(std::string(kProcesses));
  if (!has_all_processes_ && processes_.empty()) return;
  RecordArray processes;
  for (auto const& [pid, name] : processes_) {
    RecordDictionary process;
    process.Add("pid", std::int64_t{pid});
    process.Add("name", RecordOfBytes(name));
    processes.emplace_back(std::move(process));
  }
  document.Add(kProcesses, std::move(processes));
}

RecordDictionary RecordedFacts::Document(RecordedScsi const& scsi) const {
  std::lock_guard lock(guard_);
  RecordDictionary document, absent;
  RecordArray partial;
  document.Add("FormatVersion", std::int64_t{kFormatVersion});
  for (auto const& [key, fact] : facts_) {
    if (!fact) absent.Add(key, RecordOf(fact.absence()));
    if (fact) document.Add(key, *fact);
  }
  for (auto const& [group, members] : groups_) {
    RecordDictionary values;
    for (auto const& [key, fact] : members) {
      if (fact) values.Add(key, *fact);
      if (!fact) absent.Add(group + "." + key, RecordOf(fact.absence()));
    }
    if (group != kEnvironment && group != kProcesses && !values.entries().empty()) {
      document.Add(group, std::move(values));
    }
  }
  AddEnvironment(document, partial);
  AddProcesses(document, partial);
  scsi.AddTo(document, absent, partial);
  partial.emplace_back(std::string("Files"));
  document.Add("Partial", std::move(partial));
  if (!absent.entries().empty()) document.Add("Absent", std::move(absent));
  return document;
}

}  // namespace machine::capture
