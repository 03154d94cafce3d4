// The expressions of a file or of standard input, asked one after the other.
#pragma once

#include <string>
#include <string_view>

#include "evaluator/function_ref.h"
#include "host/exit_status.h"

namespace gatotu::host {

// False: no further expression is to be asked.
using AskExpression = FunctionRef<bool(std::string_view)>;

// "-" is standard input. The answer is how reading went, which is not what the expressions came to;
// a failure has been complained about.
ExitStatus AskFile(std::string const& path, AskExpression ask);

}  // namespace gatotu::host
