// Reading accounts from the directory: one that is in this process, so that what is measured is
// ours.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "inspectors/activedirectory/directory/active_directory_inspector_context.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"
#include "inspectors/activedirectory/directory/record_lookup.h"
#include "machine/machine.h"

namespace {

using machine::DirectoryRecord;

std::string Sid(std::uint32_t number) {
  std::string sid("\1\1\0\0\0\0\0\5", 8);
  for (int shift = 0; shift < 32; shift += 8) sid += static_cast<char>(number >> shift);
  return sid;
}

// One user in so many groups, and as many local accounts.
class ManyGroups final : public machine::DirectorySource {
 public:
  explicit ManyGroups(std::uint32_t count) {
    std::vector<std::string> sids;
    for (std::uint32_t number = 1; number <= count; ++number) {
      sids.push_back(Sid(number));
      std::string const name = std::to_string(number);
      groups_["S-1-5-" + name] = Record(
          machine::kGroupRecords, "g" + name,
          {{"dsAttrTypeNative:distinguishedName", {"CN=Staff " + name + ",OU=Groups,DC=corp"}}});
      accounts_.push_back(Record(machine::kUserRecords, name,
                                 {{"dsAttrTypeStandard:RecordName", {name}},
                                  {"dsAttrTypeStandard:UniqueID", {name}},
                                  {"dsAttrTypeStandard:NFSHomeDirectory", {"/home/" + name}}}));
    }
    names_ = {Record(machine::kUserRecords, "ann",
                     {{"dsAttrTypeNative:distinguishedName", {"CN=ann,DC=corp"}}})};
    sids_ = {
        Record(machine::kUserRecords, "ann", {{"dsAttrTypeNative:tokenGroups", std::move(sids)}})};
  }

  machine::Fact<machine::DirectoryRecords> Find(
      machine::DirectoryQuery const& query) const override {
    if (query.type == machine::kGroupRecords) return std::vector{groups_.at(query.values[0])};
    if (query.values.empty()) return accounts_;
    return query.requested[0] == "dsAttrTypeNative:tokenGroups" ? sids_ : names_;
  }

 private:
  static DirectoryRecord Record(std::string_view type, std::string name,
                                std::vector<machine::DirectoryAttribute> attributes) {
    return {std::string(type), std::move(name), {}, std::move(attributes)};
  }

  std::unordered_map<std::string, DirectoryRecord> groups_;
  std::vector<DirectoryRecord> accounts_, names_, sids_;
};

class FixedClock final : public machine::ClockSource {
  machine::Fact<std::int64_t> MicrosecondsSince1970() const override { return 1; }
  machine::Fact<std::int64_t> BootSecondsSince1970() const override { return 1; }
};

class Host final : public machine::Machine {
 public:
  explicit Host(std::uint32_t groups) : directory_(groups) {}
  machine::DirectorySource const& Directory() const override { return directory_; }
  machine::ClockSource const& Clock() const override { return clock_; }

 private:
  ManyGroups directory_;
  FixedClock clock_;
};

// Keeps no record.
class Context final : public ActiveDirectoryInspectorContext {
  bool AreLookupsEnabled() const override { return true; }
  std::uint32_t ComputerRefreshInterval() const override { return 0; }
  std::uint32_t UserRefreshInterval() const override { return 0; }
  bool FindComputerCache(FileLocation&) const override { return false; }
  bool FindUserCache(std::string const&, FileLocation&) const override { return false; }
  ActiveDirectoryLocalComputer* LocalComputer() const override { return nullptr; }
  ActiveDirectoryLocalUser* LocalUser(std::string const&, std::string const&) const override {
    return nullptr;
  }
  ActiveDirectoryLocalUser* LocalUserAt(std::uint32_t) const override { return nullptr; }
  bool ShouldStop() const override { return false; }
};

// Items are groups.
void RefreshUser(benchmark::State& state) {
  machine::SetCurrentMachine(std::make_shared<Host>(static_cast<std::uint32_t>(state.range())));
  for (auto _ : state) {
    Context const context;
    ActiveDirectoryLocalUser user("ann");
    user.Refresh(&context);
    bool const is_read =
        user.GetStatus() == ActiveDirectoryLocalUser::Status::kSucceeded &&
        user.GetGroups().back().GetName() == "Staff " + std::to_string(state.range());
    if (!is_read) state.SkipWithError("not read");
  }
  state.SetItemsProcessed(state.iterations() * state.range());
  machine::SetCurrentMachine(nullptr);
}

// Items are users.
void ListUsers(benchmark::State& state) {
  machine::SetCurrentMachine(std::make_shared<Host>(static_cast<std::uint32_t>(state.range())));
  for (auto _ : state) {
    auto const users = GetODObjectListOfType(std::string(machine::kUserRecords));
    if (static_cast<std::int64_t>(users.size()) != state.range()) state.SkipWithError("not read");
  }
  state.SetItemsProcessed(state.iterations() * state.range());
  machine::SetCurrentMachine(nullptr);
}

BENCHMARK(RefreshUser)->Unit(benchmark::kMillisecond)->RangeMultiplier(10)->Range(100, 100'000);
BENCHMARK(ListUsers)->Unit(benchmark::kMillisecond)->RangeMultiplier(10)->Range(100, 10'000);

}  // namespace

BENCHMARK_MAIN();
