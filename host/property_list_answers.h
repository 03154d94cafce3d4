// Answers that are arrays, dictionaries or osxvalues: they have no text, and are shown as JSON from
// their objects. The cast "json" of the three types, which this file registers, gives the same as a
// string.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string_view>

#include "evaluator/evaluator.h"

namespace gatotu::host {

// To be shown; with `shows_property_lists` also where all that has no text is a property list. The
// texts of other objects are not made then, so beside a property list they must be asked for.
Compilation CompileToShow(std::string_view text, bool shows_property_lists);

// Borrowed from the value; null when it is none.
CFTypeRef PropertyListOf(Value const& value);

}  // namespace gatotu::host
