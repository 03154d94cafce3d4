// Expressions that are evaluated for what they touch, not for their answers.
#pragma once

#include <cstddef>

#include "host/command_line.h"
#include "host/exit_status.h"

namespace gatotu::host {

struct ExpressionCounts {
  std::size_t evaluated = 0;
  std::size_t answered = 0;  // of them; that there is no answer is recorded too
};

// Evaluates the expressions of the line and its file. Not "answered": one was refused, or the
// evaluation was stopped, and it was said why.
ExitStatus EvaluateExpressions(CommandLine const& line, ExpressionCounts& counts);

// Asks for what can be asked without naming anything, as far as it is not in files.
void AskVocabulary();

}  // namespace gatotu::host
