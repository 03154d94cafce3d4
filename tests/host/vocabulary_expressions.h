// Expressions for everything that the vocabulary offers.
#pragma once

#include <string>
#include <vector>

namespace gatotu::tests {

// Every property of the world in singular and plural, and of that every property, where parameters
// are filled in with samples. What is no file or folder is followed one step further.
std::vector<std::string> VocabularyExpressions();

}  // namespace gatotu::tests
