// Reads directory records anew on a thread of its own, again and again, as each becomes due. The
// thread works on copies; the evaluating thread takes what is finished when it suits.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "host/directory_options.h"
#include "inspectors/activedirectory/directory/active_directory_local_computer.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"

namespace gatotu::host {

// All but the destructor's waiting returns at once. For the evaluating thread.
class DirectoryRefresher {
 public:
  using Clock = std::chrono::steady_clock;
  using UserNumber = std::size_t;  // whoever owns the records gives them out

  struct Finished {
    std::optional<ActiveDirectoryLocalComputer> computer;
    std::map<UserNumber, ActiveDirectoryLocalUser> users;
  };

  // How often the thread looks whether a record is due.
  static constexpr std::chrono::milliseconds kBetweenPasses{5000};

  // Starts no thread yet.
  explicit DirectoryRefresher(DirectoryOptions const& options,
                              std::chrono::milliseconds between_passes = kBetweenPasses);
  // Asks the thread to stop and waits for it, not for ever: see `IsAnyAbandoned`.
  ~DirectoryRefresher();
  DirectoryRefresher(DirectoryRefresher const&) = delete;
  DirectoryRefresher& operator=(DirectoryRefresher const&) = delete;

  // Each record once; from then on the thread has it. The first starts the thread; when there
  // can be none yet, a later one does, or `Take`.
  void Adopt(ActiveDirectoryLocalComputer const& computer);
  void Adopt(UserNumber number, ActiveDirectoryLocalUser const& user);

  // What was read since the last call, the newest of each.
  Finished Take();

  // Waits until each record adopted so far was looked at, or until `end`, or until `should_stop`;
  // not without a thread.
  void AwaitPass(Clock::time_point end, std::function<bool()> const& should_stop);

  // Also asked by questions to the directory that are under way, on whichever thread.
  std::function<bool()> StopRequest() const;

  // Whether a thread did not stop in time. Who ends the process then uses `_exit`.
  static bool IsAnyAbandoned();

 private:
  struct Shared;

  void Start();

  std::shared_ptr<Shared> const shared_;
  bool is_started_ = false;
};

}  // namespace gatotu::host
