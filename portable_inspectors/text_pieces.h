// Lines and words of a text, one at a time from the front.
#pragma once

#include <optional>
#include <string_view>

#include "evaluator/plugin/export.h"

// Takes the next line off `rest`, without its end: LF, CR LF, or a CR of its own as the classic
// system wrote them. What follows the last end is a line only if it is not empty.
GATOTU_API std::optional<std::string_view> TakeLine(std::string_view& rest);

// Takes the next word off `rest`: what stands between blanks, tabs and line ends.
GATOTU_API std::optional<std::string_view> TakeWord(std::string_view& rest);
