#include "machine/scsi.h"

#include <algorithm>

#include "tests/machine/recorded_capture.h"

namespace {

using machine::Machine;
using machine::Outcome;
using testing::ElementsAre;

std::string Text(machine::ScsiBus const& bus) {
  return std::to_string(bus.version) + " " + std::to_string(bus.feature_flags) + " " +
         std::to_string(bus.adapter_inquiry);
}

std::string const kDisk = std::string("\0\0\5\2\x1f\0\0\0ATA     ", 16) + "VBOX HARDDISK   1.0 ";

void WriteHosts(RecordedTree const& tree) {
  for (char const* name : {"host2", "host0", "host10", "host02", "host256", "hosts"}) {
    tree.Write(std::string("/sys/class/scsi_host/") + name + "/proc_name", "ahci\n");
  }
}

void WriteInquiry(RecordedTree const& tree, std::string const& device, std::string const& data) {
  tree.Write("/sys/devices/" + device + "/inquiry", data);
  tree.Link("/sys/bus/scsi/devices/" + device, "../../../devices/" + device);
}

TEST(LiveScsi, BusesAreTheHostsAndTargetsThoseOfTheirFirstChannel) {
  RecordedTree tree;
  SharedMachine const machine = tree.Machine();
  EXPECT_EQ(machine->Scsi().BusNumbers().outcome(), Outcome::kAbsent);
  EXPECT_EQ(machine->Scsi().Bus(0).outcome(), Outcome::kAbsent);
  WriteHosts(tree);
  for (char const* device : {"0:0:0:0", "0:0:9:0", "0:0:11:0", "0:0:1:1", "0:1:3:0", "10:0:4:0"}) {
    WriteInquiry(tree, device, device == std::string("0:0:9:0") ? "" : kDisk);
  }
  EXPECT_THAT(*machine->Scsi().BusNumbers(), ElementsAre(0, 2, 10));
  EXPECT_EQ(Text(*machine->Scsi().Bus(10)), "0 0 0");
  EXPECT_EQ(machine->Scsi().Bus(1).absence().where, "host1");
  EXPECT_THAT(*machine->Scsi().TargetNumbers(0), ElementsAre(0, 9, 11));
  EXPECT_EQ(machine->Scsi().Inquiry(0, 11).value(), kDisk);
  EXPECT_EQ(machine->Scsi().Inquiry(0, 9).outcome(), Outcome::kMalformed);
  for (std::uint8_t const target : {1, 3, 4}) {
    EXPECT_EQ(machine->Scsi().Inquiry(0, target).outcome(), Outcome::kAbsent);
  }
}

TEST(LiveScsi, OnlyWhatParallelTargetsAgreedUponTellsOfWidthAndSpeed) {
  struct {
    char const *name, *folder, *width, *offset, *period, *bus;
  } const cases[] = {
      {"narrow and asynchronous", "spi_transport/target0:0:3", "0", "0", "50", "0 0 0"},
      {"narrow and fast", "spi_transport/target0:0:3", "0", "15", "100", "0 2 0"},
      {"slower than fast", "spi_transport/target0:0:3", "0", "15", "100.4", "0 0 0"},
      {"wide and faster", "spi_transport/target0:0:3", "1", "63", "12.5", "0 2 32"},
      {"no known period", "spi_transport/target0:0:3", "1", "63", "reserved", "0 0 32"},
      {"nonsense", "spi_transport/target0:0:3", "11", "-1", "", "0 0 0"},
      {"another bus", "spi_transport/target10:0:3", "1", "63", "25", "0 0 0"},
      {"another channel", "spi_transport/target0:1:3", "1", "63", "25", "0 0 0"},
      {"serial", "sas_device/end_device-0:0", "1", "63", "25", "0 0 0"},
  };
  for (auto const& row : cases) {
    RecordedTree tree;
    WriteHosts(tree);
    std::string const folder = std::string("/sys/class/") + row.folder;
    tree.Write(folder + "/width", std::string(row.width) + "\n");
    tree.Write(folder + "/offset", std::string(row.offset) + "\n");
    tree.Write(folder + "/period", std::string(row.period) + "\n");
    EXPECT_EQ(Text(*tree.Machine()->Scsi().Bus(0)), row.bus) << row.name;
  }
}

TEST(CapturedScsi, WhatIsMalformedOrMissingSaysSo) {
  using enum Outcome;
  auto const buses = [](std::string const& value) { return "<key>SCSIBuses</key>" + value; };
  auto const bus = [&buses](std::string const& entries) {
    return buses("<array><dict>" + entries + "</dict></array>");
  };
  auto const targets = [&bus](std::string const& entries) {
    return bus("<key>Targets</key><array><dict>" + entries + "</dict></array>");
  };
  auto const target = [&targets](std::string const& entries) {
    return targets("<key>Target</key><integer>3</integer>" + entries);
  };
  struct {
    char const* name;
    std::string entries;
    Outcome of_bus, of_target;  // bus 0, target 3
  } const cases[] = {
      {"nothing", "", kAbsent, kAbsent},
      {"a reason",
       "<key>Absent</key><dict><key>SCSIBuses.0.3</key><string>timed out</string>"
       "<key>SCSIBuses</key><string>permission refused</string></dict>",
       kPermissionRefused, kTimedOut},
      {"no array", buses("<dict/>"), kMalformed, kMalformed},
      {"no bus", buses("<array/>"), kAbsent, kAbsent},
      {"a bus that is text", buses("<array><string>bus</string></array>"), kMalformed, kMalformed},
      {"a gap", bus("<key>Reason</key><string>timed out</string>"), kTimedOut, kTimedOut},
      {"an empty bus", bus(""), kAnswered, kAbsent},
      {"a large version", bus("<key>Version</key><integer>256</integer>"), kMalformed, kAbsent},
      {"negative flags", bus("<key>FeatureFlags</key><integer>-1</integer>"), kMalformed, kAbsent},
      {"a text as inquiry", bus("<key>HBAInquiry</key><string>32</string>"), kMalformed, kAbsent},
      {"no list of targets", bus("<key>Targets</key><integer>3</integer>"), kAnswered, kMalformed},
      {"no target number", targets("<key>Inquiry</key><data>AAA=</data>"), kAnswered, kMalformed},
      {"a large target", targets("<key>Target</key><integer>259</integer>"), kAnswered, kMalformed},
      {"another target", targets("<key>Target</key><integer>4</integer>"), kAnswered, kAbsent},
      {"a target without data", target(""), kAnswered, kMalformed},
      {"empty data", target("<key>Inquiry</key><data></data>"), kAnswered, kMalformed},
      {"a silent target", target("<key>Reason</key><string>timed out</string>"), kAnswered,
       kTimedOut},
      {"data", target("<key>Inquiry</key><data>AAA=</data>"), kAnswered, kAnswered},
  };
  for (auto const& row : cases) {
    RecordedTree tree;
    SharedMachine const machine = Documented(tree, row.entries);
    ASSERT_NE(machine, nullptr) << row.name;
    EXPECT_EQ(machine->Scsi().Bus(0).outcome(), row.of_bus) << row.name;
    EXPECT_EQ(machine->Scsi().Inquiry(0, 3).outcome(), row.of_target) << row.name;
    machine->Scsi().BusNumbers();
    machine->Scsi().TargetNumbers(0);
  }
}

// Everything that can be asked of the buses, on a line each.
std::vector<std::string> Answers(Machine const& machine) {
  std::vector<std::string> answers;
  for (std::uint8_t const bus : {0, 1, 2, 9, 10, 255}) {
    std::string const name = std::to_string(bus);
    auto const told = machine.Scsi().Bus(bus);
    answers.push_back(name + ": " + (told ? Text(*told) : std::string(NameOf(told.outcome()))));
    for (std::uint8_t const target : {0, 3, 7}) {
      auto const data = machine.Scsi().Inquiry(bus, target);
      answers.push_back(name + ":" + std::to_string(target) + ": " +
                        (data ? *data : std::string(NameOf(data.outcome()))));
    }
  }
  return answers;
}

TEST(RecordedScsi, AnswersAsTheMachineDid) {
  RecordedTree tree, captures;
  WriteHosts(tree);
  tree.Write("/sys/class/spi_transport/target2:0:3/width", "1\n");
  for (char const* device : {"0:0:0:0", "0:0:7:0", "2:0:3:0"}) WriteInquiry(tree, device, kDisk);
  WriteInquiry(tree, "0:0:3:0", "");
  std::vector<std::string> const expected = Answers(*tree.Machine());
  ASSERT_EQ(std::ranges::count(expected, "2: 0 0 32"), 1);
  ASSERT_EQ(std::ranges::count(expected, "0:3: malformed"), 1);

  EXPECT_EQ(Answers(*RecordedWhole(tree.Machine(), captures.At("/everything"))), expected);
  machine::Recorder asked(tree.Machine());
  Answers(*asked.RecordingMachine());
  EXPECT_EQ(Answers(*Recorded(asked, captures.At("/asked"))), expected);
}

TEST(RecordedScsi, TellsWhatWasNotAskedFromWhatIsNotThere) {
  RecordedTree tree, captures;
  WriteHosts(tree);
  WriteInquiry(tree, "2:0:3:0", kDisk);
  machine::Recorder asked(tree.Machine());
  asked.RecordingMachine()->Scsi().Inquiry(2, 3);
  SharedMachine const few = Recorded(asked, captures.At("/asked"));
  SharedMachine const all = RecordedWhole(tree.Machine(), captures.At("/everything"));
  EXPECT_EQ(few->Scsi().Inquiry(2, 3).value(), kDisk);
  EXPECT_THAT(*few->Scsi().BusNumbers(), ElementsAre(2));
  EXPECT_EQ(few->Scsi().Bus(0).absence().where, "not recorded");
  EXPECT_EQ(few->Scsi().Bus(10).absence().where, "not recorded");
  EXPECT_EQ(few->Scsi().Inquiry(2, 4).absence().where, "not recorded");
  EXPECT_THAT(*all->Scsi().BusNumbers(), ElementsAre(0, 2, 10));
  EXPECT_THAT(*all->Scsi().TargetNumbers(2), ElementsAre(3));
  EXPECT_EQ(all->Scsi().Bus(1).absence().where, "no such bus");
  EXPECT_EQ(all->Scsi().Bus(11).absence().where, "no such bus");
  EXPECT_EQ(all->Scsi().Inquiry(2, 4).absence().where, "no such target");
}

}  // namespace
