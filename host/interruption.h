// Ctrl-C while workers ask: the first asks them to end and leaves them a moment for it, a second
// one does not.
#pragma once

#include <chrono>
#include <csignal>
#include <optional>

#include "machine/file_descriptor.h"

namespace gatotu::host {

// SIGINT is blocked as long as this lives, and seen by whoever polls the descriptor.
class Interruption {
 public:
  using Clock = std::chrono::steady_clock;

  Interruption();
  ~Interruption();
  Interruption(Interruption const&) = delete;
  Interruption& operator=(Interruption const&) = delete;

  int Descriptor() const { return descriptor_.number(); }
  // The signals that were blocked before.
  sigset_t const& SignalsBefore() const { return before_; }

  // Takes note of what the descriptor has.
  void Look();
  bool HasCome() const { return end_.has_value(); }
  // Whether the moment is over too.
  bool IsOver() const { return HasCome() && Clock::now() >= *end_; }

 private:
  sigset_t before_;
  machine::FileDescriptor descriptor_;
  std::optional<Clock::time_point> end_;
};

}  // namespace gatotu::host
