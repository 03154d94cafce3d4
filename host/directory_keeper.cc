#include "host/directory_keeper.h"

#include <exception>
#include <limits>
#include <utility>

#include "evaluator/plugin/entry_points.h"
#include "evaluator/plugin/exceptions.h"
#include "portable/ascii.h"

namespace gatotu::host {
namespace {

// Beside those that are listed, who is asked for by name.
constexpr std::size_t kMostRecords = 2 * kMostKnownUsers;

AccountName KeyOf(AccountName user) {
  user.domain = Ascii::LowerCase(ConstData(user.domain));
  return user;
}

DirectoryOptions WithoutCache(DirectoryOptions options) {
  options.cache_folder.clear();
  return options;
}

bool IsAskedFor(ActiveDirectoryBase const& record) {
  return record.GetCacheState() != kNeverFilled;
}

std::string SourceName(ActiveDirectoryLocalComputer const&) {
  return "directory record of the computer";
}

std::string SourceName(ActiveDirectoryLocalUser const& user) {
  return "directory record of user " + user.GetName();
}

// What is read has a time. Nothing is pending where there will be none: a capture that does not
// tell when it was taken stays as it is.
template <class Account>
void Fail(Account& record) {
  constexpr char kNoTime[] = "The machine does not tell the time";
  record.SetCacheState(kFilledFromDirectory);
  record.SetErrorMessage(kNoTime);
  record.SetGroupsErrorMessage(kNoTime);
  record.SetErrorCount(1);
}

// One that is still not filled stays asked for. True when it was missing before.
template <class Account>
bool Replace(Account& record, Account const& finished) {
  bool const was_missing = record.GetCacheState() != kFilledFromDirectory;
  if (finished.GetCacheState() != kFilledFromDirectory) return false;
  record = finished;
  return was_missing;
}

}  // namespace

bool IsEvaluationToStop() {
  try {
    Check_For_Inspector_Interruption();
    return false;
  } catch (...) {
    return true;  // what it throws is the evaluator's own, and comes again where it is asked again
  }
}

DirectoryKeeper::DirectoryKeeper(DirectoryOptions const& options, machine::Machine const* at_hand,
                                 std::chrono::milliseconds between_passes)
    : options_(options),
      at_hand_(at_hand),
      cache_(options.cache_folder),
      at_once_(WithoutCache(options), &IsEvaluationToStop),
      refresher_(options, between_passes) {
  machine::DirectorySettings source = options.source;
  source.should_stop = [has_ended = refresher_.StopRequest()] {
    return has_ended() || IsEvaluationToStop();
  };
  machine::SetDirectorySettings(std::move(source));
}

// Nobody is told to stop any more by what ends here.
DirectoryKeeper::~DirectoryKeeper() { machine::SetDirectorySettings(options_.source); }

void DirectoryKeeper::BeginAnew() {
  has_listed_ = has_requested_listed_ = false;
  if (computer_) computer_->is_handed_out = false;
  for (auto& user : users_) user.is_handed_out = false;
}

void DirectoryKeeper::HandOver() {
  if (!IsAtHand()) return;
  if (computer_ && !computer_->is_adopted && IsAskedFor(computer_->record)) {
    refresher_.Adopt(computer_->record);
    computer_->is_adopted = true;
  }
  for (std::size_t number = 0; number < users_.size(); ++number) {
    auto& user = users_[number];
    if (user.is_adopted || !IsAskedFor(user.record)) continue;
    refresher_.Adopt(number, user.record);
    user.is_adopted = true;
  }
}

std::size_t DirectoryKeeper::TakeOver() {
  DirectoryRefresher::Finished const finished = refresher_.Take();
  std::size_t count = 0;
  if (finished.computer) count += Replace(computer_->record, *finished.computer);
  for (auto const& [number, user] : finished.users) count += Replace(users_[number].record, user);
  return count;
}

void DirectoryKeeper::Tend() {
  BeginAnew();
  TakeOver();
  HandOver();
}

bool DirectoryKeeper::Await(Clock::time_point end, std::function<bool()> const& should_stop) {
  HandOver();
  refresher_.AwaitPass(end, should_stop);
  BeginAnew();
  bool const has_come = TakeOver() > 0;
  return has_come && Clock::now() < end && !should_stop();
}

// What cannot be read at once stays as one that was asked for. What the thread has read, it has
// read for nobody, so that the record itself is the source.
template <class Account>
void DirectoryKeeper::Prepare(Account& record) const {
  if (IsAtHand()) {
    bool const is_read = record.GetCacheState() == kFilledFromDirectory;
    machine::Announce(SourceName(record),
                      is_read ? machine::Outcome::kAnswered : machine::Outcome::kAbsent);
    return;
  }
  if (!machine::CurrentMachine().Clock().MicrosecondsSince1970()) return Fail(record);
  if (!IsAskedFor(record)) {
    record.SetCacheState(kRequestPending);
    // Due now wherever the clock stands, and not in half a day where that is at 1970.
    record.SetLastSampleTime({std::numeric_limits<std::int64_t>::min()});
  }
  try {
    record.Refresh(&at_once_);
  } catch (std::exception const&) {
  } catch (OSError const&) {
  }
}

template <class Account>
Account* DirectoryKeeper::Handed(Kept<Account>& kept) const {
  if (!std::exchange(kept.is_handed_out, true)) Prepare(kept.record);
  return &kept.record;
}

ActiveDirectoryLocalComputer* DirectoryKeeper::Computer() {
  if (!computer_) {
    computer_.emplace();
    if (IsAtHand()) cache_.Load(computer_->record);
  }
  return Handed(*computer_);
}

ActiveDirectoryLocalUser* DirectoryKeeper::User(AccountName const& user) {
  auto const number = FindOrAdd(user);
  return number ? Handed(users_[*number]) : nullptr;
}

ActiveDirectoryLocalUser* DirectoryKeeper::UserAt(std::size_t index) {
  if (!has_listed_) ListUsers();
  if (index >= listed_.size()) {
    RequestListed();
    return nullptr;
  }
  return Handed(users_[listed_[index]]);
}

ActiveDirectoryLocalUser* DirectoryKeeper::ListedUser(std::string const& name) {
  if (!has_listed_) ListUsers();
  auto const found = listed_numbers_.find(Ascii::LowerCase(ConstData(name)));
  if (found == listed_numbers_.end()) {
    RequestListed();
    return nullptr;
  }
  return Handed(users_[found->second]);
}

std::optional<std::size_t> DirectoryKeeper::FindOrAdd(AccountName const& user) {
  AccountName const key = KeyOf(user);
  // Without a domain this is the first of that name.
  auto const found = numbers_.lower_bound(key);
  bool const is_found = found != numbers_.end() && found->first.name == user.name &&
                        (key.domain.empty() || found->first == key);
  if (is_found) return found->second;
  if (user.name.empty() || users_.size() >= kMostRecords) return std::nullopt;
  ActiveDirectoryLocalUser record(user.name, user.domain);
  if (IsAtHand()) cache_.Load(record);
  return Add(std::move(record));
}

std::size_t DirectoryKeeper::Add(ActiveDirectoryLocalUser user) {
  numbers_.emplace(KeyOf({user.GetName(), user.GetDomain()}), users_.size());
  users_.push_back({std::move(user)});
  return users_.size() - 1;
}

void DirectoryKeeper::ListUsers() {
  for (std::size_t const number : listed_) users_[number].is_listed = false;
  listed_.clear();
  listed_numbers_.clear();
  machine::Machine const& machine = machine::CurrentMachine();
  if (IsAtHand()) {
    for (ActiveDirectoryLocalUser& user : cache_.LoadUsers()) {
      AccountName const name = {user.GetName(), user.GetDomain()};
      if (!numbers_.contains(KeyOf(name)) && users_.size() < kMostRecords) Add(std::move(user));
      List(name);
    }
  }
  for (AccountName const& user : UsersOfSessions(machine)) List(user);
  for (AccountName const& user : LocalUsers(machine)) List(user);
  for (std::string const& user : options_.users) List(TakeApart(user));
  has_listed_ = true;
}

void DirectoryKeeper::List(AccountName const& user) {
  auto const number = FindOrAdd(user);
  if (!number || std::exchange(users_[*number].is_listed, true)) return;
  listed_.push_back(*number);
  listed_numbers_.emplace(Ascii::LowerCase(ConstData(user.name)), *number);
}

void DirectoryKeeper::RequestListed() {
  if (std::exchange(has_requested_listed_, true)) return;
  for (std::size_t const number : listed_) {
    ActiveDirectoryLocalUser& user = users_[number].record;
    if (!IsAskedFor(user)) user.SetCacheState(kRequestPending);
  }
}

}  // namespace gatotu::host
