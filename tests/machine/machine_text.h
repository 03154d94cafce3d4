// What a machine answers as lines of text, absences with all they tell, so that two machines can be
// compared.
#pragma once

#include <string>

#include "machine/machine.h"

// Every fact but files.
std::string FactsText(machine::Machine const& machine);

// All that can be asked of the items at and below some paths.
std::string FilesText(machine::FileSource const& files, std::vector<std::string> const& paths);
