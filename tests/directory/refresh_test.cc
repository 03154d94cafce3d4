#include <functional>

#include "frameworks/DirectoryService/references.h"
#include "inspectors/activedirectory/directory/active_directory_local_computer.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"
#include "tests/directory/folder_context.h"
#include "tests/support/on_scripted_machine.h"
#include "tests/support/scripted_records.h"

namespace {

using namespace std::string_literals;
using Status = ActiveDirectoryLocalUser::Status;

constexpr std::int64_t kSecond = 1'000'000;
constexpr std::int64_t kNow = 1'795'244'400 * kSecond;
constexpr char kDistinguishedName[] = "dsAttrTypeNative:distinguishedName";
constexpr char kTokenGroups[] = "dsAttrTypeNative:tokenGroups";
std::string const kSid = "\1\1\0\0\0\0\0\5\7\0\0\0"s;

class Refresh : public OnScriptedMachine {
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
      {"before all times", "d", 0, kDay, INT64_MAX, true},
      {"as long ago as no number tells", "d", 0, kDay, INT64_MIN, true},
      {"longest interval", "d", 0, kNever - 1, kNow, false},
      {"failed once, ten minutes", "", 1, kDay, 600 * kSecond, true},
      {"failed five times", "", 5, kDay, 600 * kSecond, true},
      {"failed six times, short of an hour", "", 6, kDay, 3600 * kSecond - 1, false},
      {"failed six times, an hour", "", 6, kDay, 3600 * kSecond, true},
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

// A record with an old name, an old group and two failures, after one refresh: name, groups, errors
// and failures.
TEST_F(Refresh, KeepsTheOldAnswersBesideAFailure) {
  auto const remove = [this](std::string const& attribute) {
    for (machine::DirectoryRecord& record : directory_->records) {
      std::erase_if(record.attributes, [&](auto const& each) { return each.name == attribute; });
    }
  };
  auto const refreshed = [this](auto record, std::string const& cache) {
    record.SetDistinguishedName("old");
    record.SetGroups({ActiveDirectoryGroup("old")});
    record.SetErrorCount(2);
    record.SetCacheState(kRequestPending);
    record.Refresh(&context_);
    EXPECT_EQ(record.GetCacheState(), kFilledFromDirectory);
    EXPECT_EQ(record.GetLastSampleTime().microseconds, kNow);
    EXPECT_EQ(folder_.Read(cache), record.ToXml());
    std::string groups;
    for (ActiveDirectoryGroup const& group : record.GetGroups()) groups += group.GetName();
    return record.GetDistinguishedName() + "; " + groups + "; " + record.GetErrorMessage() + "; " +
           record.GetGroupsErrorMessage() + "; " + std::to_string(record.GetErrorCount());
  };
  struct {
    char const* name;
    std::function<void()> change;
    std::string computer, user;
    bool is_enabled = true;
  } const rows[] = {
      {"all is well", [] {}, "CN=new,DC=c; Staff; ; ; 0", "="},
      {"disabled", [] {}, "CN=new,DC=c; ; ; Disabled; 0", "CN=new,DC=c; Staff; ; ; 0", false},
      {"no groups", [&] { remove(kTokenGroups); }, "old; old; ; No tokenGroups found; 3", "="},
      {"nobody is known", [&] { remove(kDistinguishedName); },
       "old; old; No distinguishedName found; ; 3", "="},
      {"disabled, nobody is known", [&] { remove(kDistinguishedName); },
       "old; old; No distinguishedName found; Disabled; 3",
       "old; old; No distinguishedName found; ; 3", false},
      {"the directory is down", [&] { directory_->failure = machine::Outcome::kTimedOut; },
       "old; old; dsGetRecordList() failed; dsGetRecordList() failed; 3", "="},
  };
  auto const records = directory_->records;
  for (auto const& row : rows) {
    directory_->records = records;
    row.change();
    context_.is_enabled = row.is_enabled;
    EXPECT_EQ(refreshed(ActiveDirectoryLocalComputer(), "computer.xml"), row.computer) << row.name;
    EXPECT_EQ(refreshed(ActiveDirectoryLocalUser("ann", "CORP"), "user-ann"),
              row.user == "=" ? row.computer : row.user)
        << row.name;
  }
  ActiveDirectoryLocalUser user("ann");
  user.Refresh(&context_);
  EXPECT_EQ(user.GetStatus(), Status::kFailed);
}

// The context is asked after the name, after the SIDs, before the group and after it.
TEST_F(Refresh, ChangesNothingWhenItIsGivenUp) {
  auto const is_changed = [this](auto record, int stops_after) {
    FolderContext context(folder_);
    context.stops_after = stops_after;
    record.SetCacheState(kRequestPending);
    std::string const before = record.ToXml();
    record.Refresh(&context);
    return record.ToXml() != before;
  };
  for (int stops_after : {0, 1, 2, 3, 4}) {
    EXPECT_EQ(is_changed(ActiveDirectoryLocalComputer(), stops_after), stops_after == 4);
    EXPECT_EQ(is_changed(ActiveDirectoryLocalUser("ann"), stops_after), stops_after == 4);
    EXPECT_EQ(folder_.Count(), stops_after == 4 ? 2 : 0);
  }
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
