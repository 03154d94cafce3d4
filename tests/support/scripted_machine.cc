#include "tests/support/scripted_machine.h"

#include <cstring>

#include "tests/support/big_endian_text.h"

void ScriptedMachine::AddProcess(std::int32_t pid, std::string const& name) {
  machine::Process process = {.pid = pid};
  std::memcpy(process.name, name.data(), std::min(name.size(), sizeof process.name - 1));
  processes.push_back(process);
}

void ScriptedMachine::SetZone(std::string const& name, std::string const& rule) {
  zone = machine::TimeZone{name, machine::ZoneRules::FromPosixText(rule)};
}

machine::Fact<std::string> ScriptedMachine::In(Texts const& texts, std::string const& name) const {
  auto const found = texts.find(name);
  if (found == texts.end()) return Missing();
  return found->second;
}

std::vector<std::string> ScriptedMachine::NamesOf(Texts const& texts) {
  std::vector<std::string> names;
  for (auto const& [name, text] : texts) names.push_back(name);
  return names;
}

machine::Fact<std::size_t> ScriptedMachine::CountProcesses() const {
  std::size_t const count = processes.size();
  if (after_count) after_count();
  if (count == 0) return Missing();
  return count;
}

machine::Fact<std::vector<machine::Process>> ScriptedMachine::AllProcesses() const {
  ++calls_.all_processes;
  return processes;
}

machine::Fact<machine::Process> ScriptedMachine::ProcessWithPid(std::int32_t pid) const {
  ++calls_.one_process;
  for (machine::Process const& process : processes) {
    if (process.pid == pid) return process;
  }
  return Missing();
}

machine::Fact<machine::GestaltResponse> ScriptedMachine::Response(std::uint32_t selector) const {
  ++calls_.gestalt;
  auto const found = gestalt.find(BigEndianText(selector, 4));
  if (found != gestalt.end()) return found->second;
  return derived_.Response(selector);
}

machine::Fact<std::vector<std::uint32_t>> ScriptedMachine::Selectors() const {
  std::vector<std::uint32_t> selectors = *derived_.Selectors();
  for (auto const& [text, response] : gestalt) {
    selectors.push_back(BigEndianNumber(text));
  }
  return selectors;
}
