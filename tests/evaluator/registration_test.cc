// Coming and going registrations, and the list of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "tests/evaluator/test_vocabulary.h"

namespace {

constexpr InspectorGet kSeven = [](void* result, void const*, void const*, void*, void const*) {
  if (result != nullptr) *static_cast<integer*>(result) = 7;
  return true;
};

bool RegisterSeven(Registration& registration, char const* plural = "sevens") {
  return registration.Property("seven", plural, "", "", "integer", kSeven);
}

TEST(Registration, RefusesTooSmallABlockAndASecondTime) {
  alignas(std::max_align_t) static unsigned char block[512];
  EXPECT_FALSE(Register_Type(block, 16, "pebble", 8, nullptr, "", 0));
  EXPECT_FALSE(Register_Cache(
      block, 16, [](Instant&, void*) {}, nullptr));
  EXPECT_FALSE(
      Register_Property(block, 16, "seven", "", "", "", "integer", kSeven, nullptr, nullptr));
  EXPECT_EQ(Answer("seven"), "?unknown-property");
  EXPECT_FALSE(Unregister_Property(block)) << "never registered";

  EXPECT_TRUE(
      Register_Property(block, 128, "seven", "", "", "", "integer", kSeven, nullptr, nullptr));
  EXPECT_FALSE(
      Register_Property(block, 128, "eight", "", "", "", "integer", kSeven, nullptr, nullptr));
  EXPECT_EQ(Answer("seven"), "7");
  EXPECT_EQ(Answer("eight"), "?unknown-property");
  EXPECT_FALSE(Unregister_Type(block)) << "it is a property";
  EXPECT_TRUE(Unregister_Property(block));
  EXPECT_FALSE(Unregister_Property(block)) << "withdrawn before";
  EXPECT_EQ(Answer("seven"), "?unknown-property");
}

TEST(Registration, MayBeWithdrawnInAnyOrder) {
  for (int order = 0; order < 6; ++order) {
    int sequence[] = {0, 1, 2};
    for (int i = 0; i < order; ++i) std::next_permutation(sequence, sequence + 3);
    Registration registrations[3];
    EXPECT_TRUE(registrations[0].Property("pebble", "pebbles", "", "", "pebble", kSeven));
    EXPECT_TRUE(registrations[1].Type("pebble", 8, nullptr, "", kPlainBytes));
    EXPECT_TRUE(registrations[2].Cast("string", "pebble", "string",
                                      [](void* result, void const*, void const*) {
                                        new (result) inspector_string(InspectorText("round"));
                                      }));
    EXPECT_EQ(Answer("pebble"), "round");
    for (int const index : sequence) {
      EXPECT_TRUE(registrations[index].Withdraw());
      EXPECT_EQ(Answer("pebble").front(), '?');
    }
  }
}

TEST(Registration, LeavesCompiledExpressionsStaleOnlyWhenWithdrawn) {
  Registration first, second;
  ASSERT_TRUE(RegisterSeven(first));
  auto const expression = gatotu::Compile("seven").expression;
  ASSERT_TRUE(second.Property("eight", "eights", "", "", "integer", kSeven));
  EXPECT_EQ(AnswerOf(*expression), "7");
  EXPECT_EQ(Answer("eight"), "7");
  second.Withdraw();
  auto const evaluation = gatotu::Evaluate(*expression, [](gatotu::Value const&) { return true; });
  EXPECT_EQ(evaluation.outcome, gatotu::Outcome::kStale);
  EXPECT_FALSE(evaluation.diagnostic.message.empty());
  EXPECT_EQ(expression->Text(), "seven");
  expression->Explain();
  EXPECT_EQ(Answer("seven"), "7");
}

TEST(Registration, DropsKeptResultsWhenWithdrawn) {
  EXPECT_EQ(Answer("known \"kept\""), "kept");
  ledger.known_calls = 0;
  {
    Registration passing;
    ASSERT_TRUE(RegisterSeven(passing));
  }
  EXPECT_EQ(Answer("known \"kept\""), "kept");
  EXPECT_EQ(ledger.known_calls, 1);
}

std::vector<gatotu::VocabularyEntry> Entries(std::string_view singular) {
  auto entries = gatotu::Vocabulary();
  std::erase_if(entries, [&](auto const& entry) { return entry.singular != singular; });
  return entries;
}

TEST(Vocabulary, ListsIdenticalRegistrationsOnce) {
  Registration one, same, other;
  ASSERT_TRUE(RegisterSeven(one));
  ASSERT_TRUE(RegisterSeven(same));
  EXPECT_EQ(Entries("seven").size(), 1u);
  EXPECT_EQ(Answer("seven; sevens"), "7|7");
  one.Withdraw();
  EXPECT_EQ(Entries("seven").size(), 1u);
  EXPECT_EQ(Answer("seven"), "7");
  ASSERT_TRUE(other.Property("seven", nullptr, "string", "", "integer", kSeven));
  EXPECT_EQ(Entries("seven").size(), 2u);
  EXPECT_EQ(Answer("seven + seven \"x\""), "14");
}

TEST(Vocabulary, TellsWhatWasRegistered) {
  auto const known = Entries("known");
  ASSERT_EQ(known.size(), 1u);
  EXPECT_EQ(known[0].kind, gatotu::VocabularyKind::kProperty);
  EXPECT_EQ(known[0].plural, "knowns");
  EXPECT_EQ(known[0].parameter, "string");
  EXPECT_EQ(known[0].object, "");
  EXPECT_EQ(known[0].result, "string");
  EXPECT_TRUE(known[0].depends_only_on_parameters);
  EXPECT_NE(known[0].library.find("evaluator_test"), std::string::npos);

  EXPECT_EQ(Entries("keeper").at(0).plural, "");
  EXPECT_EQ(Entries("keeper").at(0).object, "shelf");
  auto const twins = Entries("twin");
  ASSERT_EQ(twins.size(), 2u);
  EXPECT_NE(twins[0].kind, twins[1].kind) << "a plain and an iterated one";
  auto const joins = Entries("&");
  ASSERT_EQ(joins.size(), 1u);
  EXPECT_EQ(joins[0].kind, gatotu::VocabularyKind::kOperator);
  EXPECT_EQ(joins[0].object, "string");
  EXPECT_EQ(joins[0].parameter, "string");
  auto books = Entries("book");
  std::erase_if(books, [](auto const& e) { return e.kind != gatotu::VocabularyKind::kType; });
  ASSERT_EQ(books.size(), 1u);
  EXPECT_EQ(books[0].object, "thing") << "the base of a type";
  auto const all = gatotu::Vocabulary();
  EXPECT_EQ(std::count_if(all.begin(), all.end(),
                          [](auto const& e) { return e.kind == gatotu::VocabularyKind::kCache; }),
            1);
}

}  // namespace
