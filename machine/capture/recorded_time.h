// Times of files in property lists, whose dates have no room for all of them.
#pragma once

#include <string>

#include "machine/capture/facts.h"
#include "machine/files.h"

namespace machine::capture {

// Seconds since 1970, a point and nine digits.
std::string TextOf(FileTime const& time);

// Of such a text, or of a date.
Fact<FileTime> TimeIn(Field const& field);

}  // namespace machine::capture
