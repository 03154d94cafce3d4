// What surrounds an evaluation: kept results, caches, interruption, threads, the callback.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>

#include "tests/evaluator/test_vocabulary.h"

namespace {

using namespace std::chrono_literals;
using gatotu::Outcome;

std::unique_ptr<gatotu::Expression const> Compiled(std::string_view text) {
  auto compilation = gatotu::Compile(text, gatotu::Purpose::kUse);
  EXPECT_NE(compilation.expression, nullptr) << text;
  return std::move(compilation.expression);
}

Outcome OutcomeOf(std::string_view text, gatotu::EvaluateOptions const& options = {}) {
  auto const outcome = gatotu::Evaluate(
                           *Compiled(text), [](gatotu::Value const&) { return true; }, options)
                           .outcome;
  ExpectLedgerBalances(text);
  return outcome;
}

TEST(KeptResults, ServeUntilTheirGroundChanges) {
  auto const expression = gatotu::Compile("known \"x\" & known (known \"yz\")").expression;
  ASSERT_NE(expression, nullptr);
  struct Change {
    char const* name;
    void (*make)();
  };
  AnswerOf(*expression);
  for (auto const& change : {
           Change{"the context",
                  [] {
                    static InspectorContext context;
                    gatotu::SetInspectorContext(&context);
                  }},
           Change{"no context", [] { gatotu::SetInspectorContext(nullptr); }},
           Change{"DropKeptResults", [] { gatotu::DropKeptResults(); }},
       }) {
    change.make();
    ledger.known_calls = 0;
    EXPECT_EQ(AnswerOf(*expression), "xyz");
    EXPECT_GE(ledger.known_calls, 2) << change.name;
    ledger.known_calls = 0;
    for (int i = 0; i < 3; ++i) EXPECT_EQ(AnswerOf(*expression), "xyz");
    EXPECT_EQ(ledger.known_calls, 0) << change.name;
  }
}

TEST(KeptResults, AreNeverFailures) {
  ledger.known_calls = 0;
  auto const expression = gatotu::Compile("known \"\"").expression;
  for (int i = 0; i < 3; ++i) EXPECT_EQ(AnswerOf(*expression), "!no-such-object");
  EXPECT_EQ(ledger.known_calls, 3);
}

TEST(KeptResults, DependOnNothingThatVaries) {
  EXPECT_EQ(Answer("(known \"\" | it) of (\"a\"; \"b\")"), "a|b");
  EXPECT_EQ(Answer("(known (it)) of (\"a\"; \"b\")"), "a|b");
  ledger.known_calls = 0;
  auto const expression = gatotu::Compile("known (say \"a\")").expression;
  for (int i = 0; i < 3; ++i) EXPECT_EQ(AnswerOf(*expression), "a");
  EXPECT_EQ(ledger.known_calls, 3);
}

class CountingRecorder : public gatotu::EvidenceRecorder {
 public:
  std::size_t Position() const override { return ledger.known_calls + announced; }
  std::shared_ptr<void const> Copy(std::size_t begin, std::size_t end) const override {
    return std::make_shared<std::size_t>(end - begin);
  }
  void Announce(void const* copy) override { announced += *static_cast<std::size_t const*>(copy); }
  std::size_t announced = 0;
};

TEST(KeptResults, AnnounceTheirEvidenceAgain) {
  gatotu::DropKeptResults();
  ledger.known_calls = 0;
  CountingRecorder recorder;
  auto const expression = gatotu::Compile("known \"evidence\"").expression;
  EXPECT_EQ(AnswerOf(*expression, {.evidence = &recorder}), "evidence");
  auto const first = recorder.Position();
  EXPECT_EQ(first, 1u);
  EXPECT_EQ(AnswerOf(*expression, {.evidence = &recorder}), "evidence");
  EXPECT_EQ(AnswerOf(*expression, {.evidence = &recorder}), "evidence");
  EXPECT_EQ(recorder.Position(), 3 * first);

  // A result kept while nobody recorded has no evidence to announce, so it is not used.
  gatotu::DropKeptResults();
  EXPECT_EQ(AnswerOf(*expression), "evidence");
  auto const before = recorder.Position();
  EXPECT_EQ(AnswerOf(*expression, {.evidence = &recorder}), "evidence");
  EXPECT_EQ(recorder.Position(), before + 1);
}

TEST(Caches, AreClearedUnlessKept) {
  auto const expression = gatotu::Compile("1").expression;
  ledger.cache_clears = 0;
  AnswerOf(*expression);
  EXPECT_EQ(ledger.cache_clears, 1);
  AnswerOf(*expression, {.keep_caches = true});
  EXPECT_EQ(ledger.cache_clears, 1);
  AnswerOf(*expression);
  EXPECT_EQ(ledger.cache_clears, 2);
}

TEST(Interruption, EndsWhatWouldNotEnd) {
  // Of its own accord, by swallowing the interruption, without ever asking for it.
  for (char const* text : {"number of endlesses", "swallow", "exists swallow", "swallow | 5",
                           "swallows", "number of counts 9223372036854775807",
                           "sum of page counts of (book 1 of shelf 1) of endlesses",
                           "counts 9223372036854775807 whose (exists swallow)"}) {
    std::atomic<bool> done = false;
    std::thread interrupter([&] {
      while (!done) {
        std::this_thread::sleep_for(2ms);
        gatotu::Interrupt();
      }
    });
    auto const outcome = OutcomeOf(text);
    done = true;
    interrupter.join();
    EXPECT_EQ(outcome, Outcome::kInterrupted) << text;
    EXPECT_EQ(OutcomeOf(text, {.time_limit = 3ms}), Outcome::kTimeLimit) << text;
    EXPECT_EQ(Answer("1 + 1"), "2") << "usable after " << text;
  }
}

TEST(Interruption, WithoutAnEvaluationIsNothing) {
  gatotu::Interrupt();
  EXPECT_EQ(Answer("count 1"), "1");
  EXPECT_EQ(OutcomeOf("counts 3", {.time_limit = 1h}), Outcome::kAnswered);
}

TEST(Callback, EndsTheEvaluationByFalse) {
  int seen = 0;
  auto const evaluation =
      gatotu::Evaluate(*Compiled("endlesses"), [&](gatotu::Value const&) { return ++seen < 3; });
  EXPECT_EQ(seen, 3);
  EXPECT_TRUE(evaluation.IsAnswered());
  ExpectLedgerBalances("endlesses");
}

TEST(Callback, MayThrow) {
  for (char const* text : {"books of shelves", "book 1 of shelf 1", "book of shelf 1",
                           "(it, label of it) of books whose (true) of shelves",
                           "unique values of labels of books of shelves"}) {
    auto const expression = Compiled(text);
    EXPECT_THROW(gatotu::Evaluate(*expression, [](gatotu::Value const&) -> bool { throw 'x'; }),
                 char)
        << text;
    ExpectLedgerBalances(text);
    EXPECT_EQ(Answer("label of book 1 of shelf 1"), "11") << text;
  }
}

TEST(Callback, MayEvaluateAnother) {
  std::string seen;
  auto const outer = gatotu::Compile("labels of books of shelves");
  auto const inner = gatotu::Compile("sum of counts 3 + fail 0 | 9");
  auto const endless = Compiled("endless");
  gatotu::Evaluate(*outer.expression, [&](gatotu::Value const& value) {
    seen += std::string(value.Text());
    gatotu::Evaluate(*inner.expression, [&](gatotu::Value const& nested) {
      seen += "/" + std::string(nested.Text());
      return true;
    });
    EXPECT_EQ(gatotu::Evaluate(*outer.expression, [](auto const&) { return false; }).outcome,
              Outcome::kAnswered);
    EXPECT_EQ(gatotu::Evaluate(*Compiled("number of endlesses"), [](auto const&) { return true; },
                               {.time_limit = 1ms})
                  .outcome,
              Outcome::kTimeLimit);
    // The value is valid until this returns.
    seen += "=" + std::string(value.Text()) + " ";
    return seen.size() < 20;
  });
  EXPECT_EQ(seen, "11/9=11 21/9=21 22/9=22 ");
  ExpectLedgerBalances("nested");
}

TEST(Values, AreHandedOverAsTheyAre) {
  gatotu::Evaluate(*Compiled("(-5, true, \"a\", weight 3, book 1 of shelf 1)"),
                   [](gatotu::Value const& tuple) {
                     EXPECT_EQ(tuple.Address(), nullptr);
                     auto const members = tuple.Members();
                     EXPECT_EQ(members.size(), 5u);
                     EXPECT_EQ(members[0].Integer(), -5);
                     EXPECT_TRUE(members[1].Boolean());
                     EXPECT_EQ(members[3].Type().name, "weight");
                     EXPECT_EQ(*static_cast<integer const*>(members[3].Address()), 3);
                     static_cast<Pinned const*>(members[4].Address())->Check();
                     return true;
                   });
  ExpectLedgerBalances("a tuple");
}

TEST(Threads, EvaluateOneAtATime) {
  std::atomic<int> answered = 0;
  auto const work = [&] {
    for (int i = 0; i < 50; ++i) {
      auto const compilation = gatotu::Compile("exclusive and number of counts 5 = 5");
      auto const evaluation =
          gatotu::Evaluate(*compilation.expression, [](gatotu::Value const&) { return true; });
      answered += evaluation.IsAnswered();
    }
  };
  std::thread one(work), other(work);
  one.join();
  other.join();
  EXPECT_EQ(answered, 100);
  ExpectLedgerBalances("exclusive");
}

}  // namespace
