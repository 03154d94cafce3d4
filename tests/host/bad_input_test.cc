
#include <random>

#include "tests/host/child_process.h"

namespace gatotu::tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string Repeat(std::string_view text, std::size_t times) {
  std::string result;
  for (std::size_t i = 0; i < times; ++i) result += text;
  return result;
}

TEST(BadInput, EachHasItsOwnMessageAndEndsSoon) {
  struct Case {
    char const* name;
    std::string line;
    char const* message;
  };
  for (Case const& each : {
           Case{"parentheses", Repeat("(", 100'000), "256"},
           Case{"long text", Repeat("1 + ", 500'000) + "1", "1 MiB"},
           Case{"control bytes", "\x1b[31m", "\\x1b"},
       }) {
    ProcessResult const run = Gatotu({}, each.line + "\n1\n");
    EXPECT_EQ(run.status, 2) << each.name;
    EXPECT_THAT(run.errors, StartsWith("error: ")) << each.name;
    EXPECT_THAT(run.errors, HasSubstr(each.message)) << each.name;
    EXPECT_EQ(run.errors.find('\x1b'), std::string::npos);
    EXPECT_LT(run.errors.size(), 10'000U) << each.name;
    EXPECT_EQ(run.output, "1\n") << each.name;
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
    ProcessResult const run = Gatotu({"--plug-in", ODD_PLUG_IN, thing, "40 + 2"});
    EXPECT_THAT(run.errors, HasSubstr(message));
    EXPECT_THAT(run.errors, HasSubstr(thing));
    EXPECT_EQ(run.output, "42\n");
    EXPECT_EQ(run.status, 1) << thing;
  }
}

}  // namespace
}  // namespace gatotu::tests
