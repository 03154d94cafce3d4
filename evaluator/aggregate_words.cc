#include "evaluator/aggregate_words.h"

#include <string_view>

namespace gatotu {
namespace {

struct Row {
  Aggregate aggregate;
  char const* name;
  std::string_view words[2];  // an unused one is empty
};

constexpr Row kRows[] = {
    {Aggregate::kNumber, "number", {"number"}},
    {Aggregate::kUniqueValues, "unique values", {"unique", "values"}},
    {Aggregate::kSum, "sum", {"sum"}},
    {Aggregate::kMinimum, "minimum", {"minimum"}},
    {Aggregate::kMaximum, "maximum", {"maximum"}},
    {Aggregate::kConcatenation, "concatenation", {"concatenation"}},
    {Aggregate::kFirst, "first", {"first"}},
    {Aggregate::kLast, "last", {"last"}},
};

}  // namespace

std::optional<AggregateWords> MatchAggregate(TokenStream const& tokens) {
  for (Row const& row : kRows) {
    if (!tokens.IsWord(row.words[0])) continue;
    if (!row.words[1].empty() && !tokens.IsWord(row.words[1], 1)) continue;
    std::size_t count = row.words[1].empty() ? 1 : 2;
    bool has_separator =
        row.aggregate == Aggregate::kConcatenation && tokens.Peek(count).kind == TokenKind::kString;
    if (!tokens.IsReserved(ReservedWord::kOf, count + (has_separator ? 1 : 0))) continue;
    return AggregateWords{row.aggregate, count};
  }
  return std::nullopt;
}

char const* NameOf(Aggregate aggregate) {
  for (Row const& row : kRows) {
    if (row.aggregate == aggregate) return row.name;
  }
  return "";
}

}  // namespace gatotu
