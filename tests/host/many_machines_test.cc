// Several machines asked with one command.

#include <chrono>
#include <nlohmann/json.hpp>
#include <thread>

#include "host/kept_output.h"
#include "tests/host/child_process.h"
#include "tests/support/sanitized.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

// Never ends on a machine of the name "slow".
constexpr char kSlowOnOne[] =
    "if (hostname = \"slow\") then (number of integers below 1000000000000000) else 7";

class ManyMachines : public testing::Test {
 protected:
  void Make(std::string const& folder, std::string const& name) const {
    folder_.Write(folder + "/machine.plist",
                  "<plist><dict><key>HostName</key><string>" + name + "</string></dict></plist>");
  }
  void Make(std::string const& name) const { Make(name, name); }
  // "@" is the folder.
  std::string Resolve(std::string text) const {
    for (std::size_t at = 0; (at = text.find('@', at)) != std::string::npos;) {
      text.replace(at, 1, folder_.Path() + "/");
    }
    return text;
  }
  ProcessResult Ask(std::vector<std::string> arguments, std::string const& input = {},
                    std::chrono::milliseconds interrupt_after = {}) const {
    for (std::string& argument : arguments) argument = Resolve(argument);
    return RunCommand(
        {.arguments = arguments, .input = Resolve(input), .interrupt_after = interrupt_after});
  }
  ProcessResult AskInShell(std::string const& line) const {
    return RunShell("g=" GATOTU_COMMAND "; " + Resolve(line), "bash");
  }
  // Processes that name the folder, workers that were left behind, when those that were killed have
  // had the time to end.
  std::string Left() const {
    std::string left;
    for (int i = 0; i < 100; ++i) {
      left = RunCommand({.arguments = {"-fa", folder_.Path()}, .program = "pgrep"}).output;
      if (left.empty()) break;
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return left;
  }

  TemporaryFolder folder_;
};

TEST_F(ManyMachines, AnswersAreLabelledInEveryFormat) {
  struct {
    std::vector<std::string> arguments;
    char const* output;
  } const rows[] = {
      {{"hostname"}, "@a: a\n@b: b\n"},
      {{"\"p\\nq\""}, "@a: p\n@a: q\n@b: p\n@b: q\n"},
      {{"1", "hostname"}, "@a: 1: 1\n@a: hostname: a\n@b: 1: 1\n@b: hostname: b\n"},
      {{"--format", "csv", "(hostname, \"x\\ny\")"}, "@a,a,\"x\ny\"\n@b,b,\"x\ny\"\n"},
      {{"--format", "tsv", "hostname", "\"\\t\""},
       "@a\thostname\ta\n@a\t\"\\\\t\"\t\\t\n@b\thostname\tb\n@b\t\"\\\\t\"\t\\t\n"},
  };
  for (char const* name : {"a", "b"}) Make(name);
  for (auto const& row : rows) {
    std::vector<std::string> arguments = {"--machine", "@a", "--machine", "@b"};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    EXPECT_EQ(Ask(arguments).output, Resolve(row.output));
  }
}

TEST_F(ManyMachines, JsonNamesTheMachineAndWhatIsWrongWithIt) {
  Make("a");
  folder_.Write("expressions", "hostname\n1 / 0\nnonsense");
  ProcessResult const run =
      Ask({"--format", "json", "--machines", "-", "--file", "@expressions"}, "@a\n@none");
  EXPECT_EQ(run.status, 4);
  std::vector<nlohmann::json> answers;
  for (auto const& line : Lines(run.output)) answers.push_back(nlohmann::json::parse(line));
  ASSERT_THAT(answers, SizeIs(4));
  // What is no expression is none on all of them.
  EXPECT_EQ(answers[0]["expression"], "nonsense");
  EXPECT_FALSE(answers[0].contains("machine"));
  EXPECT_EQ(answers[1]["machine"], folder_.Path("a"));
  EXPECT_EQ(answers[1]["values"][0], "a");
  EXPECT_EQ(answers[2]["error"]["code"], "inspector-failed");
  EXPECT_EQ(answers[3]["machine"], folder_.Path("none"));
  EXPECT_EQ(answers[3]["error"]["code"], "unusable-machine");
}

TEST_F(ManyMachines, AnswersStayInOrderAndADamagedOneDisturbsNoOther) {
  // More than may wait for the first one, which takes its time.
  std::string list, answers;
  for (int i = 0; i < 200; ++i) {
    std::string const name = std::to_string(i);
    Make(name);
    if (i % 70 == 3) folder_.Write(name + "/machine.plist", "<plist><dict>");
    if (i % 70 != 3) answers += "@" + name + (i == 0 ? ": 4000000\n" : ": 7\n");
    list += "@" + name + "\n";
  }
  std::string const expression =
      "if (hostname = \"0\") then (number of integers below 4000000) else 7";
  ProcessResult const run = Ask({"--machines", "-", "--jobs", "5", expression}, list);
  EXPECT_THAT(run, Ends(4, Resolve(answers), StartsWith(Resolve("gatotu: @3/machine.plist: "))));
  EXPECT_THAT(Lines(run.errors), SizeIs(3));
}

TEST_F(ManyMachines, AListMayHoldAnyNames) {
  for (char const* name : {"two words", " first", "#x", "last"}) Make(name);
  Make("caf\x8e", "cafe");
  folder_.Write("list", Resolve("# none\n\n \t\n@two words\n@ first\n@caf\x8e\n@#x\n@zero") +
                            std::string(1, '\0') + Resolve("x\n") + std::string(100'000, 'x') +
                            Resolve("\n@last"));
  ProcessResult const run = Ask({"--machines", "@list", "hostname"});
  EXPECT_THAT(run, Ends(4, Resolve("@two words: two words\n@ first:  first\n@caf\x8e: cafe\n"
                                   "@#x: #x\n@last: last\n")));
  EXPECT_THAT(Lines(run.errors), SizeIs(2));
  // A folder of a list is never the machine at hand.
  EXPECT_THAT(Ask({"--machines", "-", "1"}, "live").errors, HasSubstr("./live: No such file"));
}

TEST_F(ManyMachines, WhatMakesNoSenseIsRefused) {
  Make("a");
  struct {
    std::vector<std::string> arguments;
    int status;
    char const* message;
  } const rows[] = {
      {{"--machines", "/dev/null", "1"}, 0, ""},
      {{"--machines", "@none", "1"}, 2, "none: No such file"},
      {{"--machines", "/", "1"}, 2, "Is a directory"},
      {{"--machines", "-"}, 2, "either machines or expressions"},
      {{"--machines", "@list", "--jobs", "0", "1"}, 2, "--jobs: 0"},
      {{"--machines", "@list", "--jobs", "129", "1"}, 2, "--jobs: 129"},
      {{"--machines", "@list", "--jobs", "2x", "1"}, 2, "--jobs: 2x"},
      {{"--machine", "@a", "--jobs", "2", "1"}, 2, "several machines only"},
      {{"--machine", "@a", "--machine", "@a", "capture", "@new"}, 2, "one --machine"},
      {{"--machines", "@list", "vocabulary"}, 2, "--machines does not go with vocabulary"},
      {{"--machines", "@list", "--check", "1"}, 2, "--check"},
      {{"--machine", "live", "--machine", "@a", "--user", "x", "1"}, 2, "--user"},
      {{"--machine", "@a", "--machine", "@a", "nam of procss"}, 2, "error: "},
  };
  for (auto const& row : rows) {
    EXPECT_THAT(Ask(row.arguments), Ends(row.status, "", HasSubstr(row.message)));
  }
}

TEST_F(ManyMachines, AWorkerThatIsKilledCostsItsMachineOnly) {
  for (char const* name : {"a", "slow", "c"}) Make(name);
  // By then the one before it has ended.
  ProcessResult const run =
      AskInShell("$g --time-limit 0 --jobs 1 --machine @a --machine @slow --machine @c '" +
                 std::string(kSlowOnOne) +
                 "' >@out & until [ -s @out ]; do sleep 0.05; done; sleep 0.5; "
                 "kill -9 $(ps -o pid= --ppid $!); wait $!");
  EXPECT_EQ(folder_.Read("out"), Resolve("@a: 7\n@c: 7\n"));
  EXPECT_THAT(run, Ends(4, "",
                        Resolve("gatotu: @slow: the process that asked it ended by signal 9 "
                                "(Killed)\n")));
}

TEST_F(ManyMachines, ATimeLimitCostsItsMachineOnly) {
  for (char const* name : {"a", "slow", "c"}) Make(name);
  EXPECT_THAT(
      Ask({"--time-limit", "200ms", "--machines", "-", kSlowOnOne}, "@a\n@slow\n@c\n"),
      Ends(3, Resolve("@a: 7\n@c: 7\n"), StartsWith(Resolve("@slow: error: the time limit"))));
}

TEST_F(ManyMachines, NothingOutlivesTheCommand) {
  Make("slow");
  std::string const list = "@slow\n@slow\n@slow\n";
  ProcessResult const run = Ask(
      {"--time-limit", "0", "--format", "json", "--jobs", "3", "--machines", "-", "--", kSlowOnOne},
      list, std::chrono::milliseconds(kIsSanitized ? 4000 : 700));
  EXPECT_THAT(run, Ends(3, testing::_, "gatotu: interrupted\n"));
  EXPECT_EQ(nlohmann::json::parse(run.output)["error"]["code"], "interrupted");
  EXPECT_THAT(Left(), IsEmpty());

  std::string const two = "$g --time-limit 0 --machine @slow --machine @slow ";
  std::string const slow = two + "'" + kSlowOnOne + "' ";
  for (std::string const& line : {two + "'integers below 1000000000000000' | head -n 1",
                                  slow + "| sleep 0.5", slow + "& sleep 0.5; kill -9 $!"}) {
    AskInShell(line);
    EXPECT_THAT(Left(), IsEmpty()) << line;
  }
}

TEST_F(ManyMachines, MemoryGrowsNeitherWithTheirNumberNorWithTheirAnswers) {
  if (kIsSanitized) GTEST_SKIP() << "what is freed is not used again";
  Make("a");
  ProcessResult const few = Ask({"--machines", "-", "hostname"}, "@a\n@a\n");
  ProcessResult const many = Ask({"--machines", "-", "hostname"}, Repeat("@a\n", 1500));
  EXPECT_THAT(Lines(many.output), SizeIs(1500));
  EXPECT_LT(many.most_memory, few.most_memory + 1'000'000);

  // Some 30 MB each, the second in waiting.
  ProcessResult const wide =
      Ask({"--machine", "@a", "--machine", "@a", "--jobs", "2", "--", "integers below 1000000"});
  EXPECT_EQ(wide.output.size(), 2 * (1'000'000 * (folder_.Path("a").size() + 3) + 5'888'890));
  EXPECT_LT(wide.most_memory, few.most_memory + 8'000'000);
}

// A file that grows beyond 1 MiB ends the command.
TEST_F(ManyMachines, MessagesThatNobodyReadsAreNotKept) {
  for (char const* name : {"a", "b"}) Make(name);
  folder_.Write("expressions", "1\n" + Repeat("1 / 0\n", 40'000) + "2\n");
  AskInShell(
      "(ulimit -f 1024; $g --jobs 2 --machine @a --machine @b --file @expressions; "
      "echo $? >@status) 2>&1 >@out | true");
  EXPECT_EQ(folder_.Read("out"), Resolve("@a: 1: 1\n@a: 2: 2\n@b: 1: 1\n@b: 2: 2\n"));
  EXPECT_EQ(folder_.Read("status"), "1\n");
}

TEST(KeptOutput, GivesOutWholeRecordsOnly) {
  host::KeptOutput kept(host::KeptOutput::Records::kCsv);
  std::string all, taken;
  auto const take = [&] {
    for (std::string bytes; kept.HasRecords();) {
      ASSERT_TRUE(kept.Take(bytes));
      taken += bytes;
    }
  };
  // Beyond what is kept in memory, and back.
  for (int i = 0; i < 50'000; ++i) {
    std::string const record = std::to_string(i) + ",\"a\nb\"\n";
    ASSERT_TRUE(kept.Append(record.substr(0, record.size() / 2)));
    if (i % 20'000 == 19'999) take();
    ASSERT_TRUE(kept.Append(record.substr(record.size() / 2)));
    all += record;
  }
  ASSERT_TRUE(kept.Append("1,\"x\ny"));
  kept.DropRest();
  take();
  EXPECT_TRUE(taken == all);
  EXPECT_EQ(kept.Waiting(), 0U);
}

}  // namespace
}  // namespace gatotu::tests
