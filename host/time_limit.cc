#include "host/time_limit.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <mutex>
#include <thread>

#include "evaluator/evaluator.h"
#include "machine/live/signals_blocked.h"

namespace gatotu::host {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

// The evaluator knows the limit too and is the first to act on it; these come after.
constexpr milliseconds kGraceBeforeAsking{50};
constexpr milliseconds kGraceBeforeLeaving{400};

// What the signal handler touches.
std::atomic<bool> interrupted{false};
std::atomic<bool> interrupt_unhandled{false};
std::atomic<int> wake_descriptor{-1};

// What the thread looks at. It may still run when static destructors do, and these have none.
std::mutex watching;
Watchdog* watched = nullptr;

// The evaluating thread's own.
bool is_thread_started = false;

void Wake() {
  std::uint64_t const one = 1;
  [[maybe_unused]] ssize_t const written = ::write(wake_descriptor, &one, sizeof one);
}

void OnInterrupt(int) {
  int const saved = errno;
  interrupted = true;
  interrupt_unhandled = true;
  Interrupt();
  Wake();
  errno = saved;
}

// Without SA_RESTART, so that a read at the prompt returns.
void Catch(int signal, void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  sigemptyset(&action.sa_mask);
  ::sigaction(signal, &action, nullptr);
}

void WaitForWake(nanoseconds timeout) {
  pollfd wake = {wake_descriptor, POLLIN, 0};
  timespec const limit = {timeout.count() / 1'000'000'000, timeout.count() % 1'000'000'000};
  if (::ppoll(&wake, 1, timeout.count() < 0 ? nullptr : &limit, nullptr) == 1) {
    std::uint64_t count = 0;
    [[maybe_unused]] ssize_t const got = ::read(wake_descriptor, &count, sizeof count);
  }
}

}  // namespace

std::optional<nanoseconds> ParseDuration(std::string_view text) {
  double number = 0;
  auto const [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
  if (error != std::errc() || !std::isfinite(number) || number < 0) return std::nullopt;
  struct Unit {
    std::string_view name;
    double seconds;
  };
  constexpr Unit kUnits[] = {{"", 1}, {"s", 1}, {"ms", 1e-3}, {"us", 1e-6}, {"m", 60}, {"h", 3600}};
  std::string_view const name(end, static_cast<std::size_t>(text.data() + text.size() - end));
  for (Unit const& unit : kUnits) {
    if (unit.name != name) continue;
    double const count = number * unit.seconds * 1e9;
    // A year and more is no limit that anybody waits for; larger numbers would not fit.
    if (count > 3e16) return std::nullopt;
    // Some limit was asked for, so that the smallest is not none.
    return nanoseconds(number > 0 ? std::max<std::int64_t>(1, std::llround(count)) : 0);
  }
  return std::nullopt;
}

Watchdog::Watchdog(nanoseconds limit, std::function<void()> leave)
    : limit_(limit), leave_(std::move(leave)) {
  {
    std::lock_guard const lock(watching);
    watched = this;
  }
  // The thread waits as long as the last watchdog had it wait.
  if (is_thread_started) Wake();
  Catch(SIGINT, OnInterrupt);
}

Watchdog::~Watchdog() {
  Catch(SIGINT, SIG_DFL);
  std::lock_guard const lock(watching);
  watched = nullptr;
}

void Watchdog::StartWatching() {
  if (is_thread_started) return;
  wake_descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  machine::live::SignalsBlocked const blocked;
  std::thread(Watch).detach();
  is_thread_started = true;
}

void Watchdog::Begin() {
  StartWatching();
  expired_ = false;
  has_asked_ = false;
  interrupt_unhandled = false;
  begun_ = Clock::now().time_since_epoch().count();
}

void Watchdog::End() { begun_ = 0; }

bool Watchdog::TakeInterrupt() { return interrupted.exchange(false); }

bool Watchdog::HasInterrupt() { return interrupted; }

void Watchdog::Watch() {
  for (;;) {
    nanoseconds wait(-1);
    {
      std::lock_guard const lock(watching);
      if (watched != nullptr) wait = watched->Step();
    }
    WaitForWake(wait);
  }
}

Watchdog::Clock::duration Watchdog::Step() {
  auto const now = Clock::now();
  auto const begun = begun_.load();
  auto const idle_wait = limit_.count() > 0 ? limit_ + kGraceBeforeAsking : nanoseconds(-1);
  // Nobody wakes the thread at an evaluation's begin: its limit cannot come sooner than this.
  if (begun == 0) return idle_wait;

  if (asked_for_ != begun) {
    auto const due = Clock::time_point(Clock::duration(begun)) + idle_wait;
    bool const is_due = limit_.count() > 0 && now >= due;
    if (!is_due && !interrupt_unhandled) return limit_.count() > 0 ? due - now : idle_wait;
    expired_ = is_due;
    asked_for_ = begun;
    asked_at_ = now;
    has_asked_ = true;
    Interrupt();
  }
  auto const last = asked_at_ + kGraceBeforeLeaving;
  if (now < last) return last - now;
  if (begun_ == begun) leave_();
  return idle_wait;
}

}  // namespace gatotu::host
