#include "host/directory_refresher.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <list>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

#include "host/refresh_context.h"
#include "machine/live/signals_blocked.h"

namespace gatotu::host {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPatienceAtTheEnd{1000};
constexpr milliseconds kBetweenStops{10};
// What cannot be read for another reason than a directory's is not tried at every look.
constexpr int kPassesAfterFailure = 12;

std::atomic<int> abandoned_count = 0;

// A record as the thread has it.
template <class Account>
class Copy {
 public:
  explicit Copy(Account account) : account_(std::move(account)) {}

  // What cannot be read or kept costs this record's news alone. Inspectors' code throws more than
  // the standard's exceptions.
  void Refresh(RefreshContext const& context) {
    if (passes_to_rest_ > 0) {
      --passes_to_rest_;
      return;
    }
    std::int64_t const before = account_.GetLastSampleTime().microseconds;
    bool has_failed = false;
    try {
      account_.Refresh(&context);
    } catch (...) {
      has_failed = true;
    }
    bool const is_read = account_.GetLastSampleTime().microseconds != before;
    if (has_failed && !is_read) passes_to_rest_ = kPassesAfterFailure;
    has_news_ = has_news_ || is_read;
  }

  bool has_news() const { return has_news_; }
  Account const& News() const { return account_; }
  void SetPublished() { has_news_ = false; }

 private:
  Account account_;
  int passes_to_rest_ = 0;
  bool has_news_ = false;
};

using Computers = std::list<Copy<ActiveDirectoryLocalComputer>>;
using Users = std::list<std::pair<DirectoryRefresher::UserNumber, Copy<ActiveDirectoryLocalUser>>>;

}  // namespace

// Both threads own it: the worker may be left behind.
struct DirectoryRefresher::Shared {
  Shared(DirectoryOptions const& options, milliseconds between)
      : context(options, [this] { return should_stop.load(); }), between_passes(between) {}

  void Run();
  void RunPass(Computers& computers, Users& users);
  // Once at least, until it could be handed over.
  template <class Account, class Store>
  void Refresh(Copy<Account>& copy, Store&& store);

  std::atomic<bool> should_stop = false;
  RefreshContext context;
  milliseconds const between_passes;
  std::thread thread;

  std::mutex guard;  // of what follows
  std::condition_variable wake, progress;
  Computers new_computers;
  Users new_users;
  Finished finished;
  bool is_idle = true;  // nothing has arrived that no pass has looked at
  bool has_ended = false, is_abandoned = false;
};

template <class Account, class Store>
void DirectoryRefresher::Shared::Refresh(Copy<Account>& copy, Store&& store) {
  if (should_stop) return;
  copy.Refresh(context);
  if (!copy.has_news()) return;
  std::lock_guard lock(guard);
  store(copy.News());
  copy.SetPublished();
}

void DirectoryRefresher::Shared::RunPass(Computers& computers, Users& users) {
  for (auto& copy : computers) {
    Refresh(copy, [this](auto const& computer) { finished.computer = computer; });
  }
  for (auto& [number, copy] : users) {
    Refresh(copy, [this, which = number](auto const& user) {
      finished.users.insert_or_assign(which, user);
    });
  }
}

void DirectoryRefresher::Shared::Run() {
  Computers computers;
  Users users;
  std::unique_lock lock(guard);
  while (!should_stop) {
    computers.splice(computers.end(), new_computers);
    users.splice(users.end(), new_users);
    lock.unlock();
    try {
      RunPass(computers, users);
    } catch (std::bad_alloc const&) {
      // Handed over by a later pass.
    }
    lock.lock();
    is_idle = new_computers.empty() && new_users.empty();
    progress.notify_all();
    wake.wait_for(lock, between_passes, [this] { return should_stop || !is_idle; });
  }
  has_ended = true;
  if (is_abandoned) --abandoned_count;
  progress.notify_all();
}

DirectoryRefresher::DirectoryRefresher(DirectoryOptions const& options, milliseconds between_passes)
    : shared_(std::make_shared<Shared>(options, between_passes)) {}

DirectoryRefresher::~DirectoryRefresher() {
  Shared& shared = *shared_;
  std::unique_lock lock(shared.guard);
  shared.should_stop = true;
  if (!is_started_) return;
  shared.wake.notify_all();
  bool const has_ended =
      shared.progress.wait_for(lock, kPatienceAtTheEnd, [&] { return shared.has_ended; });
  if (!has_ended) {
    shared.is_abandoned = true;
    ++abandoned_count;
  }
  lock.unlock();
  has_ended ? shared.thread.join() : shared.thread.detach();
}

void DirectoryRefresher::Start() {
  shared_->is_idle = false;
  if (is_started_) return shared_->wake.notify_all();
  try {
    machine::live::SignalsBlocked const blocked;
    shared_->thread = std::thread([shared = shared_] { shared->Run(); });
    is_started_ = true;
  } catch (std::system_error const&) {
    // Tried again by `Take`.
  }
}

void DirectoryRefresher::Adopt(ActiveDirectoryLocalComputer const& computer) {
  std::lock_guard lock(shared_->guard);
  shared_->new_computers.emplace_back(computer);
  Start();
}

void DirectoryRefresher::Adopt(UserNumber number, ActiveDirectoryLocalUser const& user) {
  std::lock_guard lock(shared_->guard);
  shared_->new_users.emplace_back(number, user);
  Start();
}

DirectoryRefresher::Finished DirectoryRefresher::Take() {
  std::lock_guard lock(shared_->guard);
  if (!is_started_ && !shared_->is_idle) Start();
  return std::exchange(shared_->finished, {});
}

void DirectoryRefresher::AwaitPass(Clock::time_point end,
                                   std::function<bool()> const& should_stop) {
  if (!is_started_) return;
  std::unique_lock lock(shared_->guard);
  auto const is_over = [this] { return shared_->is_idle || shared_->has_ended; };
  while (!is_over() && Clock::now() < end && !should_stop()) {
    shared_->progress.wait_for(lock, kBetweenStops, is_over);
  }
}

std::function<bool()> DirectoryRefresher::StopRequest() const {
  return [shared = shared_] { return shared->should_stop.load(); };
}

bool DirectoryRefresher::IsAnyAbandoned() { return abandoned_count != 0; }

}  // namespace gatotu::host
