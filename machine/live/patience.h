// How long a question on a thread of its own may go on.
#pragma once

#include <atomic>
#include <chrono>

namespace machine::live {

class Patience {
 public:
  using Time = std::chrono::milliseconds;

  explicit Patience(Time limit) : end_(std::chrono::steady_clock::now() + limit) {}
  // A part of the time of another one, which outlives it. It is given up together with that.
  Patience(Patience const& whole, Time limit) : Patience(limit) { whole_ = &whole; }

  // Never negative. Rounded up, so that who waits for so long does not come back before the end.
  Time Left() const {
    auto const left = std::chrono::ceil<Time>(end_ - std::chrono::steady_clock::now());
    return is_given_up() || left < Time::zero() ? Time::zero() : left;
  }
  bool is_over() const { return Left() == Time::zero(); }
  void GiveUp() { is_given_up_ = true; }

 private:
  bool is_given_up() const { return is_given_up_ || (whole_ != nullptr && whole_->is_given_up()); }

  std::chrono::steady_clock::time_point const end_;
  std::atomic<bool> is_given_up_ = false;
  Patience const* whole_ = nullptr;
};

}  // namespace machine::live
