// What a machine answers: a value, or the reason there is none.
#pragma once

#include <cassert>
#include <concepts>
#include <string>
#include <utility>
#include <variant>

#include "machine/observer.h"

namespace machine {

// What an absence's `where` begins with when a recorded machine was not asked for the fact, or it
// did not fit.
inline constexpr char kNotRecorded[] = "not recorded";

// Why a fact has no value. `reason` is never `kAnswered`; `source` names what was consulted and
// `where` the place in it (a line, a field), empty where the whole source is meant.
struct Absence {
  Outcome reason = Outcome::kAbsent;
  std::string source;
  std::string where;
  int error = 0;  // the system's number where a call failed

  bool is_not_recorded() const { return where.starts_with(kNotRecorded); }
};

template <typename T>
class Fact {
 public:
  template <typename Value>
  requires std::convertible_to<Value, T> Fact(Value&& value)
      : state_(std::in_place_index<0>, std::forward<Value>(value)) {}
  Fact(Absence absence) : state_(std::in_place_index<1>, std::move(absence)) {
    assert(this->absence().reason != Outcome::kAnswered);
  }

  bool has_value() const { return state_.index() == 0; }
  explicit operator bool() const { return has_value(); }

  // Only with a value. A fact that is about to end gives its value away, so that it may be walked
  // over in place.
  T const& value() const& { return *std::get_if<0>(&state_); }
  T& value() & { return *std::get_if<0>(&state_); }
  T value() && { return std::move(*std::get_if<0>(&state_)); }
  T const& operator*() const& { return value(); }
  T operator*() && { return std::move(*this).value(); }
  T const* operator->() const { return &value(); }

  // Only without a value.
  Absence const& absence() const { return *std::get_if<1>(&state_); }

  // `kAnswered` with a value, else the reason.
  Outcome outcome() const { return has_value() ? Outcome::kAnswered : absence().reason; }

 private:
  std::variant<T, Absence> state_;
};

}  // namespace machine
