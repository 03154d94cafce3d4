// A registration as a JSON object.
#pragma once

#include <string>
#include <string_view>

#include "evaluator/evaluator.h"

namespace gatotu::host {

// With a line feed; the keys are the columns of the tab-separated form.
std::string JsonLineOf(VocabularyEntry const& entry, std::string_view kind, std::string_view room);

}  // namespace gatotu::host
