// The host's records of the computer and of its users in the directory. An evaluation asks for a
// record and goes on without it; a thread reads those that were asked for, and what it has read
// comes in between evaluations.
//
// That is so for one machine, the one at hand. Records of any other, a capture's above all, are
// read where they are asked for and kept in no file: there is no network to wait for.
#pragma once

#include <chrono>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/directory_cache.h"
#include "host/directory_options.h"
#include "host/directory_refresher.h"
#include "host/known_users.h"
#include "host/refresh_context.h"
#include "machine/machine.h"

namespace gatotu::host {

template <class Account>
struct KeptDirectoryRecord {
  Account record;
  bool is_adopted = false;  // by the thread
  bool is_listed = false;
  bool is_handed_out = false;  // to this evaluation
};

// For the evaluating thread. Starts no thread before a record was asked for. From then on, until
// this ends, the machine in use stays the same.
class DirectoryKeeper {
 public:
  using Clock = DirectoryRefresher::Clock;

  // `at_hand` may be null: then every machine is another. Takes over the settings with which
  // directories are asked.
  DirectoryKeeper(DirectoryOptions const& options, machine::Machine const* at_hand,
                  std::chrono::milliseconds between_passes = DirectoryRefresher::kBetweenPasses);
  ~DirectoryKeeper();
  DirectoryKeeper(DirectoryKeeper const&) = delete;
  DirectoryKeeper& operator=(DirectoryKeeper const&) = delete;

  DirectoryOptions const& Options() const { return options_; }
  // Null where the machine in use is not the one at hand.
  DirectoryCache const* Cache() const { return IsAtHand() ? &cache_ : nullptr; }

  // Between evaluations: takes over what was read, and has read what was asked for.
  void Tend();
  // The same, but waits for it. True when something came that was missing, so that asking again
  // may tell more.
  bool Await(Clock::time_point end, std::function<bool()> const& should_stop);

  // The records stay where they are.
  ActiveDirectoryLocalComputer* Computer();
  // An empty domain is any. Null without a name, and when there are too many.
  ActiveDirectoryLocalUser* User(AccountName const& user);
  // Those that were kept, those of sessions, the local ones, those of the settings. To go beyond
  // the last is to ask for all of them.
  ActiveDirectoryLocalUser* UserAt(std::size_t index);
  // The first of them of that name, whatever its letter case; the others are left alone. Who has
  // missed has gone beyond the last.
  ActiveDirectoryLocalUser* ListedUser(std::string const& name);

 private:
  template <class Account>
  using Kept = KeptDirectoryRecord<Account>;

  bool IsAtHand() const { return &machine::CurrentMachine() == at_hand_; }
  // Once an evaluation says what it rests on, and reads it first where the machine is not the one
  // at hand.
  template <class Account>
  Account* Handed(Kept<Account>& kept) const;
  template <class Account>
  void Prepare(Account& record) const;

  // What an evaluation was told holds for that one.
  void BeginAnew();
  void HandOver();
  // How many of them had been missing.
  std::size_t TakeOver();

  // The user's number; nothing without a name, and where there are too many.
  std::optional<std::size_t> FindOrAdd(AccountName const& user);
  std::size_t Add(ActiveDirectoryLocalUser user);
  void ListUsers();
  void List(AccountName const& user);
  void RequestListed();

  DirectoryOptions const options_;
  machine::Machine const* const at_hand_;
  DirectoryCache const cache_;
  RefreshContext const at_once_;
  DirectoryRefresher refresher_;

  std::optional<Kept<ActiveDirectoryLocalComputer>> computer_;
  std::deque<Kept<ActiveDirectoryLocalUser>> users_;  // numbered for the refresher by their places
  std::map<AccountName, std::size_t> numbers_;        // by name and domain in lower case
  std::vector<std::size_t> listed_;
  std::unordered_map<std::string, std::size_t> listed_numbers_;  // by name in lower case
  bool has_listed_ = false, has_requested_listed_ = false;
};

// Whether the evaluation on this thread, if there is one, is to stop.
bool IsEvaluationToStop();

}  // namespace gatotu::host
