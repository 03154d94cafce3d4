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

  Fact<Records> Find(machine::DirectoryQuery const& query) const override {
    bool const is_local = query.node == machine::DirectoryNode::kLocal;
    if (!is_local && IsFailing())
      return machine::Absence{machine::Outcome::kTimedOut, "script", {}};
    Records records;
    auto const add = [&](std::string const& name, std::string const& attribute,
                         std::string const& value) {
      machine::DirectoryRecord record = {query.type, name, "/LDAPv3/script", {}};
      if (is_local) record.node = machine::kLocalNode;
      record.Add(attribute, value);
      records.Add(record);
    };
    if (is_local) {
      for (auto const& [name, id] : local_users) add(name, "dsAttrTypeStandard:UniqueID", id);
      return records;
    }
    std::string const& requested = query.requested.front();
    bool const wants_groups = requested == "dsAttrTypeNative:tokenGroups";
    for (std::string const& name : query.values) {
      add(name, requested,
          wants_groups ? std::string("\1\1\0\0\0\0\0\5\7\0\0\0", 12) : DistinguishedName(name));
    }
    return records;
  }

  bool IsFailing() const {
    ++questions;
    on_question();
    unsigned const random = random_.fetch_add(1) * 2654435761u >> 16;
    return random % 100 < failures;
  }

  Fact<machine::RecordDictionary> ConsoleUser() const override {
    machine::RecordArray array;
    for (std::string const& name : sessions) {
      machine::RecordDictionary session;
      session.Add("kCGSSessionUserNameKey", name);
      array.emplace_back(std::move(session));
    }
    machine::RecordDictionary console;
    console.Add("SessionInfo", std::move(array));
    return console;
  }

  std::shared_ptr<machine::Machine const> const live_ = machine::MakeLiveMachine();
  mutable std::atomic<unsigned> random_ = 1;
};

}  // namespace gatotu::tests
