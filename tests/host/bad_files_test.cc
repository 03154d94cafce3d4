// Files that are made to do harm: what the user is told, and what looking at them costs.
#include <sys/stat.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "tests/host/child_process.h"
#include "tests/support/binary_list_text.h"
#include "tests/support/sanitized.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

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

}  // namespace
}  // namespace gatotu::tests
