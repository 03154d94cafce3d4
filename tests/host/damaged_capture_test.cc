#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>

#include "tests/host/child_process.h"
#include "tests/host/temporary_folder.h"

namespace gatotu::tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string List(std::string const& content) {
  return "<plist><dict>" + content + "</dict></plist>";
}

struct Damage {
  std::string name;
  std::function<void(TemporaryFolder const&)> make;  // of "c" in the folder
  std::string message;
};

std::ostream& operator<<(std::ostream& out, Damage const& each) { return out << each.name; }

Damage Listed(std::string name, std::string const& list, std::string message) {
  return {std::move(name),
          [list](TemporaryFolder const& folder) { folder.Write("c/machine.plist", list); },
          std::move(message)};
}

class DamagedCapture : public testing::TestWithParam<Damage> {};

TEST_P(DamagedCapture, IsRefusedInOneLine) {
  TemporaryFolder const folder;
  GetParam().make(folder);
  for (std::vector<std::string> const& question :
       {std::vector<std::string>{"1", "hostname"}, {"capture", folder.Path("new")}}) {
    std::vector<std::string> arguments = {"--machine", folder.Path("c")};
    arguments.insert(arguments.end(), question.begin(), question.end());
    ProcessResult const run = Gatotu(arguments);
    EXPECT_EQ(run.status, 4);
    EXPECT_EQ(run.output, "");
    EXPECT_THAT(Lines(run.errors), testing::SizeIs(1)) << run.errors;
    EXPECT_THAT(run.errors, StartsWith("gatotu: " + folder.Path("c")));
    EXPECT_THAT(run.errors, HasSubstr(GetParam().message));
    EXPECT_LT(run.took, std::chrono::seconds(10));
  }
  EXPECT_FALSE(std::filesystem::exists(folder.Path("new")));
}

INSTANTIATE_TEST_SUITE_P(
    All, DamagedCapture,
    testing::Values(
        Damage{"NoFolder", [](TemporaryFolder const&) {}, ""},
        Damage{"EmptyFolder", [](auto const& folder) { folder.MakeFolder("c"); }, ""},
        Damage{"File", [](auto const& folder) { folder.Write("c", List("")); }, ""},
        Damage{"Fifo", [](auto const& folder) { ::mkfifo(folder.Path("c").c_str(), 0600); }, ""},
        Damage{"ListIsFolder", [](auto const& folder) { folder.MakeFolder("c/machine.plist"); },
               "machine.plist"},
        Damage{"ListIsFifo",
               [](auto const& folder) {
                 folder.MakeFolder("c");
                 ::mkfifo(folder.Path("c/machine.plist").c_str(), 0600);
               },
               "machine.plist"},
        Damage{"ListLeadsOut",
               [](auto const& folder) {
                 folder.Write("outside.plist", List(""));
                 folder.MakeFolder("c");
                 std::filesystem::create_symlink("../outside.plist",
                                                 folder.Path("c/machine.plist"));
               },
               "machine.plist"},
        Listed("EmptyList", "", "machine.plist"),
        Listed("Truncated", List("<key>HostName</key><string>x</string>").substr(0, 40), "line 1"),
        Listed("TruncatedBinary", "bplist00\xd1\x01\x02", "machine.plist"),
        Listed("WrongRoot", "<plist><array/></plist>", "machine.plist"),
        Listed("LaterFormat", List("<key>FormatVersion</key><integer>2</integer>"), "2"),
        Listed("FormatIsText", List("<key>FormatVersion</key><string>1</string>"),
               "FormatVersion")),
    [](auto const& info) { return info.param.name; });

}  // namespace
}  // namespace gatotu::tests
