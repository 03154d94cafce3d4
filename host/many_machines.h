// Several machines asked the same expressions.
#pragma once

#include "host/command_line.h"
#include "host/exit_status.h"

namespace gatotu::host {

// All vocabularies are loaded, and there is no other thread. A mistake in an expression is said
// once, since it is one on every machine.
ExitStatus AskManyMachines(CommandLine const& line);

}  // namespace gatotu::host
