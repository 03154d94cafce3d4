
#include <filesystem>
#include <functional>

#include "tests/host/child_process.h"
#include "tests/support/binary_list_text.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string List(std::string const& content) {
  return "<plist><dict>" + content + "</dict></plist>";
}

// Each makes "c" in the folder.
struct {
  char const* name;
  std::function<void(TemporaryFolder const&)> make;
  char const* message;
} const kDamages[] = {
    {"no folder", [](auto const&) {}, "No such file or directory"},
    {"an empty folder", [](auto const& folder) { folder.MakeFolder("c"); }, "no capture"},
    {"a file", [](auto const& folder) { folder.Write("c", List("")); }, ""},
    {"a pipe", [](auto const& folder) { folder.MakeFifo("c"); }, ""},
    {"a list that is a folder", [](auto const& folder) { folder.MakeFolder("c/machine.plist"); },
     "machine.plist"},
    {"a list that is a pipe", [](auto const& folder) { folder.MakeFifo("c/machine.plist"); },
     "machine.plist"},
    {"a list that leads out",
     [](auto const& folder) {
       folder.Write("outside.plist", List(""));
       folder.Link("c/machine.plist", "../outside.plist");
     },
     "No such file"},
    {"a list of 2^40 bytes",
     [](auto const& folder) {
       folder.Write("c/machine.plist", "");
       std::filesystem::resize_file(folder.Path("c/machine.plist"), std::uintmax_t{1} << 40);
     },
     "too large"},
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
    EXPECT_EQ(run.status, 4);
    EXPECT_EQ(run.output, "");
    EXPECT_THAT(Lines(run.errors), testing::SizeIs(1)) << run.errors;
    EXPECT_THAT(run.errors, StartsWith("gatotu: " + folder.Path("c")));
    EXPECT_THAT(run.errors, HasSubstr(message));
    EXPECT_LT(run.took, std::chrono::seconds(10));
  }
  EXPECT_FALSE(std::filesystem::exists(folder.Path("new")));
}

TEST(DamagedCapture, IsRefusedInOneLine) {
  for (auto const& damage : kDamages) {
    SCOPED_TRACE(damage.name);
    TemporaryFolder const folder;
    damage.make(folder);
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
