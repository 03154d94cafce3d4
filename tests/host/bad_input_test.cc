
#include <random>

#include "tests/host/child_process.h"

namespace gatotu::tests {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Lt;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

TEST(BadInput, EachHasItsOwnMessageAndEndsSoon) {
  struct {
    char const* name;
    std::string line;
    char const* message;
  } const cases[] = {{"parentheses", Repeat("(", 100'000), "256"},
                     {"long text", Repeat("1 + ", 500'000) + "1", "1 MiB"},
                     {"control bytes", "\x1b[31m", "\\x1b"}};
  for (auto const& each : cases) {
    ProcessResult const run = Gatotu({}, each.line + "\n1\n");
    EXPECT_THAT(run, Ends(2, "1\n",
                          AllOf(StartsWith("error: "), HasSubstr(each.message),
                                Not(HasSubstr("\x1b")), SizeIs(Lt(10'000U)))))
        << each.name;
    EXPECT_LT(run.took, std::chrono::seconds(10)) << each.name;
  }
}

TEST(BadInput, NoLineOfAnyBytesDoesHarm) {
  std::mt19937 random(20);  // NOLINT: the same bytes each time
  std::string input;
  for (int line = 0; line < 500; ++line) {
    for (std::size_t left = random() % 24; left > 0; --left) input += static_cast<char>(random());
    input += '\n';
  }
  ProcessResult const run = Gatotu({"--time-limit", "60s"}, input + "7\n");
  EXPECT_LE(run.status, 2);
  EXPECT_EQ(Lines(run.output).back(), "7");
}

TEST(BadInput, InspectorsThatThrowLeaveTheEvaluatorUsable) {
  for (auto const& [thing, message] :
       {std::pair("unlucky thing", "out of luck"), std::pair("foreign thing", "NamedNothing")}) {
    EXPECT_THAT(Gatotu({"--plug-in", ODD_PLUG_IN, thing, "40 + 2"}),
                Ends(1, "42\n", AllOf(HasSubstr(message), HasSubstr(thing))));
  }
}

}  // namespace
}  // namespace gatotu::tests
