// What the command says about the machine at hand, against what other programs say.
#include <unistd.h>

#include <set>

#include "tests/host/child_process.h"

namespace gatotu::tests {
namespace {

std::string Answer(std::string const& expression) {
  ProcessResult const run = Gatotu({expression});
  EXPECT_THAT(run, Ends(0, testing::_, "")) << expression;
  return run.output;
}

std::string Shell(std::string const& command) {
  ProcessResult const run = RunShell(command);
  EXPECT_EQ(run.status, 0) << command << '\n' << run.errors;
  return run.output;
}

TEST(LiveMachine, AgreesWithOtherPrograms) {
  EXPECT_EQ(Answer("hostname"), Shell("hostname"));
  EXPECT_EQ(Answer("number of processors"), Shell("getconf _NPROCESSORS_ONLN"));
  EXPECT_EQ(Answer("name of process 1"), Shell("ps -o comm= -p 1"));
  std::string const self = std::to_string(::getpid());
  EXPECT_EQ(Answer("name of process " + self), Shell("ps -o comm= -p " + self));
  EXPECT_EQ(Answer("exists processes whose (pid of it = " + self + ")"), "true\n");
  EXPECT_EQ(Answer("(name of it, id of it, primary group id of it) of users"),
            Shell("getent passwd | awk -F: '{ print $1 \", \" $3 \", \" $4 }'"));
}

TEST(LiveMachine, MemoryIsAboutWhatTheKernelReports) {
  long long const bytes = std::stoll(Answer("physical ram"));
  long long const kernel =
      std::stoll(Shell("awk '/^MemTotal:/ { print $2 * 1024 }' OFMT=%.0f /proc/meminfo"));
  EXPECT_GE(bytes, kernel);
  // What firmware and kernel take for themselves.
  EXPECT_LT(bytes, kernel + kernel / 4 + (1LL << 28));
  EXPECT_EQ(Answer("gestalt \"ramm\" * 1048576 = physical ram"), "true\n");
}

// Processes come and go while both look, so only those that stay are compared. Names have 16
// bytes here, those of the kernel's threads have more, and its workers take another with each task.
TEST(LiveMachine, ProcessesAreThoseOfPs) {
  auto const listing = [] {
    auto const lines = Lines(
        Shell("ps -e -o pid=,comm= | awk '{ print $1 \", \" substr($0, index($0, $2), 16) }'"));
    return std::set<std::string>(lines.begin(), lines.end());
  };
  auto const answers = [](std::string const& filter) {
    auto const lines = Lines(Answer("(pid of it, name of it) of processes" + filter));
    return std::set<std::string>(lines.begin(), lines.end());
  };
  auto const before = listing();
  auto const asked = answers("");
  auto const with_sh = answers(" whose (name of it contains \"sh\")");
  auto const after = listing();
  EXPECT_GT(asked.size(), 1U);
  for (std::string const& line : before) {
    if (!after.contains(line) || line.find("kworker") != std::string::npos) continue;
    EXPECT_TRUE(asked.contains(line)) << line;
    EXPECT_EQ(with_sh.contains(line), line.find("sh") != std::string::npos) << line;
  }
}

}  // namespace
}  // namespace gatotu::tests
