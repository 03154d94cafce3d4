#include <gtest/gtest.h>

#include <functional>

#include "frameworks/DirectoryService/references.h"
#include "inspectors/activedirectory/directory/active_directory_local_computer.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"
#include "tests/directory/folder_context.h"
#include "tests/support/scripted_machine.h"
#include "tests/support/scripted_records.h"

namespace {

using namespace std::string_literals;
using Status = ActiveDirectoryLocalUser::Status;

constexpr std::int64_t kSecond = 1'000'000;
constexpr std::int64_t kNow = 1'795'244'400 * kSecond;
constexpr char kDistinguishedName[] = "dsAttrTypeNative:distinguishedName";
constexpr char kTokenGroups[] = "dsAttrTypeNative:tokenGroups";
std::string const kSid = "\1\1\0\0\0\0\0\5\7\0\0\0"s;

class Refresh : public testing::Test {
 protected:
  Refresh() {
    auto const live = machine::MakeLiveMachine();
    machine_->files = {live, &live->Files()};
    machine_->directory = directory_;
    machine_->microseconds = kNow;
    machine_->computer_name = "mac";
    for (auto const& [type, name] :
         {std::pair{machine::kComputerRecords, "mac$"}, std::pair{machine::kUserRecords, "ann"}}) {
      directory_->Add(std::string(type), name,
                      {{kDistinguishedName, {"CN=new,DC=c"}}, {kTokenGroups, {kSid}}});
    }
    directory_->Add(
        std::string(machine::kGroupRecords), "staff",
        {{"dsAttrTypeNative:objectSid", {kSid}}, {kDistinguishedName, {"CN=Staff,DC=c"}}});
  }
  void TearDown() override { EXPECT_EQ(DirectoryServiceOpenReferenceCount(), 0u); }

  std::shared_ptr<ScriptedRecords> directory_ = std::make_shared<ScriptedRecords>();
  std::shared_ptr<ScriptedMachine> machine_ = std::make_shared<ScriptedMachine>();
  MachineInUse in_use_{machine_};
  TemporaryFolder folder_;
  FolderContext context_{folder_};
};

TEST_F(Refresh, WaitsUntilItIsTime) {
  constexpr std::uint32_t kDay = 86'400, kNever = ActiveDirectoryInspectorContext::kNeverRefresh;
  struct {
    char const* name;
    char const* distinguished_name;
    std::uint32_t failures, interval;
    std::int64_t age;
    bool is_due;
  } const rows[] = {
      {"one short of the interval", "d", 0, kDay, kDay * kSecond - 1, false},
      {"the interval", "d", 0, kDay, kDay * kSecond, true},
      {"the future", "d", 0, 0, -1, false},
      {"never read", "", 0, kDay, kNow, true},
      {"before all times", "d", 0, kDay, INT64_MAX, true},
      {"as long ago as no number tells", "d", 0, kDay, INT64_MIN, true},
      {"far future", "d", 0, 0, kNow - INT64_MAX, false},
      {"longest interval", "d", 0, kNever - 1, kNow, false},
      {"failures of one with a name", "d", 9, kDay, kDay * kSecond - 1, false},
      {"failed once, short of ten minutes", "", 1, 1, 600 * kSecond - 1, false},
      {"failed once, ten minutes", "", 1, kDay, 600 * kSecond, true},
      {"failed once, the future", "", 1, 0, -1, false},
      {"failed five times", "", 5, kDay, 600 * kSecond, true},
      {"failed six times, short of an hour", "", 6, kDay, 3600 * kSecond - 1, false},
      {"failed six times, an hour", "", 6, kDay, 3600 * kSecond, true},
      {"failed six times, short of the interval", "", 6, 1200, 1200 * kSecond - 1, false},
      {"failed six times, the interval", "", 6, 1200, 1200 * kSecond, true},
      {"failed six times, short interval", "", 6, 1, 600 * kSecond - 1, false},
      {"failed six times, ten minutes", "", 6, 1, 600 * kSecond, true},
      {"failed six times, the future", "", 6, 0, -1, false},
  };
  auto const is_read = [this](auto record, auto const& row) {
    record.SetCacheState(kFilledFromDirectory);
    record.SetDistinguishedName(row.distinguished_name);
    record.SetErrorCount(row.failures);
    // Modulo 2^64, for the ages that no difference tells.
    record.SetLastSampleTime({static_cast<std::int64_t>(static_cast<std::uint64_t>(kNow) -
                                                        static_cast<std::uint64_t>(row.age))});
    context_.interval = row.interval;
    directory_->calls = 0;
    record.Refresh(&context_);
    return directory_->calls != 0;
  };
  for (auto const& row : rows) {
    ActiveDirectoryLocalUser user("ann"), new_user("ann");
    user.SetStatus(Status::kFailed);
    EXPECT_EQ(is_read(ActiveDirectoryLocalComputer(), row), row.is_due) << row.name;
    EXPECT_EQ(is_read(user, row), row.is_due) << row.name;
    EXPECT_TRUE(is_read(new_user, row)) << row.name;
  }
}

TEST_F(Refresh, ComesAskedForAndWithAContextOnly) {
  ActiveDirectoryLocalComputer computer;
  ActiveDirectoryLocalUser user("ann");
  computer.Refresh(&context_);
  computer.SetCacheState(kRequestPending);
  computer.Refresh(nullptr);
  user.Refresh(nullptr);
  EXPECT_EQ(directory_->calls, 0);
  context_.interval = ActiveDirectoryInspectorContext::kNeverRefresh;
  user.Refresh(&context_);
  int const calls = directory_->calls;
  EXPECT_EQ(user.GetStatus(), Status::kSucceeded);
  user.SetLastSampleTime({});
  user.Refresh(&context_);
  EXPECT_EQ(directory_->calls, calls);
}

// A record after one refresh, from one with an old name and group and two failures.
TEST_F(Refresh, KeepsTheOldAnswersBesideAFailure) {
  auto const remove = [this](std::string const& attribute) {
    for (machine::DirectoryRecord& record : directory_->records) {
      std::erase_if(record.attributes, [&](auto const& each) { return each.name == attribute; });
    }
  };
  std::string const failed = "dsGetRecordList() failed";
  struct {
    char const* name;
    std::function<void()> change;
    std::string distinguished_name, group, error, groups_error;
    std::uint32_t failures;
    bool is_enabled = true;
  } const rows[] = {
      {"all is well", [] {}, "CN=new,DC=c", "Staff", "", "", 0},
      {"disabled", [] {}, "CN=new,DC=c", "", "", "Disabled", 0, false},
      {"no groups", [&] { remove(kTokenGroups); }, "old", "old", "", "No tokenGroups found", 3},
      {"nobody is known", [&] { remove(kDistinguishedName); }, "old", "old",
       "No distinguishedName found", "", 3},
      {"disabled, nobody is known", [&] { remove(kDistinguishedName); }, "old", "old",
       "No distinguishedName found", "Disabled", 3, false},
      {"the directory is down", [&] { directory_->failure = machine::Outcome::kTimedOut; }, "old",
       "old", failed, failed, 3},
  };
  auto const records = directory_->records;
  for (auto const& row : rows) {
    directory_->records = records;
    row.change();
    context_.is_enabled = row.is_enabled;
    ActiveDirectoryLocalUser user("ann", "CORP");
    ActiveDirectoryLocalComputer computer;
    for (auto* const record : {static_cast<ActiveDirectoryAccount*>(&user),
                               static_cast<ActiveDirectoryAccount*>(&computer)}) {
      bool const is_user = record == &user;
      if (is_user && !row.is_enabled) continue;
      record->SetDistinguishedName("old");
      record->SetGroups({ActiveDirectoryGroup("old")});
      record->SetErrorCount(2);
      record->SetCacheState(kRequestPending);
      is_user ? user.Refresh(&context_) : computer.Refresh(&context_);
      EXPECT_EQ(record->GetDistinguishedName(), row.distinguished_name) << row.name;
      EXPECT_EQ(record->GetGroups().empty() ? "" : record->GetGroups()[0].GetName(), row.group)
          << row.name;
      EXPECT_EQ(record->GetErrorMessage(), row.error) << row.name;
      EXPECT_EQ(record->GetGroupsErrorMessage(), row.groups_error) << row.name;
      EXPECT_EQ(record->GetErrorCount(), row.failures) << row.name;
      EXPECT_EQ(record->GetCacheState(), kFilledFromDirectory) << row.name;
      EXPECT_EQ(record->GetLastSampleTime().microseconds, kNow) << row.name;
      EXPECT_EQ(folder_.Read(is_user ? "user-ann" : "computer.xml"), record->ToXml()) << row.name;
    }
    if (!row.is_enabled) continue;
    EXPECT_EQ(user.GetStatus(), row.failures == 0 ? Status::kSucceeded : Status::kFailed);
  }
}

// The context is asked after the name, after the SIDs, before the group and after it.
TEST_F(Refresh, ChangesNothingWhenItIsGivenUp) {
  for (int stops_after : {0, 1, 2, 3}) {
    FolderContext context(folder_);
    context.stops_after = stops_after;
    ActiveDirectoryLocalComputer computer;
    computer.SetCacheState(kRequestPending);
    ActiveDirectoryLocalUser user("ann");
    std::string const computer_before = computer.ToXml(), user_before = user.ToXml();
    computer.Refresh(&context);
    EXPECT_EQ(computer.ToXml(), computer_before) << stops_after;
    FolderContext again(folder_);
    again.stops_after = stops_after;
    user.Refresh(&again);
    EXPECT_EQ(user.ToXml(), user_before) << stops_after;
    EXPECT_EQ(user.GetStatus(), Status::kNeverRefreshed) << stops_after;
  }
  EXPECT_EQ(folder_.Count(), 0);
  context_.stops_after = 4;
  ActiveDirectoryLocalUser user("ann");
  user.Refresh(&context_);
  EXPECT_EQ(user.GetStatus(), Status::kSucceeded);
}

TEST_F(Refresh, IsNotLostWithItsCacheFile) {
  std::filesystem::create_directory(folder_.Path("user-ann"));
  ActiveDirectoryLocalUser user("ann");
  EXPECT_NE(ThrownBy([&] { user.Refresh(&context_); }), "");
  EXPECT_EQ(user.GetDistinguishedName(), "CN=new,DC=c");
  EXPECT_EQ(user.GetStatus(), Status::kSucceeded);
  EXPECT_EQ(user.GetLastSampleTime().microseconds, kNow);
}

}  // namespace
