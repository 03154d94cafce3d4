// Coming and going registrations, and the list of them.

#include <algorithm>
#include <string>
#include <vector>

#include "tests/evaluator/test_vocabulary.h"

namespace {

constexpr InspectorGet kSeven = [](void* result, void const*, void const*, void*, void const*) {
  if (result != nullptr) *static_cast<integer*>(result) = 7;
  return true;
};

bool RegisterSeven(Registration& registration, char const* name = "seven",
                   char const* plural = "sevens") {
  return registration.Property(name, plural, "", "integer", kSeven);
}

TEST(Registration, RefusesTooSmallABlockAndASecondTime) {
  alignas(std::max_align_t) static unsigned char block[512];
  auto const property = [](char const* name, unsigned long reserved) {
    return Register_Property(block, reserved, name, "", "", "", "integer", kSeven, nullptr,
                             nullptr);
  };
  EXPECT_FALSE(Register_Type(block, 16, "pebble", 8, nullptr, "", 0));
  EXPECT_FALSE(Register_Cache(
      block, 16, [](Instant&, void*) {}, nullptr));
  EXPECT_FALSE(property("seven", 16));
  EXPECT_EQ(Answer("seven"), "?unknown-property");
  EXPECT_FALSE(Unregister_Property(block)) << "never registered";

  EXPECT_TRUE(property("seven", 128));
  EXPECT_FALSE(property("eight", 128));
  EXPECT_EQ(Answer("seven"), "7");
  EXPECT_EQ(Answer("eight"), "?unknown-property");
  EXPECT_FALSE(Unregister_Type(block)) << "it is a property";
  EXPECT_TRUE(Unregister_Property(block));
  EXPECT_FALSE(Unregister_Property(block)) << "withdrawn before";
  EXPECT_EQ(Answer("seven"), "?unknown-property");
}

TEST(Registration, IsFoundHoweverItsNamesAreWritten) {
  Registration registration;
  ASSERT_TRUE(RegisterSeven(registration, "  Lucky   Seven ", "lucky sevens"));
  EXPECT_EQ(Answer("lucky seven; LUCKY\nSevens"), "7|7");
  EXPECT_EQ(Answer("lucky"), "?unknown-property");
}

TEST(Registration, MayBeWithdrawnInAnyOrder) {
  for (int order = 0; order < 6; ++order) {
    int sequence[] = {0, 1, 2};
    for (int i = 0; i < order; ++i) std::next_permutation(sequence, sequence + 3);
    Registration registrations[3];
    EXPECT_TRUE(registrations[0].Property("pebble", "pebbles", "", "pebble", kSeven));
    EXPECT_TRUE(registrations[1].Add(Register_Type, Unregister_Type, "pebble", 8, nullptr, "",
                                     kPlainBytes));
    auto const round = [](void* text, auto...) { new (text) auto(InspectorText("round")); };
    EXPECT_TRUE(registrations[2].Add(Register_Cast, Unregister_Cast, "string", "pebble", "string",
                                     round, nullptr, nullptr));
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
  ASSERT_TRUE(RegisterSeven(second, "eight", "eights"));
  EXPECT_EQ(AnswerOf(*expression), "7");
  EXPECT_EQ(Answer("eight"), "7");
  second.Withdraw();
  auto const evaluation = gatotu::Evaluate(*expression, Ignore);
  EXPECT_EQ(evaluation.outcome, gatotu::Outcome::kStale);
  EXPECT_FALSE(evaluation.diagnostic.message.empty());
  EXPECT_EQ(expression->Text(), "seven");
  expression->Explain();
  EXPECT_EQ(Answer("seven"), "7");
}

// The entries of this name, a line each: "kind singular/plural (parameter) of (object): result".
std::vector<std::string> Listed(std::string_view singular) {
  char const* const kinds[] = {"type", "property", "iterated", "cast", "operator", "cache"};
  std::vector<std::string> listed;
  for (auto const& entry : gatotu::Vocabulary()) {
    if (entry.singular != singular) continue;
    listed.push_back(kinds[static_cast<int>(entry.kind)] + (" " + entry.singular) + "/" +
                     entry.plural + " (" + entry.parameter + ") of (" + entry.object +
                     "): " + entry.result + (entry.depends_only_on_parameters ? " DOP" : ""));
  }
  return listed;
}

TEST(Vocabulary, ListsIdenticalRegistrationsOnce) {
  Registration one, same, other;
  ASSERT_TRUE(RegisterSeven(one));
  ASSERT_TRUE(RegisterSeven(same));
  EXPECT_EQ(Listed("seven").size(), 1u);
  EXPECT_EQ(Answer("seven; sevens"), "7|7");
  one.Withdraw();
  EXPECT_EQ(Listed("seven").size(), 1u);
  EXPECT_EQ(Answer("seven"), "7");
  ASSERT_TRUE(other.Property("seven", nullptr, "string", "integer", kSeven));
  EXPECT_EQ(Listed("seven").size(), 2u);
  EXPECT_EQ(Answer("seven + seven \"x\""), "14");
}

TEST(Vocabulary, TellsWhatWasRegistered) {
  std::pair<char const*, std::vector<std::string>> const cases[] = {
      {"known", {"property known/knowns (string) of (): string DOP"}},
      {"keeper", {"property keeper/ () of (shelf): string"}},
      {"twin", {"property twin/twins () of (): string", "iterated twin/twins () of (): string"}},
      {"&", {"operator &/ (string) of (string): string"}},
      {"thing", {"type thing/ () of (): thing"}},
      {"book",
       {"type book/ () of (thing): book", "property book/books (integer) of (shelf): book",
        "iterated book/books () of (shelf): book"}},
      {"", {"cache / () of (): "}},
  };
  for (auto const& [singular, listed] : cases) {
    EXPECT_THAT(Listed(singular), testing::UnorderedElementsAreArray(listed)) << singular;
  }
}

}  // namespace
