#include "machine/live/patience.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

#include "machine/live/signals_blocked.h"

namespace machine::live {
namespace {

std::atomic<int> abandoned_count = 0;

// Shared by who asks and who works; either may leave first.
struct Work {
  Work(Patience::Time limit, std::function<void(Patience const&)> to_do)
      : patience(limit), work(std::move(to_do)) {}

  void Run() {
    work(patience);
    work = nullptr;  // what it owns ends before anybody hears that it is done
    std::lock_guard lock(guard);
    is_done = true;
    if (is_abandoned) --abandoned_count;
    done.notify_all();
  }

  // Whether it was done before patience ended.
  bool Wait(std::function<bool()> const& should_stop) {
    constexpr Patience::Time kBetweenStops{10};
    std::unique_lock lock(guard);
    while (!done.wait_for(lock, kBetweenStops, [this] { return is_done; })) {
      lock.unlock();
      bool const is_over = patience.is_over() || (should_stop && should_stop());
      lock.lock();
      if (!is_over || is_done) continue;
      patience.GiveUp();
      is_abandoned = true;
      ++abandoned_count;
      return false;
    }
    return true;
  }

  Patience patience;
  std::function<void(Patience const&)> work;
  std::mutex guard;
  std::condition_variable done;
  bool is_done = false, is_abandoned = false;
};

}  // namespace

bool FinishInTime(Patience::Time limit, std::function<bool()> const& should_stop,
                  std::function<void(Patience const&)> work) {
  auto const shared = std::make_shared<Work>(limit, std::move(work));
  try {
    SignalsBlocked const blocked;
    std::thread([shared] { shared->Run(); }).detach();
  } catch (std::system_error const&) {
    return false;
  }
  return shared->Wait(should_stop);
}

bool HasAbandonedWork() { return abandoned_count != 0; }

}  // namespace machine::live
