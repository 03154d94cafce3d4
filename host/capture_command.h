// `gatotu capture`: writes what a machine answers into a folder that can be asked later and
// elsewhere.
#pragma once

#include <memory>

#include "host/command_line.h"
#include "host/exit_status.h"
#include "machine/machine.h"

namespace gatotu::host {

// Puts a machine that records `machine` in use. Nothing is written unless all was recorded; a
// capture that was broken off does not pass for a whole one.
ExitStatus Capture(CommandLine const& line, std::shared_ptr<machine::Machine const> machine);

}  // namespace gatotu::host
