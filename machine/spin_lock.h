// A lock that is asked for millions of times and hardly ever held by somebody else: it costs half
// of what a mutex does. Who has to wait lets others run.
#pragma once

#include <atomic>
#include <thread>

namespace machine {

class SpinLock {
 public:
  void lock() {
    while (!try_lock()) std::this_thread::yield();
  }
  bool try_lock() { return !held_.test_and_set(std::memory_order_acquire); }
  void unlock() { held_.clear(std::memory_order_release); }

 private:
  std::atomic_flag held_;
};

}  // namespace machine
