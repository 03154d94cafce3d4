
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "tests/host/child_process.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Matcher;
using testing::StartsWith;

struct Case {
  std::string name;
  std::vector<std::string> arguments;
  std::string input;
  Matcher<std::string> output, errors;
  int status;
};

std::ostream& operator<<(std::ostream& out, Case const& each) { return out << each.name; }

class Command : public testing::TestWithParam<Case> {};

TEST_P(Command, Answers) {
  Case const& expected = GetParam();
  ProcessResult const run = Gatotu(expected.arguments, expected.input);
  EXPECT_THAT(run.output, expected.output);
  EXPECT_THAT(run.errors, expected.errors);
  EXPECT_EQ(run.status, expected.status);
}

std::string const kPlain = "\"a, \\\"b\\\"\", \"c\\td\\\\\", 1";

INSTANTIATE_TEST_SUITE_P(
    All, Command,
    testing::Values(
        Case{"Several", {"1", "\"b\""}, "", "1\nb\n", "", 0},
        Case{"StandardInput", {}, "1\n\n// nothing\n2", "1\n2\n", "", 0},
        Case{"FileDash", {"--file", "-", "0"}, "1\n", "0\n1\n", "", 0},
        Case{"AbsentFile", {"--file", "/no/such"}, "", "", HasSubstr("/no/such: No such file"), 2},
        Case{"FolderAsFile", {"--file", "/"}, "", "", HasSubstr("Is a directory"), 2},
        Case{"EmptyValue", {"--file", "", "1"}, "", "", HasSubstr("--file: its value"), 2},
        Case{"NoValue", {"--file=", "1"}, "", "", HasSubstr("--file= lacks its value"), 2},
        Case{"DashDash", {"--", "-5 + 3"}, "", "-2\n", "", 0},
        Case{"DashDashEndsCommands", {"--", "vocabulary"}, "", "", StartsWith("error: "), 2},
        Case{"Help", {"--help"}, "", HasSubstr("--time-limit DURATION"), "", 0},
        Case{"Version", {"--version"}, "", StartsWith("gatotu "), "", 0},
        Case{"UnknownOption", {"--nonsense"}, "", "", HasSubstr("unknown option --nonsense"), 2},
        Case{"NoSuchFormat", {"--format", "xml", "1"}, "", "", HasSubstr("xml"), 2},
        Case{"NoDuration", {"--time-limit", "soon", "1"}, "", "", HasSubstr("soon"), 2},
        Case{"BrokenSetting", {"--setting", "x", "1"}, "", "", HasSubstr("SECTION:NAME=VALUE"), 2},
        Case{"ForeignOption", {"--check", "vocabulary"}, "", "", HasSubstr("--check"), 2},
        Case{"NoFolder", {"capture"}, "", "", HasSubstr("name the folder"), 2},
        Case{"TwoFolders", {"capture", "a", "b"}, "", "", HasSubstr("one folder"), 2},
        Case{"ForeignToCapture", {"capture", "a", "--timing"}, "", "", HasSubstr("--timing"), 2},
        Case{"OfCaptureOnly", {"1", "--for", "2"}, "", "", HasSubstr("with capture only"), 2},
        Case{"NoSize", {"capture", "a", "--limit-bytes", "9E"}, "", "", HasSubstr("9E"), 2},
        Case{"UserOfLive", {"--user", "x", "1"}, "", "", HasSubstr("--user"), 2},
        Case{"NoPlugIn", {"--plug-in", "/no/such.so", "1"}, "", "", HasSubstr("/no/such.so"), 2},
        Case{"Check", {"--check", "1 / 0"}, "", "", "", 0},
        Case{"CheckRefuses", {"--check", "1 +"}, "", "", StartsWith("error: "), 2},
        Case{"Explain", {"--explain", "1 + 2"}, "", HasSubstr("integer"), "", 0},
        Case{"Timing", {"--timing", "1"}, "", "1\n", HasSubstr("compiled in "), 0},
        Case{"TupleText", {kPlain}, "", "a, \"b\", c\td\\, 1\n", "", 0},
        Case{"TupleCsv", {"--format", "csv", kPlain}, "", "\"a, \"\"b\"\"\",c\td\\,1\n", "", 0},
        Case{"TupleTsv", {"--format", "tsv", kPlain}, "", "a, \"b\"\tc\\td\\\\\t1\n", "", 0},
        Case{"MacRoman", {"\"caf\\x8e\""}, "", "caf\xc3\xa9\n", "", 0},
        Case{"EmptyPlural", {"names of processes whose (false)", "1"}, "", "1\n", "", 0},
        Case{"Fallback", {"name of process 0 | \"none\""}, "", "none\n", "", 0},
        Case{"DivisionByZero", {"1 / 0"}, "", "", StartsWith("error: "), 1},
        Case{"NotUnique", {"name of processes"}, "", "", HasSubstr("not unique"), 1},
        Case{"NoSuchObject", {"\"x\" as integer"}, "", "", HasSubstr("no such object"), 1},
        Case{"Refused", {"1 +"}, "", "", StartsWith("error: "), 2},
        Case{"Empty", {""}, "", "", StartsWith("error: "), 2},
        Case{"LargestCounts", {"1 / 0", "nonsense", "3"}, "", "3\n", HasSubstr("nonsense"), 2},
        Case{"BothMistakes",
             {"nam of procss 1"},
             "",
             "",
             AllOf(HasSubstr("did you mean \"name\"?"), HasSubstr("did you mean \"process\"?"),
                   HasSubstr("  nam of procss 1\n  ^~~\n"), HasSubstr("\n         ^~~~~~\n")),
             2}),
    [](auto const& info) { return info.param.name; });

nlohmann::json Json(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"--format", "json"});
  ProcessResult const run = Gatotu(arguments);
  EXPECT_EQ(run.errors, "");
  EXPECT_THAT(Lines(run.output), testing::SizeIs(1));
  return nlohmann::json::parse(run.output);
}

TEST(JsonAnswer, HasTypeAndValues) {
  auto const answer = Json({"1, true, \"\\xff\\x00\" ; -9223372036854775808, false, \"\""});
  EXPECT_EQ(answer["type"], "(integer, boolean, string)");
  EXPECT_EQ(
      answer["values"],
      nlohmann::json::parse(R"([[1, true, "\u02c7\u0000"], [-9223372036854775808, false, ""]])"));
  EXPECT_TRUE(answer["microseconds"].is_number_integer());
  EXPECT_FALSE(answer.contains("error") || answer.contains("evidence"));
}

TEST(JsonAnswer, HasTheErrorWithItsPlace) {
  auto const answer = Json({"nam of procss 1"});
  auto const& error = answer["error"];
  EXPECT_EQ(nlohmann::json({error["line"], error["column"], error["length"]}),
            nlohmann::json({1, 1, 3}));
  EXPECT_EQ(error["suggestion"], "name");
  EXPECT_FALSE(error["code"].get<std::string>().empty());
  EXPECT_EQ(answer["errors"][1]["column"], 8);
  EXPECT_FALSE(answer.contains("values"));
  // An expression that is no text makes valid JSON all the same.
  EXPECT_EQ(Json({"\xff"})["expression"], "\xcb\x87");
}

TEST(JsonAnswer, HasTheEvidence) {
  auto const evidence = Json({"--evidence", "physical ram"})["evidence"];
  ASSERT_FALSE(evidence.empty());
  bool is_memory_named = false;
  for (auto const& each : evidence) {
    // The memory blocks where there are any, else /proc/meminfo.
    is_memory_named |= each["source"].get<std::string>().find("mem") != std::string::npos &&
                       each["outcome"] == "answered";
  }
  EXPECT_TRUE(is_memory_named) << evidence;
}

TEST(Evidence, StandsBesideTheAnswer) {
  ProcessResult const run = Gatotu({"--evidence", "name of process 1"});
  EXPECT_THAT(Lines(run.output), testing::SizeIs(1));
  EXPECT_THAT(run.errors, AllOf(StartsWith("evidence:\n"), HasSubstr("/proc/1/")));
}

class SettingsFile : public testing::Test {
 protected:
  ProcessResult With(std::string const& content, std::vector<std::string> arguments) {
    folder_.Write("gatotu/settings.ini", content);
    return RunCommand(
        {.arguments = std::move(arguments), .environment = {"XDG_CONFIG_HOME=" + folder_.Path()}});
  }

  TemporaryFolder folder_;
};

TEST_F(SettingsFile, ABrokenOneIsOneMessageWithFileAndLine) {
  ProcessResult const run = With("[Client]\nnonsense\n", {"1"});
  EXPECT_EQ(run.errors, "gatotu: " + folder_.Path() +
                            "/gatotu/settings.ini:2: expected [Section] or name = value\n");
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(With("[Client]\nx=1\n", {"1"}).output, "1\n");
}

// Strings of the system come in the report encoding: UTF-16 begins with a byte-order mark.
TEST_F(SettingsFile, SetsTheReportEncodingAndTheCommandLineWins) {
  std::string const item = "_KPXClient_DeploymentEncoding_IANAName";
  std::string const length = "length of name of computer";
  int const plain = std::atoi(With("", {length}).output.c_str());
  EXPECT_GT(plain, 0);
  std::string const utf16 = "[Client]\n" + item + "=UTF-16\n";
  EXPECT_EQ(std::atoi(With(utf16, {length}).output.c_str()), 2 * plain + 2);
  EXPECT_EQ(With(utf16, {"--setting", "Client:" + item + "=utf-8", length}).output,
            std::to_string(plain) + "\n");
}

TEST(Vocabulary, TsvHasAHeaderAndEightColumns) {
  auto const lines = Lines(Gatotu({"vocabulary", "--format", "tsv"}).output);
  ASSERT_GT(lines.size(), 200U);
  EXPECT_EQ(lines[0], "kind\tsingular\tplural\tparameter\tobject\tresult\tfingerprint\tlibrary");
  for (std::string const& line : lines) {
    EXPECT_EQ(std::count(line.begin(), line.end(), '\t'), 7) << line;
  }
  EXPECT_THAT(lines, testing::Contains("property\tname\tnames\t\tprocess\tstring\t\tgatotu"));
}

TEST(Vocabulary, SelectsByWordsAndType) {
  EXPECT_THAT(Lines(Gatotu({"vocabulary", "Processors"}).output),
              testing::Each(HasSubstr("processor")));
  auto const of_process = Lines(Gatotu({"vocabulary", "--type", "process"}).output);
  EXPECT_THAT(of_process, testing::Contains(HasSubstr("pid")));
  EXPECT_THAT(of_process, testing::Each(HasSubstr("process")));
  for (auto const& line : Lines(Gatotu({"vocabulary", "--format", "json", "pid"}).output)) {
    EXPECT_EQ(nlohmann::json::parse(line)["library"], "gatotu");
  }
  EXPECT_EQ(Gatotu({"vocabulary", "no such words"}).output, "");
}

TEST(Output, ABrokenPipeEndsQuietly) {
  ProcessResult const run =
      RunShell("set -o pipefail; " GATOTU_COMMAND " --file <(yes 1) | head -n 1", "bash");
  EXPECT_EQ(run.errors.find("roken pipe"), std::string::npos) << run.errors;
  EXPECT_THAT(Lines(run.output), testing::SizeIs(1));
}

TEST(Output, AFullDiskIsReported) {
  for (char const* asked : {"1", "vocabulary", "--help"}) {
    ProcessResult const run = RunShell(GATOTU_COMMAND " " + std::string(asked) + " >/dev/full");
    EXPECT_EQ(run.errors, "gatotu: standard output: No space left on device\n") << asked;
    EXPECT_EQ(run.status, 1) << asked;
  }
}

TEST(Output, IsReportedAsClosedWhateverElseIsOpened) {
  for (char const* machines : {"", "--machine live --machine live "}) {
    ProcessResult const run =
        RunShell("timeout 20 " GATOTU_COMMAND " " + std::string(machines) + "1 <&- >&-");
    EXPECT_EQ(run.errors, "gatotu: standard output: Bad file descriptor\n") << machines;
    EXPECT_EQ(run.status, 1) << machines;
  }
}

}  // namespace
}  // namespace gatotu::tests
