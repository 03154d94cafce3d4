// Captures made and asked with the command.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/host/child_process.h"
#include "tests/machine/apple_double_text.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

namespace fs = std::filesystem;
using testing::_;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr char kLongScan[] = "number of integers below 1000000000000000";

std::vector<std::string> Joined(std::vector<std::string> first,
                                std::vector<std::string> const& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

void MakeCapture(std::string const& folder, std::vector<std::string> const& expressions,
                 std::string const& machine = "live") {
  EXPECT_THAT(Gatotu(Joined({"--machine", machine, "capture", folder, "--for"}, expressions)),
              Ends(0, HasSubstr(folder), ""));
}

// What was answered, with errors and their reasons but without the time it took.
nlohmann::json Answer(std::string const& machine, std::string const& expression) {
  ProcessResult const run = Gatotu({"--machine", machine, "--format", "json", "--", expression});
  EXPECT_EQ(run.errors, "") << expression;
  auto answer = nlohmann::json::parse(run.output, nullptr, false);
  EXPECT_TRUE(answer.is_object()) << expression << run.output;
  answer.erase("microseconds");
  return answer;
}

// What changes by itself is compared between two captures, the second made of the first.
TEST(Capture, AnswersTheShowcaseAsTheMachineDid) {
  auto const expressions =
      Lines(RunShell("sed '1,/<<.EXPRESSIONS/d; /^EXPRESSIONS/,$d' " SHOWCASE).output);
  EXPECT_GT(expressions.size(), 10U);
  TemporaryFolder const folder;
  std::string const first = folder.Path("first");
  std::string const second = folder.Path("second");
  MakeCapture(first, expressions);
  MakeCapture(second, expressions, first);
  for (std::string const& expression : expressions) {
    auto const answer = Answer(first, expression);
    EXPECT_EQ(answer, Answer(second, expression));
    if (expression.find("now") != std::string::npos) continue;
    if (expression.find("processes") != std::string::npos) continue;
    EXPECT_EQ(answer, Answer("live", expression));
  }
  EXPECT_EQ(Answer(first, "exists processes whose (name of it = name of process 1)")["values"][0],
            true);
}

class FileCapture : public testing::Test {
 protected:
  FileCapture() {
    folder_.Write("tree/text", "first\nsecond\n");
    folder_.Write("tree/list.plist",
                  "<plist><dict><key>a</key><integer>1</integer></dict></plist>");
    folder_.Write(
        "tree/._text",
        AppleDoubleText({{9, "TEXTttxt\x48" + std::string(23, '\0')}}));  // invisible stationery
    folder_.Write("tree/inner/deep", "deep");
    folder_.Link("tree/link", "text");
    folder_.Link("tree/broken", "nowhere");
    ::chmod(At("inner/deep").c_str(), 0440);
  }

  std::string At(std::string const& name) const { return folder_.Path("tree/" + name); }
  std::string Of(std::string const& what, std::string const& kind, std::string const& name) const {
    return what + " of " + kind + " \"" + At(name) + "\"";
  }
  std::vector<std::string> Expressions() const {
    return {Of("lines", "file", "text"),
            Of("sha1", "file", "text"),
            Of("(size of it, modification time of it, mode of it)", "file", "inner/deep"),
            Of("(visible of it, stationery of it)", "file", "text"),
            Of("names of files", "folder", "."),
            Of("(name of it, mode of it) of descendants", "folder", ""),
            Of("lines", "file", "link"),
            Of("size", "file", "broken"),
            Of("lines", "file", "missing"),
            "exists folder \"" + At("text") + "\"",
            Of("dictionary", "file", "list.plist")};
  }

  TemporaryFolder folder_;
};

TEST_F(FileCapture, HoldsTheFilesThatWereTouched) {
  std::string const capture = folder_.Path("capture");
  std::vector<nlohmann::json> live;
  for (std::string const& expression : Expressions()) live.push_back(Answer("live", expression));
  MakeCapture(capture, Expressions());
  fs::rename(capture, folder_.Path("moved"));
  fs::remove_all(folder_.Path("tree"));
  for (auto const& answer : live) {
    EXPECT_EQ(Answer(folder_.Path("moved"), answer["expression"]), answer);
  }
}

TEST_F(FileCapture, LeavesOutWhatIsOverTheLimit) {
  std::string const capture = folder_.Path("capture");
  std::string const small = Of("line 1", "file", "text");
  std::string const big = Of("line 1", "file", "big");
  folder_.Write("tree/big", std::string(100'000, '\n'));
  EXPECT_THAT(Gatotu({"capture", capture, "--limit-bytes", "4K", "--for", big, small}),
              Ends(0, AllOf(HasSubstr("left out, over the limit of bytes: " + At("big")),
                            Not(HasSubstr(At("text"))))));
  EXPECT_THAT(Answer(capture, big)["error"]["reasons"].dump(),
              HasSubstr(At("big") + " (not recorded"));
  EXPECT_EQ(Answer(capture, small)["values"][0], "first");
  // What was not asked is not none.
  for (char const* what : {"number of files", "number of descendants"}) {
    EXPECT_THAT(Answer(capture, Of(what, "folder", ""))["error"]["reasons"].dump(),
                HasSubstr("(not recorded)"));
  }
}

TEST_F(FileCapture, KeepsOfApplicationsWhatWasReadOfThem) {
  std::string const header =
      std::string("\xFE\xED\xFA\xCE\0\0\0\x12\0\0\0\0\0\0\0\2", 16) + std::string(12, '\0');
  std::string const universal("\xCA\xFE\xBA\xBE\0\0\0\1\0\0\0\x12\0\0\0\0\0\0\x20\0", 20);
  folder_.Write("tree/program", header + std::string(100'000, '\0'));
  folder_.Write("tree/universal",
                universal + std::string(8172, '\0') + header + std::string(100'000, '\0'));
  folder_.Link("tree/inner/program", "../program");
  std::string const capture = folder_.Path("capture");
  std::string const names = Of("pathnames of applications", "folder", "");
  auto const live = Answer("live", names);
  EXPECT_EQ(live["values"].size(), 3U) << live;
  EXPECT_THAT(Gatotu({"capture", capture, "--limit-bytes", "4K", "--for", names}),
              Ends(0, Not(HasSubstr("left out"))));
  EXPECT_EQ(Answer(capture, names), live);
  EXPECT_THAT(Answer(capture, Of("sha1", "file", "program"))["error"]["reasons"].dump(),
              HasSubstr("not recorded"));
}

TEST_F(FileCapture, RemembersWhatMayNotBeReadAndIsAskedByAnother) {
  std::string const text = Of("line 1", "file", "text");
  ::chmod(At("text").c_str(), 0);
  ::chmod(folder_.Path().c_str(), 0777);
  if (AsNobody({"1"}).status != 0) GTEST_SKIP() << "nobody cannot run the command here";
  ProcessResult const live = AsNobody({text});
  EXPECT_THAT(live.errors, HasSubstr("permission refused"));
  EXPECT_THAT(AsNobody({"capture", folder_.Path("capture"), "--for", text}), Ends(0, _));
  EXPECT_THAT(Gatotu({"--machine", folder_.Path("capture"), text}), Ends(1, "", live.errors));
}

TEST(Capture, IsForItsOwnersEyes) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the superuser is two users";
  TemporaryFolder const folder;
  std::string const capture = folder.Path("capture");
  MakeCapture(capture, {"hostname"});
  ::chmod(folder.Path().c_str(), 0755);
  if (AsNobody({"1"}).status != 0) GTEST_SKIP() << "nobody cannot run the command here";
  EXPECT_THAT(AsNobody({"--machine", capture, "1"}),
              Ends(4, "", "gatotu: " + capture + ": Permission denied\n"));
}

TEST(CaptureCommand, RefusesAFolderThatItCannotFill) {
  TemporaryFolder const folder;
  folder.Write("full/something", "");
  folder.Write("file", "");
  struct {
    std::string folder, message;
  } const cases[] = {{"full", "not empty"},
                     {"file", "no folder"},
                     {"file/below", "Not a directory"},
                     {"no/parent", "No such file or directory"}};
  for (auto const& row : cases) {
    EXPECT_THAT(Gatotu({"capture", folder.Path(row.folder), "--for", "1"}),
                Ends(2, "",
                     AllOf(testing::StartsWith("gatotu: " + folder.Path(row.folder)),
                           HasSubstr(row.message))));
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path("full")), {}), 1);
}

TEST(CaptureCommand, LeavesNothingBehindThatIsNotWhole) {
  TemporaryFolder const folder;
  std::string const capture = folder.Path("capture");
  struct {
    std::string name;
    std::vector<std::string> arguments;
    int status;
    std::string message;
  } const cases[] = {
      {"refused", {"--for", "hostname", "nonsense"}, 2, "nonsense"},
      {"stopped", {"--time-limit", "100ms", "--for", "hostname", kLongScan}, 3, "time limit"},
      {"absent file", {"--file", "/no/such"}, 2, "/no/such"},
  };
  for (auto const& row : cases) {
    EXPECT_THAT(
        Gatotu(Joined({"capture", capture}, row.arguments)),
        Ends(row.status, "", AllOf(HasSubstr(row.message), HasSubstr("no capture was written"))))
        << row.name;
    EXPECT_FALSE(fs::exists(capture)) << row.name;
  }
  Launch launch{.arguments = {"capture", capture, "--time-limit", "0", "--for", kLongScan},
                .interrupt_after = std::chrono::milliseconds(500)};
  EXPECT_EQ(RunCommand(launch).status, 3);
  EXPECT_FALSE(fs::exists(capture));
}

TEST(CaptureCommand, TakesAwayWhatAFullDiskCutOff) {
  TemporaryFolder const folder;
  folder.Write("content", std::string(200'000, 'x'));
  folder.MakeFolder("disk");
  std::string const disk = folder.Path("disk");
  std::string const mount = "unshare -rm sh -c 'mount -t tmpfs -o size=64k none " + disk + " && ";
  if (RunShell(mount + "true'").status != 0) GTEST_SKIP() << "no file systems of one's own here";
  ProcessResult const run =
      RunShell(mount + GATOTU_COMMAND + " capture " + disk + "/new --for \"sha1 of file \\\"" +
               folder.Path("content") + "\\\"\"; echo $?; ls " + disk + "'");
  EXPECT_THAT(run, Ends(0, "1\n", HasSubstr("No space left on device")));
}

TEST(CaptureCommand, ReadsExpressionsOfAFileToo) {
  TemporaryFolder const folder;
  std::string const capture = folder.Path("capture");
  EXPECT_THAT(
      Gatotu({"capture", capture, "--file", "-", "--for", "name of process 0"}, "hostname\n\n1\n"),
      Ends(0, HasSubstr("expressions: 3, answered: 2"), ""));
  EXPECT_EQ(Answer(capture, "hostname"), Answer("live", "hostname"));
  EXPECT_EQ(Answer(capture, "physical ram")["error"]["code"], "no-such-object");
}

}  // namespace
}  // namespace gatotu::tests
