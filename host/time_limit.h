// Ends an evaluation that takes too long or that the user interrupts, also when an inspector
// hangs in the kernel, where no signal handler runs: a thread beside the evaluating one waits,
// asks the evaluator to stop, and leaves with the process when nothing comes of it.
//
// The first evaluation starts the thread, since one that hangs could no longer. It stays until the
// process ends: to wait for its end would take longer than most evaluations.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <optional>
#include <string_view>

namespace gatotu::host {

// "30s", "500ms", "2m", "1h", "1.5s"; a bare number is seconds, 0 is no limit.
std::optional<std::chrono::nanoseconds> ParseDuration(std::string_view text);

class Watchdog {
 public:
  // `leave` is called on the watchdog's thread when the evaluation did not stop in time; it must
  // end the process. There is one watchdog at a time: it takes over SIGINT.
  Watchdog(std::chrono::nanoseconds limit, std::function<void()> leave);
  ~Watchdog();
  Watchdog(Watchdog const&) = delete;
  Watchdog& operator=(Watchdog const&) = delete;

  // Around an evaluation. `Begin` throws `std::system_error` when there can be no thread.
  void Begin();
  void End();

  // Whether the time limit of the evaluation begun last was reached.
  bool IsExpired() const { return expired_; }
  // Whether the evaluation begun last was asked to stop, for whatever reason.
  bool HasAskedToStop() const { return has_asked_; }
  // Whether the user interrupted since the last call.
  static bool TakeInterrupt();
  // The same, and leaves it to be taken.
  static bool HasInterrupt();

 private:
  using Clock = std::chrono::steady_clock;

  // The thread, of which a process has one.
  static void StartWatching();
  static void Watch();
  // Its turn of this watchdog. How long to wait until there may be something to do; negative for
  // ever.
  Clock::duration Step();

  std::chrono::nanoseconds limit_;
  std::function<void()> leave_;
  std::atomic<Clock::rep> begun_{0};  // 0 while nothing is evaluated
  std::atomic<bool> expired_{false};
  std::atomic<bool> has_asked_{false};
  Clock::rep asked_for_ = 0;  // the evaluation that was asked to stop; the thread's own
  Clock::time_point asked_at_;
};

}  // namespace gatotu::host
