// A machine for several threads at once: its clock is set, its directory has an account for every
// name and may fail, and its files are those at hand.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "machine/machine.h"

namespace gatotu::tests {

class RefreshedMachine final : public machine::Machine,
                               private machine::ClockSource,
                               private machine::NameSource,
                               private machine::DirectorySource,
                               private machine::SessionSource {
 public:
  static constexpr std::int64_t kSecond = 1'000'000;

  std::atomic<std::int64_t> microseconds = 1'795'244'400 * kSecond;  // 0: tells no time
  // Of a hundred questions to the network.
  std::atomic<unsigned> failures = 0;
  mutable std::atomic<int> questions = 0;
  // Set these before anybody asks. The first runs in every question to the network.
  std::function<void()> on_question = [] {};
  std::vector<std::pair<std::string, std::string>> local_users;  // names and numbers
  std::vector<std::string> sessions;                             // names of users

  void Advance(std::int64_t seconds) { microseconds += seconds * kSecond; }
  static std::string DistinguishedName(std::string const& name) { return "CN=" + name + ",DC=c"; }

  machine::ClockSource const& Clock() const override { return *this; }
  machine::NameSource const& Names() const override { return *this; }
  machine::DirectorySource const& Directory() const override { return *this; }
  machine::SessionSource const& Sessions() const override { return *this; }
  machine::FileSource const& Files() const override { return live_->Files(); }
  machine::TimeZoneSource const& Zone() const override { return live_->Zone(); }

 private:
  template <typename T>
  using Fact = machine::Fact<T>;
  using Records = machine::DirectoryRecords;

  Fact<std::int64_t> MicrosecondsSince1970() const override {
    if (microseconds == 0) return machine::Absence{machine::Outcome::kAbsent, "clock", {}};
    return microseconds.load();
  }
  Fact<std::string> HostName() const override { return std::string("mac"); }
  Fact<std::string> ComputerName() const override { return std::string("mac"); }
  Fact<Records> Find(machine::DirectoryQuery const& query) const override;
  Fact<machine::RecordDictionary> ConsoleUser() const override;
  Records LocalRecords() const;

  std::shared_ptr<machine::Machine const> const live_ = machine::MakeLiveMachine();
  mutable std::atomic<unsigned> random_ = 1;
};

}  // namespace gatotu::tests
