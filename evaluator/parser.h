// From tokens to the syntax tree. The vocabulary is asked only which runs of words are phrases.
#pragma once

#include <string_view>

#include "evaluator/diagnostics.h"
#include "evaluator/syntax.h"
#include "evaluator/vocabulary_index.h"

namespace gatotu {

// Deeper nesting, and longer chains of operators (those of a first operand in parentheses counted),
// are refused: evaluation recurses.
inline constexpr int kMaxNesting = 256;
inline constexpr int kMaxChain = 1000;
inline constexpr std::size_t kMaxText = std::size_t{1} << 20;

// A tree without a root when something does not parse; `diagnostics` then says what. Unknown
// phrases are left to the checker, which knows what could have been meant.
SyntaxTree ParseExpression(std::string_view text, VocabularyIndex& vocabulary,
                           Diagnostics& diagnostics);

}  // namespace gatotu
