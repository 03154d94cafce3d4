// Calls that may hang: in the kernel, on a dead network mount for one, where no signal ends them,
// or in a library that waits for a server. Each runs on a thread of its own, which is abandoned
// when the call does not return within its time.
//
// A call owns all that it touches: it may go on when whoever asked is long gone. It announces
// nothing, since the observer belongs to the thread that asks; that one announces what came of it.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "machine/export.h"

namespace machine::live {

// False when the call was abandoned: at the limit, or when `should_stop` (null: never), which is
// asked again and again meanwhile, said so. `subject` names what may hang: as long as an abandoned
// call on it has not returned, the next one is not even begun; without a name any number may hang.
MACHINE_API bool RunWithin(std::chrono::nanoseconds limit, std::string const& subject,
                           std::function<void()> call,
                           std::function<bool()> const& should_stop = {});

// What a function answers, nothing when it was abandoned.
template <typename Function>
auto AskWithin(std::chrono::nanoseconds limit, std::string const& subject, Function function) {
  using Answer = decltype(function());
  auto const answer = std::make_shared<std::optional<Answer>>();
  bool const is_done = RunWithin(
      limit, subject, [answer, function = std::move(function)] { answer->emplace(function()); });
  return is_done ? std::move(*answer) : std::nullopt;
}

// Whether an abandoned call has not returned yet. Then the process ends by `_exit`: no destructor
// may run beside that call.
MACHINE_API bool IsAnyCallAbandoned();

}  // namespace machine::live
