#include "machine/live/worker.h"

#include <dlfcn.h>

#include <condition_variable>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>

#include "machine/live/signals_blocked.h"
#include "machine/never_destroyed.h"

namespace machine::live {
namespace {

// The subjects of calls that were abandoned and have not returned.
class AbandonedCalls {
 public:
  static AbandonedCalls& Shared() {
    static NeverDestroyed<AbandonedCalls> shared;
    return *shared;
  }

  void Add(std::string const& subject) {
    std::lock_guard lock(guard_);
    subjects_.insert(subject);
  }
  void Remove(std::string const& subject) {
    std::lock_guard lock(guard_);
    subjects_.erase(subjects_.find(subject));
  }
  bool Has(std::string const& subject) {
    std::lock_guard lock(guard_);
    return subjects_.contains(subject);
  }
  bool IsEmpty() {
    std::lock_guard lock(guard_);
    return subjects_.empty();
  }

 private:
  std::mutex guard_;
  std::multiset<std::string> subjects_;
};

struct Run {
  std::string subject;
  std::function<void()> call;
  std::mutex guard;
  std::condition_variable has_ended;
  bool is_done = false, is_abandoned = false;
};

void Work(std::shared_ptr<Run> const& run) {
  run->call();
  run->call = nullptr;  // what it owns ends before anybody hears that it is done
  std::lock_guard lock(run->guard);
  run->is_done = true;
  if (run->is_abandoned) AbandonedCalls::Shared().Remove(run->subject);
  run->has_ended.notify_one();
}

// None where none can be had.
std::thread StartThread(std::shared_ptr<Run> const& run) {
  SignalsBlocked const blocked;
  try {
    return std::thread(Work, run);
  } catch (std::system_error const&) {
    return {};
  }
}

// Whether it is done; the lock is held before and after.
bool Wait(Run& run, std::unique_lock<std::mutex>& lock, std::chrono::nanoseconds limit,
          std::function<bool()> const& should_stop) {
  constexpr std::chrono::milliseconds kBetweenStops{10};
  auto const is_done = [&run] { return run.is_done; };
  if (!should_stop) return run.has_ended.wait_for(lock, limit, is_done);
  auto const end = std::chrono::steady_clock::now() + limit;
  while (!run.has_ended.wait_for(lock, kBetweenStops, is_done)) {
    lock.unlock();
    bool const is_over = std::chrono::steady_clock::now() >= end || should_stop();
    lock.lock();
    if (is_over) return run.is_done;
  }
  return true;
}

// A thread comes back to this code some time, so the code must stay where it is.
void StayLoaded() {
  Dl_info self = {};
  if (::dladdr(reinterpret_cast<void const*>(&StayLoaded), &self) != 0) {
    ::dlopen(self.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
  }
}

}  // namespace

bool RunWithin(std::chrono::nanoseconds limit, std::string const& subject,
               std::function<void()> call, std::function<bool()> const& should_stop) {
  if (!subject.empty() && AbandonedCalls::Shared().Has(subject)) return false;
  auto const run = std::make_shared<Run>();
  run->subject = subject;
  run->call = std::move(call);
  std::thread thread = StartThread(run);
  if (!thread.joinable()) {
    // Without threads to have, what waits is the answer.
    run->call();
    return true;
  }
  std::unique_lock lock(run->guard);
  if (Wait(*run, lock, limit, should_stop)) {
    lock.unlock();
    thread.join();
    return true;
  }
  run->is_abandoned = true;
  AbandonedCalls::Shared().Add(subject);
  StayLoaded();
  thread.detach();
  return false;
}

bool IsAnyCallAbandoned() { return !AbandonedCalls::Shared().IsEmpty(); }

}  // namespace machine::live
