// How texts are read, seen in the typed tree.

#include "tests/evaluator/test_vocabulary.h"

namespace {

// The tree on one line: each node's children in parentheses, "*" behind what is many.
std::string Tree(std::string_view text) {
  auto const compilation = gatotu::Compile(text, gatotu::Purpose::kUse);
  if (compilation.expression == nullptr) return "?" + compilation.diagnostics.at(0).code;
  std::string tree;
  std::size_t depth = 0;
  std::string const explained = compilation.expression->Explain();
  for (std::size_t at = 0; at < explained.size();) {
    auto const end = explained.find('\n', at);
    auto const start = explained.find_first_not_of(' ', at);
    auto const level = (start - at) / 2;
    if (!tree.empty()) tree += level > depth ? "(" : Repeat(")", depth - level) + " ";
    auto const line = explained.substr(start, end - start);
    tree += line.substr(0, line.rfind(": "));
    if (line.ends_with("many")) tree += "*";
    depth = level;
    at = end + 1;
  }
  return tree + Repeat(")", depth);
}

TEST(Grammar, BindsAsItsLevelsSay) {
  std::pair<char const*, char const*> const cases[] = {
      {"1 + 2 * 3 - 4", "operator -(operator +(1 operator *(2 3)) 4)"},
      {"not 1 = 2 and true or false", "or(and(not(operator =(1 2)) true) false)"},
      {"yes \"a\" or no \"b\" and true", "or(yes(\"a\") and(no(\"b\") true))"},
      {"\"a\" & \"b\" contains \"a\"", "operator contains(operator &(\"a\" \"b\") \"a\")"},
      {"exists fails 0 as string", "exists(as string*(fails*(0)))"},
      {"not exists fail 0 = true", "?operator-mismatch"},
      {"- fail 0 as string", "as string(-(fail(0)))"},
      {"fail 0 | 1 + 2", "|(fail(0) operator +(1 2))"},
      {"if yes \"a\" then fail 1 else fail 2 | 3", "if(yes(\"a\") fail(1) |(fail(2) 3))"},
      {"fail 1, 2; 3, 4", "collection*(tuple(fail(1) 2) tuple(3 4))"},
      {"labels of books whose (page count of it > 1) of shelves",
       "labels*(whose*(books (iterated)*(shelves (iterated)*) operator < (sides changed)(page "
       "count(it) 1)))"},
      {"number of books of shelves", "number(books (iterated)*(shelves (iterated)*))"},
      {"weight of first of books of shelf 1", "weight(first(books (iterated)*(shelf(1))))"},
      {"label of books of shelf 1", "exactly one(labels*(books (iterated)*(shelf(1))))"},
      {"item 0 of (label of it, it) of books of shelf 1",
       "item 0*(for each*(books (iterated)*(shelf(1)) tuple(label(it) it)))"},
  };
  for (auto const& [text, tree] : cases) {
    EXPECT_EQ(Tree(text), tree) << text;
  }
}

TEST(Grammar, SpellingsOfOneMeaningGiveOneTree) {
  std::pair<char const*, char const*> const cases[] = {
      {"fail 1 is equal to fail 2", "fail 1 = fail 2"},
      {"not exist fail 1", "NOT(EXISTS(fail 1))"},
      {"build\tnumber of(shelf 1)whose(true)", "BUILD  Number of ( shelf 1 ) whose ( true )"},
      {"fail 1 + fail 2 * fail 3 < fail 4 and true",
       "((fail 1 + (fail 2 * fail 3)) < fail 4) and true"},
      {"if true then fail 1 else if false then fail 2 else fail 3 | fail 4",
       "if true then fail 1 else (if false then fail 2 else (fail 3 | fail 4))"},
      {"exists fail 1 | true", "(exists (fail 1)) | true"},
  };
  for (auto const& [one, other] : cases) EXPECT_EQ(Tree(one), Tree(other)) << one;
}

TEST(Type, TellsTheStaticTypeAndNumber) {
  std::pair<char const*, char const*> const cases[] = {
      {"label of books of shelves", "string"},
      {"labels of book 1 of shelf 1", "string*"},
      {"books of shelf 1", "book*"},
      {"(label of it, (page count of it, true)) of book 1 of shelf 1",
       "(string, (integer, boolean))"},
      {"unique values of counts 3", "integer*"},
      {"fail 0 | fails 1", "integer*"},
      {"if true then fails 1 else 2", "integer*"},
      {"counts 3 whose (true)", "integer*"},
  };
  for (auto const& [text, type] : cases) {
    auto const expression = gatotu::Compile(text, gatotu::Purpose::kUse).expression;
    ASSERT_NE(expression, nullptr) << text;
    EXPECT_EQ(expression->Type().name + (expression->IsMany() ? "*" : ""), type) << text;
  }
}

}  // namespace
