#include "evaluator/comparison_words.h"

#include <string_view>

namespace gatotu {
namespace {

struct Row {
  std::string_view words[4];  // unused ones are empty
  Comparison comparison;
};

// A row that begins like a longer one stands behind it. "is" and "not" are reserved words, so
// they are compared by their text like the others.
constexpr Row kRows[] = {
    {{"is", "not", "less", "than"}, {kOperatorLess, false, true}},
    {{"is", "not", "greater", "than"}, {kOperatorLess, true, true}},
    {{"is", "not", "contained", "by"}, {kOperatorContains, true, true}},
    {{"is", "not", "equal", "to"}, {kOperatorEqual, false, true}},
    {{"is", "less", "than"}, {kOperatorLess, false, false}},
    {{"is", "greater", "than"}, {kOperatorLess, true, false}},
    {{"is", "contained", "by"}, {kOperatorContains, true, false}},
    {{"is", "equal", "to"}, {kOperatorEqual, false, false}},
    {{"is", "not"}, {kOperatorEqual, false, true}},
    {{"is"}, {kOperatorEqual, false, false}},
    {{"does", "not", "equal"}, {kOperatorEqual, false, true}},
    {{"does", "not", "contain"}, {kOperatorContains, false, true}},
    {{"does", "not", "start", "with"}, {kOperatorStartsWith, false, true}},
    {{"does", "not", "end", "with"}, {kOperatorEndsWith, false, true}},
    {{"equals"}, {kOperatorEqual, false, false}},
    {{"contains"}, {kOperatorContains, false, false}},
    {{"starts", "with"}, {kOperatorStartsWith, false, false}},
    {{"ends", "with"}, {kOperatorEndsWith, false, false}},
    {{"="}, {kOperatorEqual, false, false}},
    {{"!="}, {kOperatorEqual, false, true}},
    {{"<"}, {kOperatorLess, false, false}},
    {{">"}, {kOperatorLess, true, false}},
    {{"<="}, {kOperatorLess, true, true}},
    {{">="}, {kOperatorLess, false, true}},
};

bool IsText(Token const& token, std::string_view text) {
  return token.kind != TokenKind::kString && token.kind != TokenKind::kInteger &&
         token.text == text;
}

}  // namespace

std::optional<ComparisonWords> MatchComparison(TokenStream const& tokens) {
  TokenKind kind = tokens.Peek().kind;
  if (kind == TokenKind::kEnd || tokens.IsSign(")")) return std::nullopt;
  for (Row const& row : kRows) {
    std::size_t count = 0;
    while (count < 4 && !row.words[count].empty() && IsText(tokens.Peek(count), row.words[count])) {
      ++count;
    }
    if (count == 4 || row.words[count].empty()) return ComparisonWords{row.comparison, count};
  }
  return std::nullopt;
}

bool BeginsComparison(TokenStream const& tokens, std::size_t ahead) {
  return tokens.IsWord("contains", ahead) || tokens.IsWord("equals", ahead) ||
         tokens.AreWords({"starts", "with"}, ahead) || tokens.AreWords({"ends", "with"}, ahead) ||
         (tokens.IsWord("does", ahead) && tokens.IsReserved(ReservedWord::kNot, ahead + 1));
}

}  // namespace gatotu
