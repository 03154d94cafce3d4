// The aggregates of the language, as they are written. Their words may also stand inside names of
// the vocabulary: only with an "of" behind them do they mean an aggregate.
#pragma once

#include <cstddef>
#include <optional>

#include "evaluator/syntax.h"
#include "evaluator/token_stream.h"

namespace gatotu {

struct AggregateWords {
  Aggregate aggregate;
  std::size_t tokens;  // how many its name takes
};

std::optional<AggregateWords> MatchAggregate(TokenStream const& tokens);

// The name of an aggregate as it is written.
char const* NameOf(Aggregate aggregate);

}  // namespace gatotu
