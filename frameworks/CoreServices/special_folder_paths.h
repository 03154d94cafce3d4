// Where the rows of a table of special folders lead on the machine in use.
#pragma once

#include <string>

#include "frameworks/CoreServices/special_folders.h"
#include "machine/fact.h"

// Of a row that exists in the domain, one of the four of a library or the classic one. An absolute
// path without NUL, whatever is there; absent where the machine does not tell what the row's path
// lies below.
machine::Fact<std::string> PathOfSpecialFolder(SpecialFolderTable const& table,
                                               SpecialFolderRow const& row, DomainSet domain);
