// What is said about texts that mean nothing: the code, the place, the suggestion.

#include "tests/evaluator/test_vocabulary.h"

namespace {

// "code@line:column+length", with "->suggestion" where there is one.
std::string Summary(gatotu::Diagnostic const& diagnostic) {
  auto const& position = diagnostic.position;
  return diagnostic.code + "@" + std::to_string(position.line) + ":" +
         std::to_string(position.column) + "+" + std::to_string(position.length) +
         (diagnostic.suggestion.empty() ? "" : "->" + diagnostic.suggestion);
}

std::string Complaints(std::string_view text) {
  std::string complaints;
  for (auto const& diagnostic : gatotu::Check(text)) {
    EXPECT_FALSE(diagnostic.message.empty()) << text;
    EXPECT_LE(diagnostic.position.offset + diagnostic.position.size, text.size()) << text;
    complaints += (complaints.empty() ? "" : " ") + Summary(diagnostic);
  }
  return complaints;
}

TEST(Diagnostics, PointAtTheMistakeAndSuggest) {
  std::pair<char const*, char const*> const cases[] = {
      // Unknown words: a whole run is one phrase, and each is reported.
      {"lable of book 1 of shelf 1", "unknown-property@1:1+5->label"},
      {"labels of bokks of shelf 1", "unknown-property@1:11+5->books"},
      {"shelf nosuch phrase of shelf 1", "unknown-property@1:1+19"},
      {"nam of shelv 1", "unknown-property@1:1+3 unknown-property@1:8+5->shelf"},
      {"label\n  of bokk\tof\r\n shelv 1",
       "unknown-property@2:6+4->book unknown-property@3:2+5->shelf"},
      {"\"a\xc3\xa9\" & nosuch", "unknown-property@1:8+6"},
      {"\"a\xe9\" & nosuch", "unknown-property@1:8+6"},
      {"build number; page count", "unknown-property@1:15+10"},
      {"keepers of shelves", "unknown-property@1:1+7->keeper"},
      {"label of shelf 1", "unknown-property@1:1+5"},
      {"ghost", "unregistered-type@1:1+5"},
      // Types.
      {"1 + \"a\"", "operator-mismatch@1:3+1"},
      {"stone = stone", "operator-mismatch@1:7+1"},
      {"(1, 2) = (1, 2)", "operator-mismatch@1:8+1"},
      {"1; \"a\"", "type-mismatch@1:4+3"},
      {"if true then 1 else \"a\"", "type-mismatch@1:21+3"},
      {"fail 0 | \"a\"", "type-mismatch@1:10+3"},
      {"if 1 then 2 else 3", "not-boolean@1:4+1"},
      {"counts 3 whose (it)", "not-boolean@1:17+2"},
      {"1 as shelf", "unknown-cast@1:6+5"},
      {"count \"a\"", "parameter-mismatch@1:1+5"},
      {"count 1 + twins", "operator-mismatch@1:9+1 plural-operand@1:11+5"},
      {"twins, 1", "plural-operand@1:1+5"},
      {"it", "unbound-it@1:1+2"},
      {"item 0 of 1", "not-a-tuple@1:1+6"},
      {"1 + item 2 of (1, 2)", "no-such-item@1:5+6"},
      {"shelf 1", "not-showable@1:1+5"},
      {"unique values of shelves", "not-copyable@1:1+13"},
      {"minimum of stones", "not-copyable@1:1+7"},
      {"sum of twins", "aggregate-mismatch@1:1+3"},
      // Where "whose" was probably meant.
      {"labels of books of shelf 2 whose (page count of it = 2)",
       "misplaced-whose@1:20+5->books whose (...) of shelf unknown-property@1:35+10"},
      // The grammar.
      {"", "expected-expression@1:1+0"},
      {" // nothing\n", "expected-expression@2:1+0"},
      {"1 +", "expected-expression@1:4+0"},
      {"(1", "expected-token@1:3+0"},
      {"1 2", "unexpected-token@1:3+1"},
      {"of", "unexpected-token@1:1+2"},
      {"counts 3 whose true", "expected-token@1:16+4"},
      {"if true then 1", "expected-token@1:15+0"},
      {"1 = 2 = 3", "chained-comparison@1:7+1"},
      {"1\n@", "unknown-character@2:1+1"},
      {"1 /* open", "unterminated-comment@1:3+2"},
      {"\"a\" & \"open", "unterminated-string@1:7+1"},
      {"\"bad \\q\"", "unknown-escape@1:6+2"},
      {"\"\\x4\"", "unknown-escape@1:2+2"},
      {"1 + 9223372036854775808", "integer-too-large@1:5+19"},
      {"--9223372036854775809", "integer-too-large@1:3+19"},
  };
  for (auto const& [text, complaints] : cases) EXPECT_EQ(Complaints(text), complaints) << text;
}

TEST(Diagnostics, TellWhatCanBeAsked) {
  auto const diagnostics = gatotu::Check("lable of book 1 of shelf 1");
  ASSERT_EQ(diagnostics.size(), 1u);
  EXPECT_EQ(gatotu::Render(diagnostics[0], "lable of book 1 of shelf 1"),
            "error: a book has no property \"lable\"\n"
            "  lable of book 1 of shelf 1\n"
            "  ^~~~~\n"
            "  did you mean \"label\"? "
            "a book has: label, page count, title, weight (as: string)\n");
}

TEST(Diagnostics, PointAtTheFailingPhraseOfAnEvaluation) {
  struct {
    char const *text, *summary, *part_of_message;
  } const cases[] = {
      {"1 +\n fail 0", "no-such-object@2:2+4", "no such object"},
      {"page count of book 1 of shelf 11", "no-such-object@1:25+5", "no such object"},
      {"1 + count 2", "not-unique@1:5+5->counts", "unique"},
      {"label of books of shelf 2", "not-unique@1:1+5->labels", "unique"},
      {"1 + fail 1", "inspector-failed@1:5+4", "-43"},
      {"1 + fail 2", "inspector-failed@1:5+4", "out of ink"},
      {"1 + fail 2", "inspector-failed@1:5+4", "std::runtime_error"},
      {"1 + fail 3", "inspector-failed@1:5+4", "int"},
      {"fail 5", "inspector-failed@1:1+4", "MemoryFullError"},
      {"fail 4", "out-of-memory@1:1+4", "memory"},
      {"\"x\" as integer", "no-such-object@1:8+7", "no such object"},
  };
  for (auto const& c : cases) {
    auto const compilation = gatotu::Compile(c.text);
    ASSERT_NE(compilation.expression, nullptr) << c.text;
    auto const evaluation = gatotu::Evaluate(*compilation.expression, Ignore);
    EXPECT_EQ(Summary(evaluation.diagnostic), c.summary) << c.text;
    EXPECT_NE(evaluation.diagnostic.message.find(c.part_of_message), std::string::npos)
        << evaluation.diagnostic.message;
  }
}

}  // namespace
