#include "host/directory_keeper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <thread>

#include "host/host_context.h"
#include "tests/host/refreshed_machine.h"
#include "tests/support/scripted_machine.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

using host::DirectoryKeeper;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;

std::size_t ThreadCount() {
  std::filesystem::directory_iterator const tasks("/proc/self/task");
  return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

class Keeper : public testing::Test {
 protected:
  Keeper() {
    options_.cache_folder = folder_.Path("state/directory");
    options_.computer_interval = options_.user_interval = 60;
    options_.users = {"set", "ann", "CORP\\eve"};
  }

  std::unique_ptr<DirectoryKeeper> Make() const {
    return std::make_unique<DirectoryKeeper>(options_, machine_.get(), milliseconds(1));
  }

  // As inspectors do: whether the record is filled; one that is not is asked for.
  template <class Account>
  static bool Ask(Account* record) {
    if (record->GetCacheState() == kFilledFromDirectory) return true;
    record->SetCacheState(kRequestPending);
    record->SetErrorMessage("pending");
    return false;
  }

  static bool AwaitLong(DirectoryKeeper& keeper) {
    return keeper.Await(DirectoryKeeper::Clock::now() + seconds(20), [] { return false; });
  }

  static std::vector<std::string> Listed(DirectoryKeeper& keeper) {
    std::vector<std::string> names;
    for (std::size_t i = 0; auto const* user = keeper.UserAt(i); ++i) {
      names.push_back(user->GetDomain() + "/" + user->GetName());
    }
    return names;
  }

  TemporaryFolder folder_;
  std::shared_ptr<RefreshedMachine> machine_ = std::make_shared<RefreshedMachine>();
  MachineInUse in_use_{machine_};
  host::DirectoryOptions options_;
};

// What a record holds is its own, and no older than it was.
template <class Account>
void ExpectWhole(Account const& record, std::string const& name, std::int64_t& sampled) {
  if (record.GetCacheState() != kFilledFromDirectory) return;
  std::int64_t const time = record.GetLastSampleTime().microseconds;
  EXPECT_GE(time, sampled) << name;
  sampled = time;
  bool const is_failing = record.GetErrorCount() != 0;
  EXPECT_NE(is_failing, record.GetErrorMessage().empty() && record.GetGroupsErrorMessage().empty());
  if (record.GetDistinguishedName().empty() && is_failing) return;
  EXPECT_EQ(record.GetDistinguishedName(), RefreshedMachine::DistinguishedName(name));
  EXPECT_EQ(record.GetGroups().size(), 1u) << name;
}

TEST_F(Keeper, LosesNoRecordInAnHourOfFailures) {
  constexpr std::size_t kUsers = 12;
  auto keeper = Make();
  machine_->failures = 30;
  std::vector<std::int64_t> sampled(kUsers + 1);
  std::size_t filled = 0;
  auto const ask_all = [&] {
    keeper->Tend();
    filled = Ask(keeper->Computer());
    ExpectWhole(*keeper->Computer(), "mac", sampled[kUsers]);
    for (std::size_t i = 0; i < kUsers; ++i) {
      std::string const name = "user" + std::to_string(i);
      filled += Ask(keeper->User({name, ""}));
      ExpectWhole(*keeper->User({name, ""}), name, sampled[i]);
    }
  };
  for (int step = 0; step < 1200; ++step) {
    ask_all();
    machine_->Advance(3);
    std::this_thread::sleep_for(milliseconds(1));
  }
  machine_->failures = 0;
  machine_->Advance(3600);
  std::int64_t const later = machine_->microseconds;
  auto const is_anew = [&] {
    ask_all();
    return *std::min_element(sampled.begin(), sampled.end()) >= later;
  };
  for (int i = 0; i < 2000 && !is_anew(); ++i) std::this_thread::sleep_for(milliseconds(10));
  EXPECT_TRUE(is_anew());
  EXPECT_EQ(filled, kUsers + 1);

  keeper = Make();
  ask_all();
  EXPECT_EQ(filled, kUsers + 1) << "from the files";
}

TEST_F(Keeper, StartsAThreadForWhatIsAskedAndKeepsItsFilesPrivate) {
  std::size_t const before = ThreadCount();
  auto const keeper = Make();
  keeper->Tend();
  EXPECT_FALSE(AwaitLong(*keeper));
  keeper->Computer();
  keeper->Tend();
  EXPECT_EQ(ThreadCount(), before);
  EXPECT_EQ(machine_->questions, 0) << "a record that nobody asked for";

  EXPECT_FALSE(Ask(keeper->Computer()));
  EXPECT_TRUE(AwaitLong(*keeper));
  EXPECT_TRUE(Ask(keeper->Computer()));
  EXPECT_EQ(ThreadCount(), before + 1);
  EXPECT_FALSE(AwaitLong(*keeper)) << "nothing more to come";
  struct stat status;
  for (auto const& [name, mode] :
       {std::pair{"state/directory", 0700u}, std::pair{"state/directory/computer.xml", 0600u}}) {
    ASSERT_EQ(::stat(folder_.Path(name).c_str(), &status), 0) << name;
    EXPECT_EQ(status.st_mode & 07777, mode) << name;
  }
}

TEST_F(Keeper, ListsEachUserOnce) {
  machine_->sessions = {"CORP\\eve", "eve@corp", "ann"};
  machine_->local_users = {{"root", "0"}, {"ann", "1000"},     {"bob", "1001"}, {"low", "999"},
                           {"odd", "x"},  {"nobody", "65534"}, {"minus", "-2"}, {"ann", "1002"}};
  auto keeper = Make();
  EXPECT_THAT(Listed(*keeper), ElementsAre("CORP/eve", "/ann", "/bob", "/set"));
  EXPECT_TRUE(AwaitLong(*keeper)) << "who walks beyond the end asks for all";
  EXPECT_EQ(keeper->ListedUser("EVE"), keeper->UserAt(2));
  EXPECT_EQ(keeper->ListedUser("root"), nullptr);
  EXPECT_EQ(keeper->UserAt(3)->GetCacheState(), kFilledFromDirectory);

  keeper = Make();
  machine_->sessions.clear();
  machine_->local_users.clear();
  options_.users = {"SET"};
  EXPECT_TRUE(Ask(keeper->User({"eve", "corp"}))) << "a domain in other letters is the same";
  EXPECT_THAT(Listed(*keeper), ElementsAre("/ann", "/bob", "CORP/eve", "/set"))
      << "those that were kept";
}

TEST_F(Keeper, ReadsAnotherMachineAtOnceAndKeepsNothingOfIt) {
  host::Settings const settings;
  machine_->sessions = {"ann"};
  machine_->microseconds = 1;  // after a start without a clock
  for (bool const is_at_hand : {false, true}) {
    host::HostContext const context(settings, options_, is_at_hand ? machine_.get() : nullptr);
    std::uint32_t const state = is_at_hand ? kNeverFilled : kFilledFromDirectory;
    EXPECT_EQ(context.LocalComputer()->GetCacheState(), state);
    EXPECT_EQ(context.LocalUser("bob", "")->GetCacheState(), state);
    EXPECT_EQ(context.LocalUserAt(0)->GetCacheState(), state);
    FileLocation place;
    EXPECT_EQ(context.FindComputerCache(place), is_at_hand);
    EXPECT_EQ(context.FindUserCache("bob", place), is_at_hand);
    EXPECT_FALSE(std::filesystem::exists(options_.cache_folder));
  }
}

TEST_F(Keeper, SaysWhyAMachineWithoutTimeHasNoRecords) {
  machine_->microseconds = 0;
  DirectoryKeeper keeper(options_, nullptr);
  auto const* const user = keeper.User({"ann", ""});
  for (std::string const& message : {keeper.Computer()->GetErrorMessage(), user->GetErrorMessage(),
                                     user->GetGroupsErrorMessage()}) {
    EXPECT_EQ(message, "The machine does not tell the time");
  }
  EXPECT_TRUE(Ask(keeper.Computer()) && Ask(keeper.User({"ann", ""}))) << "not pending";
}

TEST_F(Keeper, LeavesAQuestionBehindThatHangs) {
  std::atomic<bool> is_released = false;
  machine_->on_question = [&] {
    while (!is_released) std::this_thread::sleep_for(milliseconds(1));
  };
  auto keeper = Make();
  Ask(keeper->Computer());
  auto const begin = std::chrono::steady_clock::now();
  keeper->Tend();
  while (machine_->questions == 0) std::this_thread::yield();
  keeper->Tend();
  EXPECT_FALSE(Ask(keeper->Computer())) << "still asked for";
  keeper.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, seconds(5));
  EXPECT_TRUE(host::DirectoryRefresher::IsAnyAbandoned());
  is_released = true;
  while (host::DirectoryRefresher::IsAnyAbandoned()) std::this_thread::yield();
  EXPECT_FALSE(std::filesystem::exists(options_.cache_folder)) << "nothing was read whole";
}

}  // namespace
}  // namespace gatotu::tests
