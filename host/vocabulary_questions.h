// What the vocabulary itself suggests to ask a machine, so that a capture of everything keeps up
// with the inspectors.
#pragma once

#include <string>
#include <vector>

#include "evaluator/evaluator.h"

namespace gatotu::host {

// Expressions for what can be asked without naming anything, and for the properties of that. What
// is in files and folders is left alone: nobody wants all of a disk.
std::vector<std::string> QuestionsOf(std::vector<VocabularyEntry> const& vocabulary);

}  // namespace gatotu::host
