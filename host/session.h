// One run of the command, from its understood arguments to its exit status.
#pragma once

#include "host/command_line.h"
#include "host/exit_status.h"

namespace gatotu::host {

ExitStatus Run(CommandLine const& line);

}  // namespace gatotu::host
