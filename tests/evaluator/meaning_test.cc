// What expressions answer. `Answer` also sees to it that no value was moved or left over.

#include "tests/evaluator/test_vocabulary.h"

namespace {

struct Case {
  char const *text, *answer;
};

void ExpectAnswers(std::initializer_list<Case> cases) {
  for (auto const& [text, answer] : cases) {
    EXPECT_EQ(Answer(text), answer) << text;
  }
}

TEST(Number, IsAskedForByTheForm) {
  ExpectAnswers({
      // A singular asks for exactly one.
      {"label of books of shelf 1", "11"},
      {"label of book of shelf 1", "11"},
      {"label of books of shelf 2", "!not-unique"},
      {"label of book of shelf 2", "!not-unique"},
      {"label of books of shelf 0", "!no-such-object"},
      {"label of books of (shelf 0; shelf 1; shelf 0)", "11"},
      {"labels of book of shelf 2", "21!not-unique"},
      {"number of labels of book of shelf 2", "!not-unique"},
      {"exists book of shelf 2", "true"},
      {"label of (book of shelf 2)", "!not-unique"},
      {"first title of shelves", "!not-unique"},
      {"keeper of shelves whose (exists keeper of it)", "Ann"},
      {"count 2", "!not-unique"},
      // A plural takes any number, in order.
      {"labels of books of shelves", "11|21|22|31|32|33"},
      {"labels of books of shelf 0", ""},
      {"labels of book 3 of shelves", "13!not-unique"},
      {"labels of books 3 of shelves", "13|23|33"},
      {"fails 0", ""},
      {"fails (7; 8)", "?plural-operand"},
      {"(count 1; fail 1; 3)", "1!inspector-failed"},
      {"(count 1; fail 0; 3)", "1!no-such-object"},
  });
}

TEST(Phrases, TellRegistrationsOfOneNameApart) {
  ExpectAnswers({
      {"twin", "plain"},
      {"twins", "a|b"},
      {"weight of book 2 of shelf 2", "2 g"},
      {"first of titles of books of shelf 3", "31"},
      {"title of book 1 of shelf 2", "21"},
      {"Build /* a comment between */\n\tNUMBER // and one behind", "7"},
      // Parameters are expressions of one value.
      {"counts (-1)", ""},
      {"say (\"a\" & say \"b\")", "ab"},
      {"fail (fail 0) | 3", "3"},
      {"fail (fail 2)", "!inspector-failed"},
      {"labels of books (number of shelves) of shelves", "13|23|33"},
  });
}

TEST(Ranges, AreFilteredWalkedAndTakenApart) {
  ExpectAnswers({
      // `whose` filters what stands just before it.
      {"labels of books whose (page count of it > 100) of shelves", "22|32|33"},
      {"books whose (page count of it > 100) of shelf 3", "thing 32|thing 33"},
      {"label of books whose (page count of it > 100) of shelf 2", "22"},
      {"label of book whose (page count of it > 100) of shelf 1", "!no-such-object"},
      {"counts 5 whose (it > 2 and it < 5)", "3|4"},
      {"count 5 whose (it = 4)", "4"},
      {"1 whose (it = 2) | 5", "5"},
      {"number of shelves whose (number of books whose (page count of it > 100) of it > 1)", "1"},
      {"counts 3 whose (fail 0 = 1)", ""},
      {"labels of first of books whose (page count of it = 200) of shelves", "22"},
      // `it` is the value of the nearest enclosing range.
      {"(label of it, page count of it) of books of shelf 2", "(21, 100)|(22, 200)"},
      {"label of it of book 1 of shelf 1", "11"},
      {"(labels of books of it) of shelves", "11|21|22|31|32|33"},
      {"(label of it; title of it) of books of shelf 2", "21|21|22|22"},
      {"((it * 10, it) of counts (it)) of counts 2", "(10, 1)|(10, 1)|(20, 2)"},
      {"((it + number of counts 5 whose (it > 2)) of it) of counts 2", "4|5"},
      // Tuples give their items from zero.
      {"1, \"a\"; 2, \"b\"", "(1, a)|(2, b)"},
      {"(1, (2, 3))", "(1, (2, 3))"},
      {"item 0 of (label of it, page count of it) of books of shelf 2", "21|22"},
      {"item 1 of item 1 of (1, (2, 3))", "3"},
      {"page count of item 1 of (1, book 2 of shelf 2)", "200"},
      {"(item 1 of it) of (1, 2; 3, 4)", "2|4"},
      {"(1, 2; 3, 4) whose (item 0 of it > 1)", "(3, 4)"},
      {"1, fail 0", "!no-such-object"},
      {"(fail 0, 1) | (1, 2)", "(1, 2)"},
  });
}

TEST(Aggregates, SumUpWhatCanBeCopied) {
  ExpectAnswers({
      {"sum of counts 4", "10"},
      {"sum of fails 0", "0"},
      {"sum of weights of books of shelves", "10 g"},
      {"maximum of titles of books of shelf 3", "33"},
      {"minimum of fails 0", "!no-such-object"},
      {"last of counts 3", "3"},
      {"first of endlesses", "1"},
      {"unique values of (3; 1; 2; 1)", "1|2|3"},
      {"unique values of weights of books of shelves", "1 g|2 g|3 g"},
      {"unique values of labels of books of (shelf 2; shelf 1; shelf 2)", "11|21|22"},
      {"concatenation of labels of books of shelf 2", "2122"},
      {"concatenation \", \" of labels of books of shelf 2", "21, 22"},
      {"concatenation \", \" of labels of books of shelf 0", ""},
      {"number of (1; 2; fail 0)", "!no-such-object"},
  });
}

TEST(Failures, NameTheirKind) {
  ExpectAnswers({
      {"fail 6", "!no-such-object"},
      {"fails 2", "!inspector-failed"},
      {"exists fail 1", "!inspector-failed"},
      {"fail 0 | fail 6 | 5", "5"},
      {"fail 1 | 5", "!inspector-failed"},
      {"count 2 | 5", "!not-unique"},
      {"fails 0 | counts 3", "1|2|3"},
      {"counts 2 | counts 3", "1|2"},
      {"(count 1; fail 0) | 2", "1!no-such-object"},
      {"unopened", "!no-such-object"},
      {"number of unopeneds", "0"},
      {"exists \"x\" as integer", "false"},
      {"exists counts 3 and not exists fails 0", "true"},
  });
}

TEST(Values, AreComparedWrittenAndCast) {
  ExpectAnswers({
      {"5 != 3 and 5 > 3 and 5 >= 5 and 3 <= 5 and 3 < 5 and 5 = 5", "true"},
      {"5 <= 3 or 5 < 3 or 3 >= 5 or 3 > 5 or 3 = 5 or 5 != 5", "false"},
      {"5 is 5 and 5 equals 5 and 5 is not 4 and 5 does not equal 4", "true"},
      {"3 is less than 5 and 5 is greater than 3", "true"},
      {"3 is not less than 5 or 5 is not greater than 3", "false"},
      {"5 is not less than 5 and 5 is not greater than 5", "true"},
      {"\"abc\" contains \"b\" and \"abc\" starts with \"ab\"", "true"},
      {"\"abc\" does not contain \"b\" or \"abc\" does not start with \"ab\"", "false"},
      {"\"b\" is contained by \"abc\" and \"x\" is not contained by \"abc\"", "true"},
      {"weight 3 <= weight 3 and weight 3 >= weight 3 and not weight 3 > weight 3", "true"},
      {"\"a\" < \"b\" and \"b\" > \"a\" and \"a\" <= \"a\"", "true"},
      // Literals.
      {"\"a\\x41\\t\\\"\\\\\" & \"\\n\"", "aA\t\"\\\n"},
      {"\"\xc3\xa9\" = \"\\xc3\\xA9\"", "true"},
      {"9223372036854775807", "9223372036854775807"},
      {"-9223372036854775808", "-9223372036854775808"},
      {"0007", "7"},
      {"--3 - -2", "5"},
      {"TRUE AND NOT False", "true"},
      {"1/**/+//\n2", "3"},
      {"\"// no /* comment */\"", "// no /* comment */"},
      // Casts come from the type or its bases.
      {"book 1 of shelf 2 as string", "thing 21"},
      {"labels of books of shelf 2 as integer", "21|22"},
      {"(\"12\" as integer + 1) as string as integer", "13"},
      {"weight of book 3 of shelf 1 as string", "3 g"},
  });
}

TEST(Evaluation, RunsFromLeftToRightAndOnlyWhatItNeeds) {
  struct {
    char const *text, *answer, *said;
  } const cases[] = {
      {R"(if yes "a" then say "b" else say "c")", "b", "ab"},
      {R"(if no "a" then say "b" else say "c")", "c", "ac"},
      {R"(yes "a" or yes "b")", "true", "a"},
      {R"(no "a" and yes "b")", "false", "a"},
      {R"(no "a" or no "b" and yes "c")", "false", "ab"},
      {R"(yes "a" and no "b" or yes "c")", "true", "abc"},
      {R"(say "a" | say "b")", "a", "a"},
      {R"(fail 0 as string | say "b" | say "c")", "b", "b"},
      {R"(say "a" & (say "b" & say "c"))", "abc", "abc"},
      {R"(say "a" > say "b")", "false", "ab"},
      {R"(say "a" is not contained by say "b")", "true", "ab"},
      {R"(say "a", say "b"; say "c", say "d")", "(a, b)|(c, d)", "abcd"},
      {R"(exists (say "a"; say "b"))", "true", "a"},
      {R"(first of (say "a"; say "b"))", "a", "a"},
      {R"((say "a") of (yes "b"; no "c"))", "a|a", "baca"},
      {R"(counts 2 whose (yes "w"))", "1|2", "ww"},
      {R"(fail 2 + (if yes "b" then 1 else 2))", "!inspector-failed", ""},
  };
  for (auto const& c : cases) {
    ledger.said.clear();
    EXPECT_EQ(Answer(c.text), c.answer) << c.text;
    EXPECT_EQ(ledger.said, c.said) << c.text;
  }
}

}  // namespace
