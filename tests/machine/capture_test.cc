#include "machine/capture/capture.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>

#include "tests/machine/machine_text.h"
#include "tests/machine/recorded_capture.h"
#include "tests/support/big_endian_text.h"
#include "tests/support/sanitized.h"
#include "tests/support/scripted_machine.h"

namespace {

using machine::Links;
using machine::Outcome;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

std::string Plist(std::string const& content) {
  return "<plist version=\"1.0\">" + content + "</plist>";
}

class Capture : public testing::Test {
 protected:
  SharedMachine With(std::string const& entries) const { return Documented(tree, entries); }

  RecordedTree tree;
};

TEST_F(Capture, AnswersWhatItsDocumentTells) {
  auto const capture = With(R"(
      <key>FormatVersion</key><integer>1</integer><key>Platform</key><string>macos</string>
      <key>Taken</key><date>2004-02-29T12:00:00Z</date><key>Unknown</key><true/>
      <key>TimeZone</key><string>XYZ-5:30</string>
      <key>SystemVersion</key><dict><key>ProductVersion</key><string>10.3.11</string></dict>
      <key>ComputerName</key><string>Cube</string><key>Architecture</key><string>ppc</string>
      <key>Environment</key><dict><key>HOME</key><string>/x</string></dict>
      <key>Gestalt</key><dict><key>ramm</key><integer>512</integer>
        <key>mnam</key><string>G4</string><key>mach</key><integer>-1</integer></dict>
      <key>Processors</key><integer>2</integer>
      <key>BootTime</key><date>2004-02-29T11:00:00Z</date>
      <key>Processes</key><array>
        <dict><key>pid</key><integer>9</integer>
          <key>name</key><string>a name of more than sixteen</string></dict>
        <dict><key>pid</key><integer>1</integer><key>name</key><data>/w==</data></dict></array>
      <key>Absent</key><dict><key>HostName</key><string>permission refused</string>
        <key>KernelRelease</key><string>lost</string></dict>)");
  std::string const text = "\n" + FactsText(*capture);
  for (std::string const line :
       {"clock: 1078056000000000", "boot: 1078052400", "computer: \"Cube\"",
        "zone: XYZ-5:30 XYZ-5:30 19800/0 19800/0 19800/0 19800/0 19800/0",
        "version: { (\"ProductVersion\", \"10.3.11\"), (\"Architecture\", \"ppc\") }",
        "host: permission refused [HostName] [] 0", "kernel: absent [KernelRelease] [lost] 0",
        "identifier: absent [HostIdentifier] [not recorded] 0", "variables: { \"HOME\" }",
        "  HOME: \"/x\"", "no variable: absent [environment NO_SUCH_VARIABLE] [] 0",
        "processors: 2", "frequency: absent [Processors.Megahertz] [not recorded] 0", "count: 2",
        "processes: { 1\xFF, 9a name of more t }"}) {
    EXPECT_THAT(text, HasSubstr("\n" + line + "\n"));
  }
  EXPECT_EQ(capture->System().SystemPlatform().value(), machine::Platform::kMacOS);
  EXPECT_EQ(capture->Processors().Kind().value(), machine::Architecture::kPowerPC);
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
  tree.Write("/machine.plist", Plist("<dict/>"));
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

TEST_F(Capture, AWrongValueIsMalformedByItself) {
  std::string const item =
      "<key>Partial</key><array><string>Files</string></array>"
      "<key>Files</key><dict><key>/f</key>";
  std::string const known = item + "<dict><key>Known</key><string>all</string>";
  std::tuple<std::string, char const*, char const*> const cases[] = {
      {"<key>Processes</key><array><dict><key>pid</key><string>1</string></dict></array>",
       "processes", "Processes[0].pid"},
      {"<key>Processes</key><array><dict><key>pid</key><integer>1</integer></dict></array>",
       "processes", "Processes[0].name"},
      {"<key>Processes</key><array><true/></array>", "processes", "Processes[0].pid"},
      {"<key>Processes</key><dict/>", "processes", "Processes"},
      {"<key>Taken</key><string>now</string>", "clock", "Taken"},
      {"<key>Environment</key><array/>", "variables", "Environment"},
      {"<key>Environment</key><array/>", "no variable", "Environment"},
      {"<key>Environment</key><dict><key>A</key><dict/></dict>", "A", "Environment.A"},
      {"<key>Processors</key><integer>-1</integer>", "processors", "Processors"},
      {"<key>Processors</key><true/>", "processors", "Processors"},
      {"<key>Hardware</key><integer>2</integer>", "USB release", "Hardware"},
      {"<key>ConsoleUser</key><array/>", "console", "ConsoleUser"},
      {"<key>TimeZone</key><string>../../etc/passwd</string>", "zone", "TimeZone"},
      {"<key>TimeZone</key><string>X</string><key>TimeZoneRules</key><data>VFppZg==</data>", "zone",
       "TimeZoneRules"},
      {known + "<key>Mode</key><integer>65536</integer></dict></dict>", "itself", "Files./f.Mode"},
      {known + "<key>Born</key><string>1.5</string></dict></dict>", "itself", "Files./f.Born"},
      {item + "<dict><key>Parts</key><dict><key>-1</key><data/></dict></dict></dict>", "itself",
       "Files./f.Parts.-1"},
      {item + "<string>x</string></dict>", "itself", "Files./f"},
  };
  for (auto const& [entries, asked, source] : cases) {
    auto const capture = With(entries + "<key>HostName</key><string>box</string>");
    std::string const text = FactsText(*capture) + FilesText(capture->Files(), {"/f"});
    std::string const line = std::string(asked) + ": malformed [machine.plist: " + source + "]";
    EXPECT_THAT(text, AllOf(HasSubstr(line), HasSubstr("host: \"box\"\n"))) << entries;
  }
}

TEST_F(Capture, ProcessesAreThoseThatAreWellFormed) {
  std::string const list = R"(<key>Processes</key><array>
      <dict><key>pid</key><string>7</string><key>name</key><string>a</string></dict>
      <dict><key>pid</key><integer>9</integer><key>name</key><string>a</string></dict>
      <true/>
      <dict><key>pid</key><integer>5</integer><key>name</key><string>a</string></dict>
      <dict><key>pid</key><integer>9</integer><key>name</key><string>a</string></dict></array>)";
  auto const capture = With(list);
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
  std::pair<char const*, std::size_t> const counts[] = {
      {"", 2},
      {"<key>ProcessCount</key><integer>1</integer>", 2},
      {"<key>ProcessCount</key><integer>3</integer>", 3},
      {"<key>ProcessCount</key><integer>2147483647</integer>", 2}};
  for (auto const& [count, expected] : counts) {
    EXPECT_EQ(With(list + count)->Processes().CountProcesses().value(), expected) << count;
  }
}

TEST_F(Capture, FilesStayBelowTheSystemRoot) {
  tree.Write("/root/etc/passwd", "inside");
  tree.Write("/other/etc/passwd", "inside");
  tree.Link("/linked", "other");
  tree.Link("/out", "/");
  tree.Link("/up", "..");
  tree.Link("/root/out", "../../../../../../etc/passwd");
  auto const read = [this](char const* root) {
    auto const capture = With(std::string("<key>SystemRoot</key>") + root);
    auto const text = capture->Files().ReadFile("/etc/passwd", 1000);
    return text ? *text : text.absence().where;
  };
  for (char const* root : {"<string>other/../root</string>", "<string>linked</string>"}) {
    EXPECT_EQ(read(root), "inside") << root;
  }
  for (char const* root :
       {"<string>../..</string>", "<string>/etc</string>", "<string>out</string>",
        "<string>up</string>", "<string>none</string>", "<string>root/etc/passwd</string>",
        "<string></string>", "<true/>", "<data>AA==</data>"}) {
    EXPECT_THAT(read(root), HasSubstr("SystemRoot")) << root;
  }
  auto const capture = With("");
  EXPECT_EQ(capture->Files().ReadFile("/out", 1000).value(), "inside");
  EXPECT_EQ(capture->Files().Remove("/etc/passwd").absence().error, EROFS);
  EXPECT_EQ(capture->Files().Space("/").absence().where, "not recorded");
}

TEST_F(Capture, RecordedItemsLieOverTheCopies) {
  tree.Write("/root/folder/file", "content");
  tree.Write("/root/folder/gone", "");
  tree.Link("/root/link", "folder");
  auto const capture = With(R"(<key>Files</key><dict>
      <key>/folder/file</key><dict><key>User</key><integer>501</integer>
        <key>Modified</key><date>2004-02-29T12:00:00Z</date></dict>
      <key>/folder/gone</key><dict><key>Absent</key><string>permission refused</string></dict>
      <key>/../../etc/passwd</key><dict><key>User</key><integer>1</integer></dict>
      <key>/far</key><dict><key>Known</key><string>all</string><key>Kind</key><string>link</string>
        <key>Target</key><string>/../../../etc/passwd</string></dict>
      <key>/loop</key><dict><key>Known</key><string>all</string><key>Kind</key><string>link</string>
        <key>Target</key><string>loop/loop</string></dict>
      <key>/list</key><dict><key>Known</key><string>all</string>
        <key>Kind</key><string>folder</string>
        <key>Entries</key><array><string>../x</string></array></dict></dict>
      <key>UserNames</key><dict><key>501</key><string>ann</string></dict>)");
  machine::FileSource const& files = capture->Files();
  auto const file = files.Describe("/link/file", Links::kFollow);
  EXPECT_EQ(std::tuple(file->status.user, file->status.modification.seconds, file->status.bytes),
            std::tuple(501u, 1078056000, 7u));
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

TEST_F(Capture, HomesAreThoseOfItsUsers) {
  std::string const users = "/root/var/db/dslocal/nodes/Default/users/";
  tree.Write("/root/etc/passwd", "bob:x:1:1::/home/bob:\n");
  for (auto const& [name, home] : {std::pair("cat", "/Volumes/cat"), std::pair("rel", "etc")}) {
    tree.Write(users + name + ".plist", Plist("<dict><key>home</key><array><string>" +
                                              std::string(home) + "</string></array></dict>"));
  }
  tree.Write("/root/Users/dan/x", "");
  tree.Write("/root/Users/file", "");
  With(R"(<key>CurrentUser</key><string>ann</string><key>Users</key>
      <dict><key>ann</key><dict><key>Home</key><string>/home/ann</string></dict></dict>)");
  std::pair<char const*, char const*> const cases[] = {
      {"", "/home/ann"},        {"ann", "/home/ann"},  {"bob", "/home/bob"},
      {"cat", "/Volumes/cat"},  {"dan", "/Users/dan"}, {"rel", "none"},
      {"file", "none"},         {"eve", "none"},       {"..", "none"},
      {"../Users/dan", "none"}, {"dan/", "none"},      {".", "none"},
  };
  for (auto const& [user, expected] : cases) {
    auto const home = OpenedCapture(tree.At(""), user)->Users().CurrentHome();
    EXPECT_EQ(home ? *home : "none", expected) << user;
  }
  auto const capture = OpenedCapture(tree.At(""), "bob");
  EXPECT_EQ(capture->Users().CurrentUser().value(), "bob");
  EXPECT_FALSE(capture->Users().HomeOf(std::string("dan\0", 4)));
  EXPECT_EQ(With("")->Users().CurrentHome().outcome(), Outcome::kAbsent);
}

TEST_F(Capture, AVolumeTellsWhatItsFilesDo) {
  tree.Write("/System/Library/CoreServices/SystemVersion.plist",
             Plist("<dict><key>ProductName</key><string>Mac OS X</string>"
                   "<key>ProductVersion</key><string>10.4.11</string></dict>"));
  tree.Write("/Library/Preferences/SystemConfiguration/preferences.plist", Plist(R"(
      <dict><key>System</key><dict>
        <key>System</key><dict><key>ComputerName</key><string>Ann's Mac</string></dict>
        <key>Network</key><dict><key>HostNames</key><dict>
          <key>LocalHostName</key><string>anns-mac</string></dict></dict></dict></dict>)"));
  tree.Link("/etc", "private/etc");
  tree.Link("/private/etc/localtime", "/usr/share/zoneinfo/Europe/Berlin");
  auto const volume = OpenedCapture(tree.At(""));
  EXPECT_EQ(volume->System().SystemPlatform().value(), machine::Platform::kMacOS);
  EXPECT_EQ(volume->System().Version()->at(1).second, "10.4.11");
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
