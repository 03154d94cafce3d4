// One machine asked one expression after the other: those of the command line, of a file, of a
// pipe, or of somebody at a terminal.
#pragma once

#include "host/answer_label.h"
#include "host/command_line.h"
#include "host/exit_status.h"

namespace gatotu::host {

// Asks the machine in use. Ends early after an interrupt or the time limit, or when nobody reads.
ExitStatus Converse(CommandLine const& line, AnswerLabel const& label);

}  // namespace gatotu::host
