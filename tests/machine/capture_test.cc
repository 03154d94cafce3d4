#include "machine/capture/capture.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <functional>

#include "tests/machine/machine_text.h"
#include "tests/machine/recorded_capture.h"
#include "tests/support/big_endian_text.h"
#include "tests/support/sanitized.h"
#include "tests/support/scripted_machine.h"

namespace {

using machine::Links;
using machine::Machine;
using machine::Outcome;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

std::string Plist(std::string const& content) {
  return "<plist version=\"1.0\">" + content + "</plist>";
}

class Capture : public testing::Test {
 protected:
  void Document(std::string const& entries) {
    tree.Write("/machine.plist", Plist("<dict>" + entries + "</dict>"));
  }
  SharedMachine Opened(std::string const& user = {}) { return OpenedCapture(tree.At(""), user); }

  RecordedTree tree;
};

TEST_F(Capture, AnswersWhatItsDocumentTells) {
  Document(
      "<key>FormatVersion</key><integer>1</integer><key>Platform</key><string>macos</string>"
      "<key>Taken</key><date>2004-02-29T12:00:00Z</date><key>TimeZone</key><string>XYZ-5:30</"
      "string>"
      "<key>SystemVersion</key><dict><key>ProductVersion</key><string>10.3.11</string></dict>"
      "<key>ComputerName</key><string>Cube</string><key>Architecture</key><string>ppc</string>"
      "<key>Environment</key><dict><key>HOME</key><string>/x</string></dict>"
      "<key>Gestalt</key><dict><key>ramm</key><integer>512</integer><key>mnam</key><string>G4</"
      "string>"
      "<key>mach</key><integer>-1</integer></dict><key>Processors</key><integer>2</integer>"
      "<key>BootTime</key><date>2004-02-29T11:00:00Z</date><key>Unknown</key><true/>"
      "<key>Processes</key><array><dict><key>pid</key><integer>9</integer>"
      "<key>name</key><string>a name of more than sixteen</string></dict>"
      "<dict><key>pid</key><integer>1</integer><key>name</key><data>/w==</data></dict></array>"
      "<key>Absent</key><dict><key>HostName</key><string>permission refused</string>"
      "<key>KernelRelease</key><string>lost</string></dict>");
  auto const capture = Opened();
  EXPECT_EQ(capture->Clock().MicrosecondsSince1970().value(), 1078056000'000000);
  EXPECT_EQ(capture->Clock().BootSecondsSince1970().value(), 1078052400);
  EXPECT_EQ(capture->Zone().CurrentZone()->rules->At(0).from_utc, 19800);
  EXPECT_EQ(capture->System().SystemPlatform().value(), machine::Platform::kMacOS);
  EXPECT_THAT(*capture->System().Version(), Contains(Pair("Architecture", "ppc")));
  EXPECT_EQ(capture->Names().ComputerName().value(), "Cube");
  EXPECT_EQ(capture->Names().HostName().outcome(), Outcome::kPermissionRefused);
  EXPECT_EQ(capture->System().KernelRelease().absence().where, "lost");
  EXPECT_EQ(capture->Names().HostIdentifier().absence().where, "not recorded");
  EXPECT_EQ(capture->Environment().Variable("HOME").value(), "/x");
  EXPECT_EQ(capture->Environment().Variable("PATH").outcome(), Outcome::kAbsent);
  EXPECT_THAT(*capture->Environment().VariableNames(), ElementsAre("HOME"));
  EXPECT_EQ(capture->Processors().OnlineCount().value(), 2u);
  EXPECT_EQ(capture->Processors().Kind().value(), machine::Architecture::kPowerPC);
  auto const processes = capture->Processes().AllProcesses().value();
  ASSERT_EQ(processes.size(), 2u);
  EXPECT_STREQ(processes[0].name, "\xFF");
  EXPECT_STREQ(processes[1].name, "a name of more t");
  EXPECT_EQ(capture->Processes().CountProcesses().value(), 2u);
  std::pair<char const*, machine::GestaltResponse> const responses[] = {
      {"ramm", 512u}, {"mnam", "G4"}, {"mach", 0xFFFFFFFF}, {"sysv", 0x1039u}, {"sysa", 2u}};
  for (auto const& [selector, response] : responses) {
    EXPECT_EQ(capture->Gestalt().Response(BigEndianNumber(selector)).value(), response) << selector;
  }
  EXPECT_FALSE(capture->Gestalt().Response(BigEndianNumber("lram")));
  AnnouncementLog log;
  capture->Names().ComputerName();
  EXPECT_THAT(log.entries, ElementsAre(Pair("machine.plist: ComputerName", Outcome::kAnswered)));
}

TEST_F(Capture, IsNoLessACaptureWhenTooManyFilesAreOpen) {
  if (kIsSanitized) GTEST_SKIP() << "the sanitizers open files of their own";
  Document("");
  rlimit before;
  ::getrlimit(RLIMIT_NOFILE, &before);
  int const next = ::dup(0);
  ::close(next);
  bool is_opened = false;
  for (int left = 0; left < 20 && !is_opened; ++left) {
    rlimit const few = {static_cast<rlim_t>(next + left), before.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &few);
    auto const capture = machine::OpenCapture(tree.At(""), {}, ReadRecordedFacts);
    ::setrlimit(RLIMIT_NOFILE, &before);
    is_opened = capture.has_value();
    if (is_opened) continue;
    EXPECT_THAT(machine::CaptureMessage(capture.absence()), HasSubstr("Too many open files"));
  }
  EXPECT_TRUE(is_opened);
}

struct MalformedCase {
  char const* entries;
  std::function<machine::Absence(Machine const&)> ask;
  char const* source;
};

TEST_F(Capture, AWrongValueIsMalformedByItself) {
  auto const process = [](Machine const& it) { return it.Processes().AllProcesses().absence(); };
  auto const clock = [](Machine const& it) { return it.Clock().MicrosecondsSince1970().absence(); };
  auto const variable = [](Machine const& it) { return it.Environment().Variable("A").absence(); };
  auto const status = [](Machine const& it) {
    return it.Files().Status("/f", Links::kKeep).absence();
  };
  auto const console = [](Machine const& it) { return it.Sessions().ConsoleUser().absence(); };
  auto const zone = [](Machine const& it) { return it.Zone().CurrentZone().absence(); };
  auto const count = [](Machine const& it) { return it.Processors().OnlineCount().absence(); };
  std::string const item =
      "<key>Partial</key><array><string>Files</string></array>"
      "<key>Files</key><dict><key>/f</key>";
  std::string const known = item + "<dict><key>Known</key><string>all</string>";
  std::string const mode = known + "<key>Mode</key><integer>65536</integer></dict></dict>";
  std::string const time = known + "<key>Born</key><string>1.5</string></dict></dict>";
  std::string const parts =
      item + "<dict><key>Parts</key><dict><key>-1</key><data/></dict></dict></dict>";
  std::string const text = item + "<string>x</string></dict>";
  MalformedCase const cases[] = {
      {"<key>Processes</key><array><dict><key>pid</key><string>1</string></dict></array>", process,
       "Processes[0].pid"},
      {"<key>Processes</key><array><dict><key>pid</key><integer>1</integer></dict></array>",
       process, "Processes[0].name"},
      {"<key>Processes</key><array><true/></array>", process, "Processes[0].pid"},
      {"<key>Processes</key><dict/>", process, "Processes"},
      {"<key>Taken</key><string>now</string>", clock, "Taken"},
      {"<key>Environment</key><array/>", variable, "Environment"},
      {"<key>Environment</key><dict><key>A</key><dict/></dict>", variable, "Environment.A"},
      {"<key>Processors</key><integer>-1</integer>", count, "Processors"},
      {"<key>Processors</key><true/>", count, "Processors"},
      {"<key>ConsoleUser</key><array/>", console, "ConsoleUser"},
      {"<key>TimeZone</key><string>../../etc/passwd</string>", zone, "TimeZone"},
      {"<key>TimeZone</key><string>X</string><key>TimeZoneRules</key><data>VFppZg==</data>", zone,
       "TimeZoneRules"},
      {mode.c_str(), status, "Files./f.Mode"},
      {time.c_str(), status, "Files./f.Born"},
      {parts.c_str(), status, "Files./f.Parts.-1"},
      {text.c_str(), status, "Files./f"},
  };
  for (MalformedCase const& row : cases) {
    Document(std::string(row.entries) + "<key>HostName</key><string>box</string>");
    auto const capture = Opened();
    machine::Absence const absence = row.ask(*capture);
    EXPECT_EQ(absence.reason, Outcome::kMalformed) << row.entries;
    EXPECT_THAT(absence.source, testing::EndsWith(row.source)) << row.entries;
    EXPECT_EQ(capture->Names().HostName().value(), "box") << row.entries;
  }
}

TEST_F(Capture, ProcessesAreThoseThatAreWellFormed) {
  auto const process = [](char const* pid) {
    return "<dict><key>pid</key>" + std::string(pid) + "<key>name</key><string>a</string></dict>";
  };
  std::string const list = "<key>Processes</key><array>" + process("<string>7</string>") +
                           process("<integer>9</integer>") + "<true/>" +
                           process("<integer>5</integer>") + process("<integer>9</integer>") +
                           "</array>";
  Document(list);
  auto const capture = Opened();
  for (char const* time : {"first", "again"}) {
    AnnouncementLog log;
    EXPECT_EQ(capture->Processes().AllProcesses()->size(), 2u);
    EXPECT_THAT(
        log.entries,
        ElementsAre(Pair("machine.plist: Processes[0].pid (not an integer)", Outcome::kMalformed),
                    Pair("machine.plist: Processes[2].pid (missing)", Outcome::kMalformed),
                    Pair("machine.plist: Processes", Outcome::kAnswered)))
        << time;
  }
  EXPECT_EQ(capture->Processes().ProcessWithPid(5)->pid, 5);
  std::pair<char const*, std::size_t> const counts[] = {{"", 2},
                                                        {"<integer>1</integer>", 2},
                                                        {"<integer>3</integer>", 3},
                                                        {"<integer>2147483647</integer>", 2}};
  for (auto const& [count, expected] : counts) {
    Document(list + (*count == '\0' ? "" : "<key>ProcessCount</key>") + count);
    EXPECT_EQ(Opened()->Processes().CountProcesses().value(), expected) << count;
  }
}

TEST_F(Capture, FilesStayBelowTheSystemRoot) {
  tree.Write("/root/etc/passwd", "inside");
  tree.Write("/other/etc/passwd", "inside");
  tree.Link("/linked", "other");
  tree.Link("/out", "/");
  tree.Link("/up", "..");
  tree.Link("/root/out", "../../../../../../etc/passwd");
  std::pair<char const*, bool> const cases[] = {
      {"", true},
      {"<string>other/../root</string>", true},
      {"<string>linked</string>", true},
      {"<string>../..</string>", false},
      {"<string>/etc</string>", false},
      {"<string>out</string>", false},
      {"<string>up</string>", false},
      {"<string>none</string>", false},
      {"<string>root/etc/passwd</string>", false},
      {"<string></string>", false},
      {"<true/>", false},
      {"<data>AA==</data>", false},
  };
  for (auto const& [value, has_files] : cases) {
    Document(*value == '\0' ? "" : std::string("<key>SystemRoot</key>") + value);
    auto const capture = Opened();
    auto const text = capture->Files().ReadFile("/etc/passwd", 1000);
    EXPECT_EQ(text ? text.value() : "none", has_files ? "inside" : "none") << value;
    if (has_files) continue;
    EXPECT_THAT(text.absence().where, HasSubstr("SystemRoot")) << value;
  }
  Document("");
  auto const capture = Opened();
  EXPECT_EQ(capture->Files().ReadFile("/out", 1000).value(), "inside");
  EXPECT_EQ(capture->Files().Remove("/etc/passwd").absence().error, EROFS);
  EXPECT_EQ(capture->Files().Space("/").absence().where, "not recorded");
}

TEST_F(Capture, RecordedItemsLieOverTheCopies) {
  tree.Write("/root/folder/file", "content");
  tree.Write("/root/folder/gone", "");
  tree.Link("/root/link", "folder");
  auto const item = [](char const* path, std::string const& entries) {
    return "<key>" + std::string(path) + "</key><dict>" + entries + "</dict>";
  };
  Document("<key>Files</key><dict>" +
           item("/folder/file",
                "<key>User</key><integer>501</integer>"
                "<key>Modified</key><date>2004-02-29T12:00:00Z</date>") +
           item("/folder/gone", "<key>Absent</key><string>permission refused</string>") +
           item("/../../etc/passwd", "<key>User</key><integer>1</integer>") +
           item("/far",
                "<key>Known</key><string>all</string><key>Kind</key><string>link</string>"
                "<key>Target</key><string>/../../../etc/passwd</string>") +
           item("/loop",
                "<key>Known</key><string>all</string><key>Kind</key><string>link</string>"
                "<key>Target</key><string>loop/loop</string>") +
           item("/list",
                "<key>Known</key><string>all</string><key>Kind</key><string>folder</string>"
                "<key>Entries</key><array><string>../x</string></array>") +
           "</dict><key>UserNames</key><dict><key>501</key><string>ann</string></dict>");
  auto const capture = Opened();
  machine::FileSource const& files = capture->Files();
  auto const file = files.Describe("/link/file", Links::kFollow);
  EXPECT_EQ(file->status.user, 501u);
  EXPECT_EQ(file->status.modification.seconds, 1078056000);
  EXPECT_EQ(file->status.bytes, 7u);
  EXPECT_EQ(files.ReadFile("/link/file", 10).value(), "content");
  EXPECT_EQ(files.UserName(501).value(), "ann");
  EXPECT_EQ(files.Status("/folder/gone", Links::kKeep).outcome(), Outcome::kPermissionRefused);
  for (char const* path : {"/far", "/loop", "/etc/passwd"}) {
    EXPECT_FALSE(files.Status(path, Links::kFollow)) << path;
  }
  EXPECT_EQ(files.OpenFolder("/list").outcome(), Outcome::kMalformed);
  AnnouncementLog log;
  files.Status("/link/file", Links::kFollow);
  EXPECT_THAT(log.entries, ElementsAre(Pair("/link/file", Outcome::kAnswered)));
  auto const folder = files.OpenFolder("/folder");
  auto const entry = (*folder)->Next(machine::Detail::kAll);
  EXPECT_EQ((*entry)->name, "file");
  EXPECT_EQ((*entry)->item.status.user, 501u);
  EXPECT_EQ(*(*folder)->Next(machine::Detail::kAll), nullptr);
}

struct UserCase {
  char const* user;
  char const* home;  // null: there is none
};

TEST_F(Capture, HomesAreThoseOfItsUsers) {
  tree.Write("/root/etc/passwd", "bob:x:1:1::/home/bob:\n");
  tree.Write("/root/var/db/dslocal/nodes/Default/users/cat.plist",
             Plist("<dict><key>home</key><array><string>/Volumes/cat</string></array></dict>"));
  tree.Write("/root/var/db/dslocal/nodes/Default/users/rel.plist",
             Plist("<dict><key>home</key><array><string>etc</string></array></dict>"));
  tree.Write("/root/Users/dan/x", "");
  tree.Write("/root/Users/file", "");
  Document(
      "<key>CurrentUser</key><string>ann</string><key>Users</key><dict><key>ann</key>"
      "<dict><key>Home</key><string>/home/ann</string></dict></dict>");
  UserCase const cases[] = {
      {"", "/home/ann"},         {"ann", "/home/ann"},  {"bob", "/home/bob"},
      {"cat", "/Volumes/cat"},   {"dan", "/Users/dan"}, {"rel", nullptr},
      {"file", nullptr},         {"eve", nullptr},      {"..", nullptr},
      {"../Users/dan", nullptr}, {"dan/", nullptr},     {".", nullptr},
  };
  for (UserCase const& row : cases) {
    auto const home = Opened(row.user)->Users().CurrentHome();
    EXPECT_EQ(home ? home.value() : "none", row.home != nullptr ? row.home : "none") << row.user;
  }
  EXPECT_EQ(Opened("bob")->Users().CurrentUser().value(), "bob");
  EXPECT_FALSE(Opened()->Users().HomeOf(std::string("dan\0", 4)));
  Document("");
  EXPECT_EQ(Opened()->Users().CurrentHome().outcome(), Outcome::kAbsent);
}

TEST_F(Capture, AVolumeTellsWhatItsFilesDo) {
  tree.Write("/System/Library/CoreServices/SystemVersion.plist",
             Plist("<dict><key>ProductName</key><string>Mac OS X</string>"
                   "<key>ProductVersion</key><string>10.4.11</string></dict>"));
  tree.Write(
      "/Library/Preferences/SystemConfiguration/preferences.plist",
      Plist("<dict><key>System</key><dict><key>System</key><dict>"
            "<key>ComputerName</key><string>Ann's Mac</string></dict><key>Network</key><dict>"
            "<key>HostNames</key><dict><key>LocalHostName</key><string>anns-mac</string>"
            "</dict></dict></dict></dict>"));
  tree.Link("/etc", "private/etc");
  tree.Link("/private/etc/localtime", "/usr/share/zoneinfo/Europe/Berlin");
  auto const volume = Opened();
  EXPECT_EQ(volume->System().SystemPlatform().value(), machine::Platform::kMacOS);
  EXPECT_EQ(volume->System().Version()->at(1).second, "10.4.11");
  EXPECT_EQ(volume->Gestalt().Response(BigEndianNumber("sysv")).value(),
            machine::GestaltResponse(0x1049u));
  EXPECT_EQ(volume->Names().ComputerName().value(), "Ann's Mac");
  EXPECT_EQ(volume->Names().HostName().value(), "anns-mac");
  EXPECT_TRUE(volume->Files().Space("/"));
  EXPECT_EQ(volume->Clock().MicrosecondsSince1970().absence().where, "not recorded");
  EXPECT_EQ(volume->Environment().VariableNames().outcome(), Outcome::kAbsent);
  if (!std::filesystem::exists("/usr/share/zoneinfo/Europe/Berlin")) GTEST_SKIP() << "no zones";
  EXPECT_EQ(volume->Zone().CurrentZone()->name, "Europe/Berlin");
  EXPECT_EQ(volume->Zone().CurrentZone()->rules->At(1720000000).from_utc, 7200);
}

}  // namespace
