
#include <algorithm>
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

TEST(Command, Answers) {
  std::string const plain = "\"a, \\\"b\\\"\", \"c\\td\\\\\", 1";
  auto const both_mistakes =
      AllOf(HasSubstr("did you mean \"name\"?"), HasSubstr("did you mean \"process\"?"),
            HasSubstr("  nam of procss 1\n  ^~~\n"), HasSubstr("\n         ^~~~~~\n"));
  struct {
    char const* name;
    std::vector<std::string> arguments;
    std::string input;
    Matcher<std::string> output, errors;
    int status;
  } const cases[] = {
      {"Several", {"1", "\"b\""}, "", "1\nb\n", "", 0},
      {"StandardInput", {}, "1\n\n// nothing\n2", "1\n2\n", "", 0},
      {"FileDash", {"--file", "-", "0"}, "1\n", "0\n1\n", "", 0},
      {"AbsentFile", {"--file", "/no/such"}, "", "", HasSubstr("/no/such: No such file"), 2},
      {"FolderAsFile", {"--file", "/"}, "", "", HasSubstr("Is a directory"), 2},
      {"EmptyValue", {"--file", "", "1"}, "", "", HasSubstr("--file: its value"), 2},
      {"NoValue", {"--file=", "1"}, "", "", HasSubstr("--file= lacks its value"), 2},
      {"DashDash", {"--", "-5 + 3"}, "", "-2\n", "", 0},
      {"DashDashEndsCommands", {"--", "vocabulary"}, "", "", StartsWith("error: "), 2},
      {"Help", {"--help"}, "", HasSubstr("--time-limit DURATION"), "", 0},
      {"Version", {"--version"}, "", StartsWith("gatotu "), "", 0},
      {"UnknownOption", {"--nonsense"}, "", "", HasSubstr("unknown option --nonsense"), 2},
      {"NoSuchFormat", {"--format", "xml", "1"}, "", "", HasSubstr("xml"), 2},
      {"NoDuration", {"--time-limit", "soon", "1"}, "", "", HasSubstr("soon"), 2},
      {"BrokenSetting", {"--setting", "x", "1"}, "", "", HasSubstr("SECTION:NAME=VALUE"), 2},
      {"ForeignOption", {"--check", "vocabulary"}, "", "", HasSubstr("--check"), 2},
      {"NoFolder", {"capture"}, "", "", HasSubstr("name the folder"), 2},
      {"TwoFolders", {"capture", "a", "b"}, "", "", HasSubstr("one folder"), 2},
      {"ForeignToCapture", {"capture", "a", "--timing"}, "", "", HasSubstr("--timing"), 2},
      {"OfCaptureOnly", {"1", "--for", "2"}, "", "", HasSubstr("with capture only"), 2},
      {"NoSize", {"capture", "a", "--limit-bytes", "9E"}, "", "", HasSubstr("9E"), 2},
      {"UserOfLive", {"--user", "x", "1"}, "", "", HasSubstr("--user"), 2},
      {"NoPlugIn", {"--plug-in", "/no/such.so", "1"}, "", "", HasSubstr("/no/such.so"), 2},
      {"Check", {"--check", "1 / 0"}, "", "", "", 0},
      {"CheckRefuses", {"--check", "1 +"}, "", "", StartsWith("error: "), 2},
      {"Explain", {"--explain", "1 + 2"}, "", HasSubstr("integer"), "", 0},
      {"Timing", {"--timing", "1"}, "", "1\n", HasSubstr("compiled in "), 0},
      {"TupleText", {plain}, "", "a, \"b\", c\td\\, 1\n", "", 0},
      {"TupleCsv", {"--format", "csv", plain}, "", "\"a, \"\"b\"\"\",c\td\\,1\n", "", 0},
      {"TupleTsv", {"--format", "tsv", plain}, "", "a, \"b\"\tc\\td\\\\\t1\n", "", 0},
      {"MacRoman", {"\"caf\\x8e\""}, "", "caf\xc3\xa9\n", "", 0},
      {"EmptyPlural", {"names of processes whose (false)", "1"}, "", "1\n", "", 0},
      {"Fallback", {"name of process 0 | \"none\""}, "", "none\n", "", 0},
      {"DivisionByZero", {"1 / 0"}, "", "", StartsWith("error: "), 1},
      {"NotUnique", {"name of processes"}, "", "", HasSubstr("not unique"), 1},
      {"NoSuchObject", {"\"x\" as integer"}, "", "", HasSubstr("no such object"), 1},
      {"Refused", {"1 +"}, "", "", StartsWith("error: "), 2},
      {"Empty", {""}, "", "", StartsWith("error: "), 2},
      {"LargestCounts", {"1 / 0", "nonsense", "3"}, "", "3\n", HasSubstr("nonsense"), 2},
      {"BothMistakes", {"nam of procss 1"}, "", "", both_mistakes, 2},
  };
  for (auto const& row : cases) {
    EXPECT_THAT(Gatotu(row.arguments, row.input), Ends(row.status, row.output, row.errors))
        << row.name;
  }
}

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
  // The memory blocks where there are any, else /proc/meminfo.
  EXPECT_TRUE(std::any_of(evidence.begin(), evidence.end(), [](auto const& each) {
    return each["source"].template get<std::string>().find("mem") != std::string::npos &&
           each["outcome"] == "answered";
  })) << evidence;
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
  EXPECT_THAT(With("[Client]\nnonsense\n", {"1"}),
              Ends(2, "",
                   "gatotu: " + folder_.Path("gatotu/settings.ini") +
                       ":2: expected [Section] or name = value\n"));
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

TEST(Vocabulary, TsvHasAHeader) {
  auto const lines = Lines(Gatotu({"vocabulary", "--format", "tsv"}).output);
  ASSERT_GT(lines.size(), 200U);
  EXPECT_EQ(lines[0], "kind\tsingular\tplural\tparameter\tobject\tresult\tfingerprint\tlibrary");
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
  EXPECT_THAT(RunShell("set -o pipefail; " GATOTU_COMMAND " --file <(yes 1) | head -n 1", "bash"),
              Ends(testing::_, "1\n", testing::Not(HasSubstr("roken pipe"))));
}

TEST(Output, AFullDiskIsReported) {
  for (char const* asked : {"1", "vocabulary", "--help"}) {
    EXPECT_THAT(RunShell(GATOTU_COMMAND " " + std::string(asked) + " >/dev/full"),
                Ends(1, "", "gatotu: standard output: No space left on device\n"))
        << asked;
  }
}

TEST(Output, IsReportedAsClosedWhateverElseIsOpened) {
  for (char const* machines : {"", "--machine live --machine live "}) {
    EXPECT_THAT(RunShell("timeout 20 " GATOTU_COMMAND " " + std::string(machines) + "1 <&- >&-"),
                Ends(1, "", "gatotu: standard output: Bad file descriptor\n"))
        << machines;
  }
}

}  // namespace
}  // namespace gatotu::tests
