// What surrounds an evaluation: kept results, caches, interruption, threads, the callback.

#include <atomic>
#include <memory>
#include <thread>

#include "tests/evaluator/test_vocabulary.h"

namespace {

using namespace std::chrono_literals;
using gatotu::Outcome;
using gatotu::Purpose;

std::unique_ptr<gatotu::Expression const> Compiled(std::string_view text,
                                                   Purpose purpose = Purpose::kShow) {
  auto compilation = gatotu::Compile(text, purpose);
  EXPECT_NE(compilation.expression, nullptr) << text;
  return std::move(compilation.expression);
}

Outcome OutcomeOf(std::string_view text, gatotu::EvaluateOptions const& options = {}) {
  auto const outcome = gatotu::Evaluate(*Compiled(text), Ignore, options).outcome;
  ExpectLedgerBalances(text);
  return outcome;
}

TEST(KeptResults, ServeUntilTheirGroundChanges) {
  auto const expression = Compiled("known \"x\" & known (known \"yz\")");
  static InspectorContext context;
  void (*const changes[])() = {
      [] { gatotu::SetInspectorContext(&context); },
      [] { gatotu::SetInspectorContext(nullptr); },
      [] { gatotu::DropKeptResults(); },
  };
  AnswerOf(*expression);
  for (auto* const change : changes) {
    change();
    ledger.known_calls = 0;
    EXPECT_EQ(AnswerOf(*expression), "xyz");
    EXPECT_GE(ledger.known_calls, 2);
    ledger.known_calls = 0;
    for (int i = 0; i < 3; ++i) EXPECT_EQ(AnswerOf(*expression), "xyz");
    EXPECT_EQ(ledger.known_calls, 0);
  }
}

TEST(KeptResults, AreNeitherFailuresNorWhatVaries) {
  struct {
    char const *text, *answer;
    int calls;  // of three evaluations
  } const cases[] = {
      {"known \"\"", "!no-such-object", 3},
      {"known (say \"a\")", "a", 3},
      {"(known (it)) of (\"a\"; \"b\")", "a|b", 6},
      {"(known \"\" | it) of (\"a\"; \"b\")", "a|b", 6},
  };
  for (auto const& c : cases) {
    ledger.known_calls = 0;
    auto const expression = Compiled(c.text);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(AnswerOf(*expression), c.answer);
    EXPECT_EQ(ledger.known_calls, c.calls) << c.text;
  }
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
  auto const expression = Compiled("known \"evidence\"");
  EXPECT_EQ(AnswerOf(*expression, {.evidence = &recorder}), "evidence");
  EXPECT_EQ(recorder.Position(), 1u);
  EXPECT_EQ(AnswerOf(*expression, {.evidence = &recorder}), "evidence");
  EXPECT_EQ(recorder.Position(), 2u);

  // A result kept while nobody recorded has no evidence to announce, so it is not used.
  gatotu::DropKeptResults();
  EXPECT_EQ(AnswerOf(*expression), "evidence");
  auto const before = recorder.Position();
  EXPECT_EQ(AnswerOf(*expression, {.evidence = &recorder}), "evidence");
  EXPECT_EQ(recorder.Position(), before + 1);
}

TEST(Caches, AreClearedUnlessKept) {
  ledger.cache_clears = 0;
  Answer("1");
  EXPECT_EQ(ledger.cache_clears, 1);
  Answer("1", {.keep_caches = true});
  EXPECT_EQ(ledger.cache_clears, 1);
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

TEST(Callback, EndsTheEvaluationByFalseOrByThrowing) {
  int seen = 0;
  auto const endless = Compiled("endlesses");
  EXPECT_TRUE(gatotu::Evaluate(*endless, [&](auto const&) { return ++seen < 3; }).IsAnswered());
  EXPECT_EQ(seen, 3);
  ExpectLedgerBalances("endlesses");

  for (char const* text : {"books of shelves", "book 1 of shelf 1", "book of shelf 1",
                           "(it, label of it) of books whose (true) of shelves",
                           "unique values of labels of books of shelves"}) {
    auto const expression = Compiled(text, Purpose::kUse);
    EXPECT_THROW(gatotu::Evaluate(*expression, [](auto const&) -> bool { throw 'x'; }), char)
        << text;
    ExpectLedgerBalances(text);
    EXPECT_EQ(Answer("label of book 1 of shelf 1"), "11") << text;
  }
}

TEST(Callback, MayEvaluateAnother) {
  std::string seen;
  auto const outer = Compiled("labels of books of shelves");
  auto const inner = Compiled("sum of counts 3 + fail 0 | 9");
  auto const endless = Compiled("number of endlesses");
  gatotu::Evaluate(*outer, [&](gatotu::Value const& value) {
    seen += value.Text();
    gatotu::Evaluate(*inner, [&](gatotu::Value const& nested) {
      seen.append("/").append(nested.Text());
      return true;
    });
    EXPECT_TRUE(gatotu::Evaluate(*outer, [](auto const&) { return false; }).IsAnswered());
    EXPECT_EQ(gatotu::Evaluate(*endless, Ignore, {.time_limit = 1ms}).outcome, Outcome::kTimeLimit);
    // The value is valid until this returns.
    seen.append("=").append(value.Text()).append(" ");
    return seen.size() < 20;
  });
  EXPECT_EQ(seen, "11/9=11 21/9=21 22/9=22 ");
  ExpectLedgerBalances("nested");
}

TEST(Values, AreHandedOverAsTheyAre) {
  gatotu::Evaluate(*Compiled("(-5, true, \"a\", weight 3, book 1 of shelf 1)", Purpose::kUse),
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
      auto const expression = Compiled("exclusive and number of counts 5 = 5");
      answered += gatotu::Evaluate(*expression, Ignore).IsAnswered();
    }
  };
  std::thread one(work), other(work);
  one.join();
  other.join();
  EXPECT_EQ(answered, 100);
  ExpectLedgerBalances("exclusive");
}

}  // namespace
