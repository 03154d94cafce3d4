// What the command tells its caller. Of several expressions the largest counts.
#pragma once

#include <algorithm>

namespace gatotu::host {

enum class ExitStatus : int {
  kAnswered = 0,
  kNoAnswer = 1,     // no such object, or another failure of an evaluation
  kRefused = 2,      // the expression or the usage
  kInterrupted = 3,  // time limit or interrupt
  kUnusable = 4,     // the machine or the capture
};

inline ExitStatus Worse(ExitStatus a, ExitStatus b) { return std::max(a, b); }

}  // namespace gatotu::host
