// Files that are made to do harm: what the user is told, and what looking at them costs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "tests/host/child_process.h"
#include "tests/portable_inspectors/temporary_folder.h"

namespace gatotu::tests {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
constexpr bool kIsSanitized = __has_feature(address_sanitizer);
#else
constexpr bool kIsSanitized = false;
#endif

std::string Repeat(std::string_view text, std::size_t times) {
  std::string result;
  for (; times > 0; --times) result += text;
  return result;
}

std::string BigEndian(std::size_t number, int bytes) {
  std::string text;
  while (bytes-- > 0) text += static_cast<char>(number >> (8 * bytes));
  return text;
}

// A binary list of these objects, the first of which is the root. Offsets have four bytes.
std::string BinaryList(std::vector<std::string> const& objects, int reference_bytes) {
  std::string list = "bplist00";
  std::string offsets;
  for (std::string const& object : objects) {
    offsets += BigEndian(list.size(), 4);
    list += object;
  }
  std::string const table = BigEndian(list.size(), 8);
  return list + offsets + std::string(6, '\0') + '\4' + static_cast<char>(reference_bytes) +
         BigEndian(objects.size(), 8) + BigEndian(0, 8) + table;
}

std::string DeepBinaryList(std::size_t depth) {
  std::vector<std::string> objects;
  for (std::size_t i = 0; i < depth; ++i) objects.push_back('\xa1' + BigEndian(i + 1, 3));
  objects.emplace_back("\x09");
  return BinaryList(objects, 3);
}

struct BadFile {
  char const* name;
  std::string content;
  char const* reason;
};

std::vector<BadFile> BadLists() {
  constexpr std::size_t kDepth = 1'000'000;
  using namespace std::string_literals;
  return {
      {"deep xml", Repeat("<array>", kDepth) + Repeat("</array>", kDepth), "deep"},
      {"deep xml, cut off", Repeat("<dict><key/>", kDepth), "deep"},
      {"deep binary", DeepBinaryList(kDepth), "deep"},
      {"deep text", Repeat("(", kDepth), "deep"},
      {"itself", BinaryList({"\xa1\0"s}, 1), "holds itself"},
      {"its own grandchild", BinaryList({"\xa1\1"s, "\xd1\2\0"s, "\x51k"s}, 1), "holds itself"},
      {"huge count", BinaryList({"\xaf\x13\x7f" + std::string(7, '\xff')}, 1), "at byte 8"},
      {"no such object", BinaryList({"\xa1\5"s}, 1), "at byte 10"},
      {"offset outside", "bplist00\xa0\xff"s + BinaryList({}, 1).substr(14, 24), "byte"},
      {"bad UTF-8", "<array><string>a\xff\xfe</string></array>", "UTF-8"},
      {"month 13", "<array><date>2001-13-01T00:00:00Z</date></array>", "<date>"},
      {"garbage", "<plist><array/></plist>garbage", "behind the end"},
      {"entity of another file",
       "<!DOCTYPE plist [<!ENTITY a SYSTEM 'file:///etc/passwd'>]><array><string>&a;</string>"
       "</array>",
       "entity"},
      {"dictionary", "<dict/>", "the list is no array"},
      {"empty", "", "nothing to read"},
  };
}

TEST(BadLists, AreRefusedWithReasonAndWithoutCost) {
  constexpr std::size_t kOwnMemory = std::size_t{64} << 20;
  TemporaryFolder folder;
  for (BadFile const& file : BadLists()) {
    folder.AddFile("list", file.content);
    std::string const expression = "size of array of file \"" + folder.Path("list") + '"';
    ProcessResult const text = Gatotu({"--evidence", expression});
    EXPECT_EQ(text.status, 1) << file.name;
    EXPECT_THAT(text.errors, AllOf(HasSubstr("ArrayCreateFromXMLDataFailed"), HasSubstr("/list ("),
                                   HasSubstr(file.reason)))
        << file.name;
    EXPECT_EQ(text.output, "") << file.name;
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
  folder.AddFifo("fifo");
  folder.AddFolder("folder");
  folder.AddLink("loop", "loop");
  folder.AddLink("to device", "/dev/zero");
  folder.AddFile("endless");
  ASSERT_EQ(::truncate(folder.Path("endless").c_str(), off_t{1} << 40), 0);
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
    EXPECT_EQ(run.status, 1) << row.question << " of " << row.path;
    EXPECT_THAT(run.errors, HasSubstr(row.reason)) << row.question;
    EXPECT_LT(run.took, std::chrono::seconds(10)) << row.question;
  }
}

TEST(BadFiles, ThatMayNotBeReadSaySo) {
  TemporaryFolder folder;
  folder.AddFile("secret", "42");
  folder.AddFolder("closed");
  ::chmod(folder.Path().c_str(), 0755);
  for (char const* name : {"secret", "closed"}) ::chmod(folder.Path(name).c_str(), 0);
  std::string const as_nobody =
      ::geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
  if (RunShell(as_nobody + GATOTU_COMMAND + " 1").status != 0) GTEST_SKIP() << "out of reach";
  for (std::string const question : {"content of file \"%secret\"", "items of folder \"%closed\"",
                                     "name of file \"%closed/x\""}) {
    std::string expression = question;
    expression.replace(expression.find('%'), 1, folder.Path() + "/");
    ProcessResult const run = RunShell(as_nobody + GATOTU_COMMAND + " '" + expression + "'");
    EXPECT_EQ(run.status, 1) << question;
    EXPECT_THAT(run.errors, HasSubstr(": permission refused\n")) << question;
  }
  ::chmod(folder.Path("closed").c_str(), 0700);
}

// Neither the terminal nor who reads the lines takes a name for something else.
TEST(BadFiles, KeepTheirNamesToOneLineOfEvidence) {
  TemporaryFolder folder;
  folder.AddFile("\x1b[31m\n  shadow: answered");
  ProcessResult const run =
      Gatotu({"--evidence", "lengths of files of folder \"" + folder.Path() + '"'});
  EXPECT_THAT(run.errors, AllOf(Not(HasSubstr("\x1b")), HasSubstr("\\x1b[31m\\x0a  shadow"),
                                Not(HasSubstr("\n  shadow"))));
}

TEST(BadLists, DoNotFillTheMemoryWithOneTextAgainAndAgain) {
  constexpr std::size_t kLength = std::size_t{1} << 20, kTimes = 100;
  TemporaryFolder folder;
  folder.AddFile("list",
                 BinaryList({"\xaf\x11" + BigEndian(kTimes, 2) + std::string(kTimes, '\1'),
                             "\x5f\x12" + BigEndian(kLength, 4) + std::string(kLength, 'a')},
                            1));
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
