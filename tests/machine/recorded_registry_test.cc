#include "tests/machine/recorded_capture.h"
#include "tests/machine/recorded_devices.h"
#include "tests/machine/registry_text.h"

namespace {

// A capture with the planes that a test writes into it.
class CapturedRegistry : public testing::Test {
 protected:
  SharedMachine With(std::string const& plane) const {
    tree_.Write("/registry/IOService.plist", "<plist>" + plane + "</plist>");
    return Documented(tree_, "");
  }
  static std::string PathOf(SharedMachine const& machine, std::string_view path) {
    auto const node = machine->Registry().NodeAt("IOService", path);
    return node ? *(*node)->PathIn("IOService") + " " + std::to_string((*node)->Identity())
                : "none";
  }
  static std::string Entry(std::string const& name, int identity, std::string const& more = {}) {
    return "<dict><key>IORegistryEntryName</key><string>" + name +
           "</string><key>IORegistryEntryID</key><integer>" + std::to_string(identity) +
           "</integer>" + more + "</dict>";
  }
  static std::string Children(std::string const& entries) {
    return "<key>IORegistryEntryChildren</key><array>" + entries + "</array>";
  }
  static std::string At(std::string const& location) {
    return "<key>IORegistryEntryLocation</key><string>" + location + "</string>";
  }

  RecordedTree tree_;
};

TEST_F(CapturedRegistry, IsReadAsItIsPrinted) {
  std::string const bridge = Entry(
      "PCI0", 3, At("0") + "<key>IORegistryEntryProperties</key><dict><key>a</key><true/></dict>");
  std::string const expert =
      "<key>IOObjectClass</key><string>IOPlatformExpertDevice</string>"
      "<key>IOObjectRetainCount</key><integer>30</integer><key>model</key><data>TWFjAA==</data>";
  auto const machine = With(Entry("Root", 1,
                                  "<key>IOKitBuildVersion</key><string>Darwin 12</string>" +
                                      Children(Entry("MacPro3,1", 2, expert + Children(bridge)))));
  EXPECT_EQ(TextOf(machine->Registry()),
            "{IOKitBuildVersion='Darwin 12'}\nIOService\n"
            "'/' 'MacPro3,1' 'IOPlatformExpertDevice' {model=<4d616300>} 2\n"
            "'/PCI0@0' 'PCI0' (absent) {a=yes} 3\n");
}

TEST_F(CapturedRegistry, PathsFindNamesOfAnyKind) {
  auto const machine = With(Entry(
      "top", 1,
      Children(Entry("Keyboard / Trackpad", 2, At("fa12") + Children(Entry("x", 3))) +
               Entry("cpu", 4, At("0")) + Entry("cpu", 5, At("1")) + Entry("a:b@c", 6) +
               Entry("Keyboard ", 7, Children(Entry("y", 8))) + Entry("", 9) + Entry("x", 10) +
               Entry("x", 11) + Entry("u", 12, At("1/2") + Children(Entry("v", 13))))));
  std::pair<char const*, char const*> const cases[] = {
      {"/", "/ 1"},
      {"/Keyboard / Trackpad@fa12/x", "/Keyboard / Trackpad@fa12/x 3"},
      {"/Keyboard / Trackpad/x", "/Keyboard / Trackpad@fa12/x 3"},
      {"/Keyboard /y", "/Keyboard /y 8"},
      {"/cpu@1", "/cpu@1 5"},
      {"/cpu", "none"},
      {"/a:b@c", "/a:b@c 6"},
      {"/a:b", "none"},
      {"/x", "/x 10"},
      {"/u/v", "/u@1/2/v 13"},
      {"/u@1/2/v", "/u@1/2/v 13"},
      {"", "none"},
      {"x", "none"},
      {"/x/", "none"},
  };
  for (auto const& [path, found] : cases) EXPECT_EQ(PathOf(machine, path), found) << path;
}

TEST_F(CapturedRegistry, OneEntryIsKnownInEveryPlaneByItsNumber) {
  tree_.Write("/registry/IOUSB.plist",
              "<plist><array>" + Entry("hub", 7) + Entry("other", 8) + "</array></plist>");
  auto const machine = With(Entry("top", 1, Children(Entry("controller", 7))));
  auto const node = *machine->Registry().NodeAt("IOService", "/controller");
  EXPECT_EQ(*node->NameIn("IOUSB"), "hub");
  EXPECT_EQ(*node->PathIn("IOUSB"), "/hub");
  EXPECT_EQ(node->NameIn("IOPower").absence().where, "not recorded");
  EXPECT_EQ(ChildrenOf(**machine->Registry().NodeAt("IOUSB", "/"), "IOUSB").size(), 2u);
}

TEST_F(CapturedRegistry, BadFilesAreAbsences) {
  struct {
    char const *plane, *text;
  } const cases[] = {
      {"<string>x</string>", "{}\n"},
      {"<array/>", "{}\n"},
      {"<array><true/></array>", "{}\n"},
      {"<dict/>", "{}\nIOService\n'/' (absent) (absent) {} *\n"},
      {"<dict><key>IORegistryEntryName</key><true/>"
       "<key>IORegistryEntryChildren</key><string/>"
       "<key>IORegistryEntryAbsent</key><integer>1</integer>"
       "<key>IORegistryEntryID</key><string>x</string><key>IOObjectClass</key><array/></dict>",
       "{}\nIOService\n'/' (malformed) (malformed) {} *\n"},
      {"<dict", "{}\n"},
  };
  for (auto const& row : cases) {
    std::string text = TextOf(With(row.plane)->Registry());
    std::size_t const number = text.find_last_of(' ') + 1;
    if (text.size() > 4) text.replace(number, text.size() - number - 1, "*");
    EXPECT_EQ(text, row.text) << row.plane;
  }
}

TEST_F(CapturedRegistry, WhatIsNotThereSaysWhy) {
  EXPECT_EQ(Documented(tree_, "")->Registry().Root().absence().where, "not recorded");
  auto const machine = Documented(
      tree_, "<key>Absent</key><dict><key>Registry</key><string>timed out</string></dict>");
  EXPECT_EQ(machine->Registry().Root().outcome(), machine::Outcome::kTimedOut);
  tree_.Write("/secret.plist", "<plist>" + Entry("top", 1) + "</plist>");
  tree_.Link("/registry/IOUSB.plist", "/../../../../../../etc/passwd");
  for (char const* plane : {"../secret", "IOUSB", "", "IOPower"}) {
    EXPECT_FALSE(machine->Registry().NodeAt(plane, "/")) << plane;
  }
}

TEST_F(CapturedRegistry, AMillionEntriesAreFoundInBoundedTime) {
  std::string entries;
  for (int i = 0; i < 500'000; ++i) {
    entries += "<dict><key>IORegistryEntryName</key><string>a</string></dict>";
  }
  auto const machine = With(Entry("top", 1, Children(entries + entries)));
  auto const first = *machine->Registry().NodeAt("IOService", "/");
  EXPECT_EQ(ChildrenOf(*first, "IOService").size(), 1'000'000u);
  EXPECT_FALSE(machine->Registry().NodeAt("IOService", "/a/a"));
}

// What one machine answers, another machine answers after it was recorded.
class RegistryRecording : public CapturedRegistry {
 protected:
  RegistryRecording() {
    WriteDevices(tree_);
    WriteFirmware(tree_);
  }
};

TEST_F(RegistryRecording, OfEverythingIsEqual) {
  EXPECT_EQ(TextOf(RecordedWhole(tree_.Machine(), tree_.At("/capture"))->Registry()),
            TextOf(tree_.Machine()->Registry()));
}

TEST_F(RegistryRecording, OfCaptureIsEqual) {
  std::string const parent = Entry("a / b", 2, At("1") + Children(Entry("c", 3) + Entry("c", 4)));
  std::string const named = Entry("Keyboard", -5, R"(<key>IORegistryEntryProperties</key><dict>
      <key>IORegistryEntryName</key><string>own</string></dict>)");
  SharedMachine const capture =
      With(Entry("Root", 1,
                 "<key>IOObjectClass</key><string>IORegistryEntry</string>" +
                     Children(parent + named + Entry("", 6))));
  std::string const text = TextOf(capture->Registry());
  EXPECT_EQ(TextOf(RecordedWhole(capture, tree_.At("/capture"))->Registry()), text);
  EXPECT_THAT(text, testing::HasSubstr("own"));
}

TEST_F(RegistryRecording, HasWhatWasAskedAndSaysThatTheRestIsNotRecorded) {
  machine::Recorder recorder(tree_.Machine());
  SharedMachine const asked = recorder.RecordingMachine();
  std::string const path = "/pci0000:00/0000:00:14.0";
  std::string const properties =
      TextOf((*asked->Registry().NodeAt("IOService", path))->Properties());
  EXPECT_FALSE(asked->Registry().NodeAt("IOService", "/none"));
  EXPECT_FALSE((*asked->Registry().Root())->Children("IOOther"));

  SharedMachine const capture = Recorded(recorder, tree_.At("/capture"));
  auto const node = *capture->Registry().NodeAt("IOService", path);
  EXPECT_EQ(TextOf(node->Properties()), properties);
  EXPECT_EQ(node->ClassName().absence().where, "not recorded");
  EXPECT_EQ((*node->Children("IOService"))->Next().absence().where, "not recorded");
  EXPECT_EQ(capture->Registry().NodeAt("IOService", "/none").absence().source, "/sys/devices/none");
  EXPECT_EQ((*capture->Registry().Root())->Children("IOOther").absence().source, "IOOther:");
  EXPECT_EQ((*capture->Registry().Root())->Children("IOUSB").absence().where, "not recorded");
}

TEST_F(RegistryRecording, EndsWithItsLimits) {
  for (auto const& [entries, bytes] :
       {std::pair<std::uint64_t, std::uint64_t>{5, 1 << 20}, {1'000'000, 300}}) {
    std::filesystem::remove_all(tree_.At("/capture"));
    machine::Recorder recorder(tree_.Machine(),
                               {.registry_entries = entries, .registry_bytes = bytes});
    recorder.RecordEverything();
    SharedMachine const capture = Recorded(recorder, tree_.At("/capture"));
    std::string const text = TextOf(capture->Registry());
    EXPECT_LT(std::count(text.begin(), text.end(), '\n'), 20);
    auto const missing = capture->Registry().NodeAt("IOUSB", "/usb1/1-2");
    EXPECT_THAT(missing.absence().where, testing::StartsWith("not recorded: more than "));
  }
}

}  // namespace
