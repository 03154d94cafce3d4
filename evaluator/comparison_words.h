// The comparisons of the language, in signs and in words.
#pragma once

#include <cstddef>
#include <optional>

#include "evaluator/syntax.h"
#include "evaluator/token_stream.h"

namespace gatotu {

struct ComparisonWords {
  Comparison comparison;
  std::size_t tokens;  // how many it takes
};

// The comparison that stands at the place of the stream, longest first.
std::optional<ComparisonWords> MatchComparison(TokenStream const& tokens);

// Whether a word `ahead` places on begins a comparison and so ends a run of unknown words.
bool BeginsComparison(TokenStream const& tokens, std::size_t ahead);

}  // namespace gatotu
