#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <thread>

#include "host/time_limit.h"
#include "tests/host/child_process.h"

namespace gatotu::tests {
namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;

constexpr milliseconds kPatience{10'000};
constexpr char kLongScan[] = "number of integers below 1000000000000000";

Launch Odd(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"--plug-in", ODD_PLUG_IN});
  return {.arguments = std::move(arguments)};
}

TEST(Evaluation, ThatRunsOrHangsIsEndedByItsTimeLimitAndByAnInterrupt) {
  for (char const* expression : {"sleeping thing", kLongScan}) {
    ProcessResult const run = RunCommand(Odd({"--time-limit", "200ms", "1", expression, "2"}));
    EXPECT_THAT(run, Ends(3, testing::StartsWith("1\n"), HasSubstr("time limit"))) << expression;
    Launch launch = Odd({"--time-limit", "0", expression});
    launch.interrupt_after = milliseconds(500);
    ProcessResult const interrupted = RunCommand(launch);
    EXPECT_THAT(interrupted, Ends(3, "", HasSubstr("interrupted"))) << expression;
    EXPECT_LT(std::max(run.took, interrupted.took), kPatience);
  }
}

// A capture has one after the other, and all have the same thread.
TEST(TimeLimit, HoldsForEachWatchdogOfAProcess) {
  for (milliseconds const limit : {milliseconds(3'600'000), milliseconds(10)}) {
    host::Watchdog watchdog(limit, [] { ::_exit(1); });
    watchdog.Begin();
    auto const end = std::chrono::steady_clock::now() + kPatience;
    bool const is_short = limit < kPatience;
    while (is_short && !watchdog.HasAskedToStop() && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(milliseconds(1));
    }
    watchdog.End();
    EXPECT_EQ(watchdog.IsExpired(), is_short);
  }
}

TEST(TimeLimit, LeavesValidJsonBehind) {
  ProcessResult const run =
      RunCommand(Odd({"--time-limit", "200ms", "--format", "json", "1;2;sleeping thing"}));
  EXPECT_EQ(run.status, 3);
  auto const answer = nlohmann::json::parse(run.output);
  EXPECT_EQ(answer["values"], nlohmann::json::parse("[1, 2]"));
  EXPECT_EQ(answer["error"]["code"], "time-limit");
}

// `script` gives the command a terminal.
TEST(Prompt, EndsTheExpressionOnly) {
  int const terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
  if (terminal < 0) GTEST_SKIP() << "no terminals on this machine";
  ::close(terminal);
  Launch const launch = {.arguments = {"-qec", GATOTU_COMMAND " --time-limit 100ms", "/dev/null"},
                         .input = std::string(kLongScan) + "\n40 + 2\n\x04",
                         .program = "script"};
  EXPECT_THAT(RunCommand(launch).output,
              testing::AllOf(HasSubstr("time limit"), HasSubstr("42\r\n")));
}

}  // namespace
}  // namespace gatotu::tests
