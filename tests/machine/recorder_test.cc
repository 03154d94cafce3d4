#include "machine/capture/recorder.h"

#include <sys/stat.h>
#include <sys/xattr.h>

#include <chrono>
#include <thread>

#include "tests/machine/apple_double_text.h"
#include "tests/machine/machine_text.h"
#include "tests/machine/recorded_capture.h"
#include "tests/support/scripted_machine.h"

namespace {

using machine::Links;
using machine::Outcome;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

void FillInAll(ScriptedMachine& script) {
  script.microseconds = 1'700'000'000'123'456;
  script.boot_seconds = 1'699'999'000;
  script.SetZone("Somewhere", "CET-1CEST,M3.5.0,M10.5.0/3");
  script.environment = {{"HOME", "/home/ann"}, {"ODD\xFF", "a\x01"}, {"EMPTY", ""}, {"A%41", "x"}};
  script.host_name = "box.example";
  script.computer_name = "Ann\xE2\x80\x99s box\xFF";
  script.host_identifier = "0123";
  script.platform = machine::Platform::kMacOS;
  script.version = {{"ProductName", "Mac OS X"}, {"ProductVersion", "10.4.9"}};
  script.kernel_release = "8.9.1";
  script.current_user = "ann";
  script.current_home = "/home/elsewhere";
  script.homes = {{"ann", "/home/ann"}, {"\xFF/", "/odd"}};
  machine::RecordDictionary session;
  session.Add("kCGSSessionIDKey", std::int64_t{257});
  session.Add("kCGSSessionUserNameKey", machine::RecordBytes{"ann\xFF"});
  script.console_user.emplace().Add("SessionInfo", machine::RecordArray{session});
  script.physical_bytes = std::uint64_t{3} << 30;
  script.swap_bytes = UINT64_MAX;
  script.online_processors = 2;
  script.architecture = machine::Architecture::kPowerPC;
  script.power_pc_version = 0x00390202;
  script.megahertz = 2000;
  script.usb_release = 0x0200;
  script.product_name = "PowerMac7,2";
  script.AddProcess(1, "launchd");
  script.AddProcess(77, "odd\nname\xFF");
  script.gestalt = {{"mach", 406u}, {"odd\xC4", std::string("text\0", 5)}};
}

TEST(Recorder, EverythingComesBackAsItWas) {
  using FillIn = void (*)(ScriptedMachine&);
  std::pair<char const*, FillIn> const scripts[] = {
      {"full", FillInAll},
      {"nothing", [](ScriptedMachine&) {}},
      {"refused", [](ScriptedMachine& script) { script.reason = Outcome::kPermissionRefused; }},
  };
  for (auto const& [name, fill_in] : scripts) {
    auto const script = std::make_shared<ScriptedMachine>();
    fill_in(*script);
    RecordedTree tree;
    machine::Recorder recorder(script);
    recorder.RecordEverything();
    // What is asked by name is recorded when it is asked.
    std::string const expected = FactsText(*recorder.RecordingMachine());
    EXPECT_EQ(expected, FactsText(*script)) << name;
    auto const capture = Recorded(recorder, tree.At("/first"));
    EXPECT_EQ(FactsText(*capture), expected) << name;

    machine::Recorder again(capture);
    again.RecordEverything();
    FactsText(*again.RecordingMachine());
    EXPECT_EQ(FactsText(*Recorded(again, tree.At("/second"))), expected) << name;
  }
}

// Attributes are tried where the disk has them.
void MakeFiles(RecordedTree const& tree) {
  tree.Write("/folder/file", "0123456789");
  tree.Write("/folder/deep/er/odd%\xFF\n", "odd");
  tree.Write("/folder/._file", AppleDoubleText({{9, std::string(32, 'F')}, {2, "resource"}}));
  tree.Write("/attributes/file", "data");
  ::setxattr(tree.At("/attributes/file").c_str(), "user.com.apple.FinderInfo", "TEXTttxt", 8, 0);
  ::setxattr(tree.At("/attributes/file").c_str(), "user.com.apple.ResourceFork", "fork", 4, 0);
  ::setxattr(tree.At("/attributes").c_str(), "user.com.apple.FinderInfo", "folder", 6, 0);
  tree.Link("/folder/link", "../attributes/./file");
  tree.Link("/folder/way", "/folder/deep");
  tree.Link("/folder/out", "../../../../../../etc/passwd");
  tree.Link("/folder/loop", "loop");
  tree.Write("/etc/passwd", "root:x:0:0::/:/bin/sh\nann:x:7:7::/home/ann:\n");
  tree.MakeFifo("/pipe");
  tree.Write("/secret/file", "read by nobody but root");
  tree.Write("/secret/folder/file", "");
  ::chmod(tree.At("/secret/file").c_str(), 0);
  ::chmod(tree.At("/secret/folder").c_str(), 0);
  ::chmod(tree.At("/folder/file").c_str(), 0444);
}

TEST(Recorder, FilesComeBackAsTheyWere) {
  RecordedTree tree, captures;
  MakeFiles(tree);
  std::vector<std::string> const paths = {
      "/",           "/folder/",          "/folder/file",         "/folder/link",
      "/folder/way", "/folder/way/er",    "/folder/way/../file",  "/folder/deep/er/odd%\xFF\n",
      "/folder/out", "/folder/loop",      "/folder/loop/x",       "/folder/file/x",
      "/pipe",       "/attributes",       "/attributes/file",     "/none/x",
      "/secret",     "/secret/file",      "/secret/folder",       "/secret/folder/file",
      "/none",       "/../folder/._file", std::string("/a\0b", 4)};
  SharedMachine asked = tree.Machine();
  // Moves the times of access, and those only once: the kernel's clock ticks every 10 ms at most.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  FilesText(asked->Files(), paths);
  std::string expected;
  for (std::string const name : {"/first", "/second"}) {
    machine::Recorder recorder(asked);
    std::string const text = FilesText(recorder.RecordingMachine()->Files(), paths);
    if (expected.empty()) expected = text;
    asked = Recorded(recorder, captures.At(name));
    EXPECT_THAT(recorder.LeftOut(), ElementsAre());
    EXPECT_EQ(FilesText(asked->Files(), paths), expected) << name;
  }
  ::chmod(tree.At("/secret/folder").c_str(), 0700);
  EXPECT_THAT(expected, HasSubstr("\"resource\""));
  EXPECT_EQ(std::filesystem::read_symlink(captures.At("/second/root/folder/link")),
            "../attributes/./file");
  EXPECT_FALSE(std::filesystem::exists(captures.At("/second/root/pipe")));
}

TEST(Recorder, WhatWasNotAskedIsNotRecorded) {
  RecordedTree tree, captures;
  tree.Write("/folder/file", "0123456789");
  tree.Write("/attributes/file", "data");
  tree.Link("/folder/link", "file");
  auto const script = std::make_shared<ScriptedMachine>();
  FillInAll(*script);
  auto const files = tree.Machine();
  script->files = {files, &files->Files()};
  machine::Recorder recorder(script);
  auto const asked = recorder.RecordingMachine();
  asked->Environment().Variable("HOME");
  asked->Processes().ProcessWithPid(77);
  asked->Files().Status("/folder/file", Links::kFollow);
  {
    auto const folder = asked->Files().OpenFolder("/attributes");
    while (*(*folder)->Next(machine::Detail::kKind) != nullptr) continue;
  }
  auto const capture = Recorded(recorder, captures.At("/capture"));
  machine::FileSource const& copies = capture->Files();
  EXPECT_EQ(capture->Environment().Variable("HOME").value(), "/home/ann");
  EXPECT_EQ(capture->Processes().ProcessWithPid(77)->pid, 77);
  EXPECT_EQ(copies.Status("/folder/file", Links::kFollow)->bytes, 10u);
  EXPECT_EQ(std::filesystem::file_size(captures.At("/capture/root/folder/file")), 10u);
  machine::Absence const absences[] = {
      capture->Environment().Variable("EMPTY").absence(),
      capture->Environment().VariableNames().absence(),
      capture->Processes().ProcessWithPid(1).absence(),
      capture->Processes().AllProcesses().absence(),
      capture->Names().HostName().absence(),
      copies.Describe("/folder/file", Links::kFollow).absence(),
      copies.ReadFile("/folder/file", 100).absence(),
      copies.Status("/folder/link", Links::kKeep).absence(),
      copies.OpenFolder("/folder").absence(),
      copies.Status("/attributes/file", Links::kKeep).absence(),
      copies.Space("/folder/file").absence(),
      copies.UserName(0).absence(),
      capture->Volumes().Volumes().absence(),
  };
  for (auto const& absence : absences) EXPECT_EQ(absence.where, "not recorded") << absence.source;
  EXPECT_EQ(copies.Status("/attributes/none", Links::kKeep).absence().where, "");
  AnnouncementLog log;
  copies.Status("/folder/link", Links::kKeep);
  capture->System().KernelRelease();
  EXPECT_THAT(log.entries, ElementsAre(Pair("/folder/link (not recorded)", Outcome::kAbsent),
                                       Pair("KernelRelease (not recorded)", Outcome::kAbsent)));
}

TEST(Recorder, ContentsStayWithinTheLimit) {
  RecordedTree tree, captures;
  tree.Write("/a", "12345");
  tree.Write("/b", "1234567");
  tree.Write("/c", "123");
  tree.Write("/z", "");
  machine::Recorder recorder(tree.Machine(), {.content_bytes = 8, .items = 5});
  auto const asked = recorder.RecordingMachine();
  asked->Files().Status("/", Links::kKeep);
  for (char const* path : {"/a", "/b", "/c", "/a", "/d", "/e"}) {
    auto const file = asked->Files().OpenFork(path, machine::Fork::kData, machine::Access::kRead);
    char byte = 0;
    EXPECT_EQ(file && (*file)->ReadAt(0, &byte, 1).value() == 1, path[1] < 'd') << path;
  }
  for (auto folder = asked->Files().OpenFolder("/");
       *(*folder)->Next(machine::Detail::kKind) != nullptr;) {
  }
  EXPECT_THAT(recorder.LeftOut(), ElementsAre("/b"));
  auto const capture = Recorded(recorder, captures.At("/capture"));
  EXPECT_EQ(capture->Files().ReadFile("/a", 100).value(), "12345");
  EXPECT_EQ(capture->Files().ReadFile("/c", 100).value(), "123");
  EXPECT_EQ(capture->Files().ReadFile("/b", 100).absence().where,
            "not recorded: larger than 8 bytes in all");
  EXPECT_EQ(capture->Files().Status("/b", Links::kKeep)->bytes, 7u);
  EXPECT_EQ(capture->Files().Status("/e", Links::kKeep).absence().where, "not recorded");
  EXPECT_EQ(capture->Files().OpenFolder("/").absence().where,
            "not recorded: more than 5 files and folders");
}

TEST(Recorder, LeavesACaptureThatTellsThatItWasBrokenOff) {
  RecordedTree tree;
  machine::Recorder const recorder(std::make_shared<ScriptedMachine>());
  auto const fail = [](machine::Record const&) -> machine::Fact<std::string> {
    return machine::Absence{Outcome::kMalformed, "writer", "failed"};
  };
  EXPECT_EQ(recorder.Write(tree.At("/broken"), fail).absence().where, "failed");
  auto const broken = machine::OpenCapture(tree.At("/broken"), {}, &ReadRecordedFacts);
  EXPECT_THAT(machine::CaptureMessage(broken.absence()), HasSubstr("broken off"));
}

}  // namespace
