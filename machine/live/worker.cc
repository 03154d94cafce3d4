#include "machine/live/worker.h"

#include <dlfcn.h>
#include <signal.h>

#include <condition_variable>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>

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
  std::lock_guard lock(run->guard);
  run->is_done = true;
  if (run->is_abandoned) AbandonedCalls::Shared().Remove(run->subject);
  run->has_ended.notify_one();
}

// Signals are for the threads of the program, whose calls they are to interrupt.
std::thread StartThread(std::shared_ptr<Run> const& run) {
  sigset_t all, before;
  ::sigfillset(&all);
  ::pthread_sigmask(SIG_SETMASK, &all, &before);
  std::thread thread;
  try {
    thread = std::thread(Work, run);
  } catch (std::system_error const&) {
  }
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return thread;
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
               std::function<void()> call) {
  if (AbandonedCalls::Shared().Has(subject)) return false;
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
  if (run->has_ended.wait_for(lock, limit, [&] { return run->is_done; })) {
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
