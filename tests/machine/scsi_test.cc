#include "machine/scsi.h"

#include <algorithm>

#include "tests/machine/recorded_capture.h"

namespace {

using machine::Machine;
using machine::Outcome;
using machine::ScsiBus;
using testing::ElementsAre;

std::string Text(ScsiBus const& bus) {
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
  for (int target : {1, 3, 4}) {
    EXPECT_EQ(machine->Scsi().Inquiry(0, static_cast<std::uint8_t>(target)).outcome(),
              Outcome::kAbsent);
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
  using namespace std::string_literals;
  static constexpr char kBuses[] = "<key>SCSIBuses</key>";
  static constexpr char kTarget[] = "<key>Target</key><integer>3</integer>";
  auto const bus = [](std::string const& entries) {
    return kBuses + ("<array><dict>" + entries) + "</dict></array>";
  };
  auto const targets = [&bus](std::string const& entries) {
    return bus("<key>Targets</key><array><dict>" + entries + "</dict></array>");
  };
  struct {
    char const* name;
    std::string entries;
    Outcome of_bus, of_target;  // bus 0, target 3
  } const cases[] = {
      {"nothing", "", Outcome::kAbsent, Outcome::kAbsent},
      {"a reason",
       "<key>Absent</key><dict><key>SCSIBuses.0.3</key><string>timed out</string>"
       "<key>SCSIBuses</key><string>permission refused</string></dict>",
       Outcome::kPermissionRefused, Outcome::kTimedOut},
      {"no array", kBuses + "<dict/>"s, Outcome::kMalformed, Outcome::kMalformed},
      {"no bus", kBuses + "<array/>"s, Outcome::kAbsent, Outcome::kAbsent},
      {"a bus that is text", kBuses + "<array><string>bus</string></array>"s, Outcome::kMalformed,
       Outcome::kMalformed},
      {"a gap", bus("<key>Reason</key><string>timed out</string>"), Outcome::kTimedOut,
       Outcome::kTimedOut},
      {"an empty bus", bus(""), Outcome::kAnswered, Outcome::kAbsent},
      {"a large version", bus("<key>Version</key><integer>256</integer>"), Outcome::kMalformed,
       Outcome::kAbsent},
      {"negative flags", bus("<key>FeatureFlags</key><integer>-1</integer>"), Outcome::kMalformed,
       Outcome::kAbsent},
      {"a text as inquiry", bus("<key>HBAInquiry</key><string>32</string>"), Outcome::kMalformed,
       Outcome::kAbsent},
      {"targets that are none", bus("<key>Targets</key><integer>3</integer>"), Outcome::kAnswered,
       Outcome::kMalformed},
      {"a target without number", targets("<key>Inquiry</key><data>AAA=</data>"),
       Outcome::kAnswered, Outcome::kMalformed},
      {"a large target", targets("<key>Target</key><integer>259</integer>"), Outcome::kAnswered,
       Outcome::kMalformed},
      {"another target", targets("<key>Target</key><integer>4</integer>"), Outcome::kAnswered,
       Outcome::kAbsent},
      {"a target without data", targets(kTarget), Outcome::kAnswered, Outcome::kMalformed},
      {"empty data", targets(kTarget + std::string("<key>Inquiry</key><data></data>")),
       Outcome::kAnswered, Outcome::kMalformed},
      {"a target with a reason",
       targets(kTarget + std::string("<key>Reason</key><string>timed out</string>")),
       Outcome::kAnswered, Outcome::kTimedOut},
      {"data", targets(kTarget + std::string("<key>Inquiry</key><data>AAA=</data>")),
       Outcome::kAnswered, Outcome::kAnswered},
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
  auto const add = [&answers](std::string const& what, auto const& fact, auto&& text) {
    answers.push_back(what + ": " +
                      (fact ? text(*fact) : std::string(NameOf(fact.absence().reason))));
  };
  for (std::uint8_t const bus : {0, 1, 2, 9, 10, 255}) {
    add(std::to_string(bus), machine.Scsi().Bus(bus), Text);
    for (std::uint8_t const target : {0, 3, 7}) {
      add(std::to_string(bus) + ":" + std::to_string(target), machine.Scsi().Inquiry(bus, target),
          [](std::string const& data) { return data; });
    }
  }
  return answers;
}

TEST(RecordedScsi, AnswersAsTheMachineDid) {
  RecordedTree tree;
  WriteHosts(tree);
  tree.Write("/sys/class/spi_transport/target2:0:3/width", "1\n");
  for (char const* device : {"0:0:0:0", "0:0:7:0", "2:0:3:0"}) WriteInquiry(tree, device, kDisk);
  WriteInquiry(tree, "0:0:3:0", "");
  std::vector<std::string> const expected = Answers(*tree.Machine());
  ASSERT_EQ(std::ranges::count(expected, "2: 0 0 32"), 1);
  ASSERT_EQ(std::ranges::count(expected, "0:3: malformed"), 1);

  RecordedTree captures;
  EXPECT_EQ(Answers(*RecordedWhole(tree.Machine(), captures.At("/everything"))), expected);
  machine::Recorder asked(tree.Machine());
  Answers(*asked.RecordingMachine());
  EXPECT_EQ(Answers(*Recorded(asked, captures.At("/asked"))), expected);
}

TEST(RecordedScsi, TellsWhatWasNotAskedFromWhatIsNotThere) {
  RecordedTree tree;
  WriteHosts(tree);
  WriteInquiry(tree, "2:0:3:0", kDisk);
  RecordedTree captures;
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
