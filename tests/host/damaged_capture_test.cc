
#include <filesystem>

#include "tests/host/child_process.h"
#include "tests/support/binary_list_text.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

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
    EXPECT_THAT(Lines(run.errors), testing::SizeIs(1)) << run.errors;
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
