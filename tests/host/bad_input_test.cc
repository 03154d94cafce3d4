// Input, files and captures that are made to do harm: what the user is told, and what looking at
// them costs.
#include <sys/stat.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <random>

#include "tests/host/child_process.h"
#include "tests/support/binary_list_text.h"
#include "tests/support/sanitized.h"
#include "tests/support/temporary_folder.h"

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

std::string DeepBinaryList(std::size_t depth) {
  std::vector<std::string> objects;
  for (std::size_t i = 0; i < depth; ++i) objects.push_back('\xa1' + BigEndianText(i + 1, 3));
  objects.emplace_back("\x09");
  return BinaryListText(objects, 3, 4);
}

TEST(BadLists, AreRefusedWithReasonAndWithoutCost) {
  constexpr std::size_t kOwnMemory = std::size_t{64} << 20, kDepth = 1'000'000;
  using namespace std::string_literals;
  struct {
    char const* name;
    std::string content;
    char const* reason;
  } const files[] = {
      {"deep xml", Repeat("<array>", kDepth) + Repeat("</array>", kDepth), "deep"},
      {"deep xml, cut off", Repeat("<dict><key/>", kDepth), "deep"},
      {"deep binary", DeepBinaryList(kDepth), "deep"},
      {"deep text", Repeat("(", kDepth), "deep"},
      {"itself", BinaryListText({"\xa1\0"s}), "holds itself"},
      {"huge count", BinaryListText({"\xaf\x13\x7f" + std::string(7, '\xff')}), "at byte 8"},
      {"bad UTF-8", "<array><string>a\xff\xfe</string></array>", "UTF-8"},
      {"entity of another file",
       "<!DOCTYPE plist [<!ENTITY a SYSTEM 'file:///etc/passwd'>]><array><string>&a;</string>"
       "</array>",
       "entity"},
      {"dictionary", "<dict/>", "the list is no array"},
      {"empty", "", "nothing to read"},
  };
  TemporaryFolder folder;
  for (auto const& file : files) {
    folder.Write("list", file.content);
    std::string const expression = "size of array of file \"" + folder.Path("list") + '"';
    ProcessResult const text = Gatotu({"--evidence", expression});
    EXPECT_THAT(text, Ends(1, "",
                           AllOf(HasSubstr("ArrayCreateFromXMLDataFailed"), HasSubstr("/list ("),
                                 HasSubstr(file.reason))))
        << file.name;
    if (!kIsSanitized) {
      EXPECT_LT(text.most_memory, kOwnMemory + 4 * file.content.size()) << file.name;
    }

    auto const json = nlohmann::json::parse(Gatotu({"--format", "json", expression}).output);
    EXPECT_EQ(json["error"]["code"], "inspector-failed") << file.name;
    EXPECT_THAT(json["error"]["reasons"].dump(), HasSubstr(file.reason)) << file.name;
  }
}

TEST(BadFiles, AreRefusedWithReason) {
  TemporaryFolder folder;
  RunShell("cd " + folder.Path() + "; mkfifo fifo; mkdir folder; ln -s loop loop; " +
           "ln -s /dev/zero 'to device'; truncate -s 1T endless");
  struct {
    std::string question, path, reason;
  } const cases[] = {
      {"content", folder.Path("fifo"), "fifo: malformed"},
      {"sha256", folder.Path("to device"), "/dev/zero: malformed"},
      {"content", "/dev/full", "/dev/full: malformed"},
      {"content", folder.Path("folder"), "folder: absent"},
      {"length", folder.Path("loop"), "loop (too many links): malformed"},
      {"content", folder.Path("none"), "none: absent"},
      {"content", folder.Path(std::string(256, 'n')), "nnn: absent"},
      {"lines", "/proc/self/mem", "/proc/self/mem: malformed"},
      {"size of dictionary", folder.Path("fifo"), "fifo: malformed"},
      {"size of dictionary", folder.Path("endless"), "endless (more than "},
      {"content", folder.Path("endless"), "FileTooLarge"},
  };
  for (auto const& row : cases) {
    ProcessResult const run = Gatotu({row.question + " of file \"" + row.path + '"'});
    EXPECT_THAT(run, Ends(1, "", HasSubstr(row.reason))) << row.question << " of " << row.path;
    EXPECT_LT(run.took, std::chrono::seconds(10)) << row.question;
  }
}

TEST(BadFiles, ThatMayNotBeReadSaySo) {
  TemporaryFolder folder;
  folder.Write("secret", "42");
  folder.MakeFolder("closed");
  ::chmod(folder.Path().c_str(), 0755);
  for (char const* name : {"secret", "closed"}) ::chmod(folder.Path(name).c_str(), 0);
  if (AsNobody({"1"}).status != 0) GTEST_SKIP() << "out of reach";
  for (std::string const question : {"content of file \"%secret\"", "items of folder \"%closed\"",
                                     "name of file \"%closed/x\""}) {
    std::string expression = question;
    expression.replace(expression.find('%'), 1, folder.Path() + "/");
    EXPECT_THAT(AsNobody({expression}), Ends(1, "", HasSubstr(": permission refused\n")));
  }
  ::chmod(folder.Path("closed").c_str(), 0700);
}

// Neither the terminal nor who reads the lines takes a name for something else.
TEST(BadFiles, KeepTheirNamesToOneLineOfEvidence) {
  TemporaryFolder folder;
  folder.Write("\x1b[31m\n  shadow: answered", "");
  EXPECT_THAT(Gatotu({"--evidence", "lengths of files of folder \"" + folder.Path() + '"'}).errors,
              AllOf(Not(HasSubstr("\x1b")), HasSubstr("\\x1b[31m\\x0a  shadow"),
                    Not(HasSubstr("\n  shadow"))));
}

TEST(BadLists, DoNotFillTheMemoryWithOneTextAgainAndAgain) {
  constexpr std::size_t kLength = std::size_t{1} << 20, kTimes = 100;
  TemporaryFolder folder;
  folder.Write(
      "list", BinaryListText({"\xaf\x11" + BigEndianText(kTimes, 2) + std::string(kTimes, '\1'),
                              "\x5f\x12" + BigEndianText(kLength, 4) + std::string(kLength, 'a')}));
  ProcessResult const run = Gatotu(
      {"--format", "json", "strings of values of array of file \"" + folder.Path("list") + '"'});
  EXPECT_GT(run.output.size(), kLength * kTimes);
  EXPECT_TRUE(nlohmann::json::accept(run.output));
  if (!kIsSanitized) {
    EXPECT_LT(run.most_memory, kLength * kTimes * 3 / 4);
  }
}

std::string List(std::string const& content) {
  return "<plist><dict>" + content + "</dict></plist>";
}

// By what the shell makes "c" in a folder.
struct {
  char const *name, *make, *message;
} const kDamages[] = {
    {"no folder", "true", "No such file or directory"},
    {"an empty folder", "mkdir c", "no capture"},
    {"a file", "echo '<plist><dict/></plist>' > c", ""},
    {"a pipe", "mkfifo c", ""},
    {"a list that is a folder", "mkdir -p c/machine.plist", "machine.plist"},
    {"a list that is a pipe", "mkdir c; mkfifo c/machine.plist", "machine.plist"},
    {"a list that leads out",
     "mkdir c; echo '<plist><dict/></plist>' > outside; ln -s ../outside c/machine.plist",
     "No such file"},
    {"a list of 2^40 bytes", "mkdir c; truncate -s 1T c/machine.plist", "too large"},
};

struct {
  std::string list;
  char const* message;
} const kLists[] = {
    {"", "machine.plist"},
    {List("<key>HostName</key><string>x</string>").substr(0, 40), "line 1"},
    {"bplist00\xd1\x01\x02", "machine.plist"},
    {"<plist><array/></plist>", "not a dictionary"},
    {SharedArraysText(3), "not a dictionary"},
    {SharedArraysText(20), "stands for too many values"},
    {SharedArraysText(60), "stands for too many values"},
    {List("<key>FormatVersion</key><integer>2</integer>"), "later than 1"},
    {List("<key>FormatVersion</key><string>1</string>"), "FormatVersion"},
};

void ExpectRefusal(TemporaryFolder const& folder, char const* message) {
  for (std::vector<std::string> const& question :
       {std::vector<std::string>{"1", "hostname"}, {"capture", folder.Path("new")}}) {
    std::vector<std::string> arguments = {"--machine", folder.Path("c")};
    arguments.insert(arguments.end(), question.begin(), question.end());
    ProcessResult const run = Gatotu(arguments);
    EXPECT_THAT(run,
                Ends(4, "", AllOf(StartsWith("gatotu: " + folder.Path("c")), HasSubstr(message))));
    EXPECT_THAT(Lines(run.errors), SizeIs(1)) << run.errors;
    EXPECT_LT(run.took, std::chrono::seconds(10));
  }
  EXPECT_FALSE(std::filesystem::exists(folder.Path("new")));
}

TEST(DamagedCapture, IsRefusedInOneLine) {
  for (auto const& damage : kDamages) {
    SCOPED_TRACE(damage.name);
    TemporaryFolder const folder;
    EXPECT_EQ(RunShell("cd " + folder.Path() + " && " + damage.make).status, 0);
    ExpectRefusal(folder, damage.message);
  }
  TemporaryFolder const folder;
  for (auto const& row : kLists) {
    SCOPED_TRACE(row.list);
    folder.Write("c/machine.plist", row.list);
    ExpectRefusal(folder, row.message);
  }
}

}  // namespace
}  // namespace gatotu::tests
