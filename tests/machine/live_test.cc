
#include <thread>

#include "machine/file_descriptor.h"
#include "tests/machine/on_recorded_tree.h"
#include "tests/portable_inspectors/program_output.h"
#include "tests/support/scripted_machine.h"

namespace {

using machine::Outcome;
using testing::Contains;
using testing::ElementsAre;
using testing::Pair;

using Live = OnRecordedTree;

TEST_F(Live, MemoryIsThatOfTheFirmwareThenTheBlocksThenTheKernel) {
  auto const bytes = [&] { return machine->Memory().PhysicalBytes(); };
  EXPECT_EQ(bytes().outcome(), Outcome::kAbsent);
  tree.Write("/proc/meminfo", "MemFree: 1 kB\nMemTotal:     2000001 kB\nSwapTotal: 8 kB\n");
  EXPECT_EQ(bytes().value(), 2000001u * 1024);
  EXPECT_EQ(machine->Memory().SwapBytes().value(), 8192u);
  tree.Write("/sys/devices/system/memory/block_size_bytes", "8000000\n");
  for (char const* name : {"memory0", "memory17", "memory_other"}) {
    tree.Write(std::string("/sys/devices/system/memory/") + name + "/state", "online\n");
  }
  EXPECT_EQ(bytes().value(), 2u << 27);

  auto const device = [](int size, unsigned extended) {
    std::string fields(34, '\0');
    fields[0] = 17, fields[1] = 34;
    fields[12] = static_cast<char>(size), fields[13] = static_cast<char>(size >> 8);
    for (int i = 0; i < 4; ++i) fields[28 + i] = static_cast<char>(extended >> (8 * i));
    return fields + std::string("A\0B\0\0", 5);
  };
  std::string const devices = std::string("\0\4\0\0\0\0", 6) + device(4096, 0) + device(0, 0) +
                              device(0x7fff, 65536) + device(0x8400, 0);
  constexpr int kUnknownSize = 0xffff;
  std::pair<std::string, std::uint64_t> const tables[] = {
      {devices, (4096ull + 65536 + 1) << 20},
      {devices + device(kUnknownSize, 0), 2u << 27},
      {std::string("\x11\xff\0\0", 4), 2u << 27}};
  for (auto const& [table, expected] : tables) {
    tree.Write("/sys/firmware/dmi/tables/DMI", table);
    EXPECT_EQ(bytes().value(), expected) << table.size();
  }
}

TEST_F(Live, MemoryRefusesWhatIsMalformed) {
  for (char const* text :
       {"MemTotal: x kB\n", "MemTotal: 12\n", "MemTotal: 99999999999999999999 kB",
        "MemTotal: 18446744073709551615 kB\n"}) {
    tree.Write("/proc/meminfo", text);
    auto const fact = tree.Machine()->Memory().PhysicalBytes();
    EXPECT_EQ(fact.outcome(), Outcome::kMalformed) << text;
    EXPECT_EQ(fact.absence().where, "MemTotal");
  }
}

TEST_F(Live, ProcessorsAreReadFromTheirList) {
  using enum machine::Architecture;
  struct {
    char const* info;
    machine::Architecture kind;
    std::uint32_t count, megahertz, version;  // 0: none
  } const cases[] = {
      {"processor\t: 0\ncpu family\t: 6\ncpu MHz\t\t: 800.2\n\nprocessor\t: 1\ncpu MHz\t\t: "
       "2799.998\n",
       kX86, 2, 2800, 0},
      {"processor\t: 0\ncpu\t\t: 7447A, altivec supported\nclock\t\t: 1499.999994MHz\nrevision\t: "
       "1.1 (pvr 8003 0101)\n",
       kPowerPC, 1, 1500, 0x80030101},
      {"processor\t: 0\nCPU implementer\t: 0x41\nCPU revision\t: 3\n", kOther, 1, 0, 0},
  };
  auto const known = [](auto const& fact) { return fact ? *fact : 0; };
  for (auto const& row : cases) {
    SCOPED_TRACE(row.info);
    tree.Write("/proc/cpuinfo", row.info);
    auto const& processors = machine->Processors();
    EXPECT_EQ(processors.Kind().value(), row.kind);
    EXPECT_EQ(processors.OnlineCount().value(), row.count);
    EXPECT_EQ(known(processors.HighestMegahertz()), row.megahertz);
    EXPECT_EQ(known(processors.PowerPCVersion()), row.version);
  }
}

TEST_F(Live, ProcessorsAreCountedAndTimedBySysFirst) {
  tree.Write("/proc/cpuinfo", "processor: 0\ncpu MHz : 800\n");
  tree.Write("/sys/devices/system/cpu/online", "0-3,6,8-9\n");
  tree.Write("/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq", "3400000\n");
  tree.Write("/sys/devices/system/cpu/cpu1/cpufreq/cpuinfo_max_freq", "3600400\n");
  tree.Write("/sys/devices/system/cpu/cpuidle/cpufreq/cpuinfo_max_freq", "9900000\n");
  EXPECT_EQ(machine->Processors().OnlineCount().value(), 7u);
  EXPECT_EQ(machine->Processors().HighestMegahertz().value(), 3600u);
  tree.Write("/sys/devices/system/cpu/online", "3-1\n");
  EXPECT_EQ(machine->Processors().OnlineCount().value(), 1u);
}

TEST_F(Live, NamesFollowTheirFiles) {
  EXPECT_FALSE(machine->Names().ComputerName());
  tree.Write("/etc/hostname", "# comment\n\nbox.example.org\n");
  EXPECT_EQ(machine->Names().HostName().value(), "box.example.org");
  EXPECT_EQ(machine->Names().ComputerName().value(), "box");
  tree.Write("/etc/machine-info", "CHASSIS=server\nPRETTY_HOSTNAME=\"Ann's \\\"Box\\\"\"\n");
  EXPECT_EQ(machine->Names().ComputerName().value(), "Ann's \"Box\"");
  tree.Write("/etc/machine-info", "PRETTY_HOSTNAME=''\n");
  tree.Write("/proc/sys/kernel/hostname", "kernel\n");
  EXPECT_EQ(machine->Names().ComputerName().value(), "kernel");
}

TEST_F(Live, HardwareNamesTheProductAndTheFirstRootHub) {
  EXPECT_EQ(machine->Hardware().HasUsb().outcome(), Outcome::kAbsent);
  tree.Write("/sys/class/dmi/id/product_name", " PowerEdge R740 \n");
  tree.Write("/sys/bus/usb/devices/usb10/bcdDevice", "0601\n");
  tree.Write("/sys/bus/usb/devices/usb2/bcdDevice", "0510\n");
  tree.Write("/sys/bus/usb/devices/1-1/bcdDevice", "0100\n");
  EXPECT_EQ(machine->Hardware().ProductName().value(), "PowerEdge R740");
  EXPECT_EQ(machine->Hardware().UsbRelease().value(), 0x0510u);
}

TEST_F(Live, ProcessesAreListedByNumberWithWhateverName) {
  tree.Write("/proc/1/comm", "init\n");
  tree.Write("/proc/20/comm", "name of more than sixteen bytes\n");
  tree.Write("/proc/3/comm", "a\nb\xff\n\n");
  tree.Write("/proc/4/status", "a process that ended\n");
  tree.Write("/proc/self/comm", "no number\n");
  tree.Write("/proc/21/comm", "thread\n");
  tree.Write("/proc/21/status", "Name:\tthread\nTgid:\t20\n");
  std::vector<std::pair<int, std::string>> found;
  for (auto const& process : machine->Processes().AllProcesses().value()) {
    found.emplace_back(process.pid, process.name);
  }
  EXPECT_THAT(found, ElementsAre(Pair(1, "init"), Pair(3, "a\nb\xff\n"),
                                 Pair(20, "name of more tha"), Pair(21, "thread")));
  EXPECT_GE(machine->Processes().CountProcesses().value(), 5u);
  EXPECT_STREQ(machine->Processes().ProcessWithPid(20)->name, "name of more tha");
  for (int pid : {0, -1, 4, 21, 99}) {
    EXPECT_EQ(machine->Processes().ProcessWithPid(pid).outcome(), Outcome::kAbsent) << pid;
  }
}

TEST_F(Live, RootLetsNothingOutAndOpensOnlyRegularFiles) {
  std::string const path = "/sys/class/dmi/id/product_name";
  auto const name = [&] { return machine->Hardware().ProductName(); };
  tree.Write("/real", "inside\n");
  tree.Link(path, "/real");
  EXPECT_EQ(name().value(), "inside");
  for (char const* target :
       {"/etc/passwd", "../../../../../../../../etc/passwd", "/proc/self/exe"}) {
    std::filesystem::remove(tree.At(path));
    tree.Link(path, target);
    EXPECT_FALSE(name()) << target;
  }
  std::filesystem::remove(tree.At(path));
  tree.MakeFifo(path);
  EXPECT_EQ(name().outcome(), Outcome::kMalformed);
  std::filesystem::resize_file(tree.At("/real"), 17 << 20);
  std::filesystem::rename(tree.At("/real"), tree.At(path));
  EXPECT_EQ(name().outcome(), Outcome::kMalformed);
  EXPECT_FALSE(machine::MakeLiveMachine("/no/such/folder")->Memory().SwapBytes());
}

TEST_F(Live, ObserverHearsEverySourceOnItsOwnThread) {
  tree.Write("/etc/hostname", "box\n");
  AnnouncementLog log;
  std::thread([&] { machine->Names().HostName(); }).join();
  EXPECT_TRUE(log.entries.empty());
  machine->Names().HostName();
  EXPECT_THAT(log.entries, ElementsAre(Pair("/proc/sys/kernel/hostname", Outcome::kAbsent),
                                       Pair("/etc/hostname", Outcome::kAnswered)));
  EXPECT_EQ(log.bytes, 4u);
  machine->Clock().MicrosecondsSince1970();
  EXPECT_THAT(log.entries, Contains(Pair("clock", Outcome::kNotSupported)));
}

TEST_F(Live, SystemIsWhatTheTreeSays) {
  EXPECT_EQ(machine->System().SystemPlatform().outcome(), Outcome::kAbsent);
  tree.Write("/usr/lib/os-release", "PRETTY_NAME=x\nNAME=\"Some OS\"\nVERSION_ID='12'\n");
  EXPECT_EQ(machine->System().SystemPlatform().value(), machine::Platform::kLinux);
  EXPECT_THAT(*machine->System().Version(),
              ElementsAre(Pair("ProductName", "Some OS"), Pair("ProductVersion", "12")));
  EXPECT_EQ(machine->System().KernelRelease().outcome(), Outcome::kAbsent);
  tree.Write("/proc/sys/kernel/osrelease", "6.1.0\n");
  EXPECT_EQ(machine->System().Version()->at(2).second, "6.1.0");
  tree.Write("/etc/os-release", "NAME=Other\nBUILD_ID=77\n");
  EXPECT_THAT(*machine->System().Version(),
              ElementsAre(Pair("ProductName", "Other"), Pair("ProductBuildVersion", "77")));
  tree.Write("/etc/machine-id", "0123\n");
  EXPECT_EQ(machine->Names().HostIdentifier().value(), "0123");
  tree.Write("/System/Library/CoreServices/SystemVersion.plist", "");
  EXPECT_EQ(machine->System().SystemPlatform().value(), machine::Platform::kMacOS);
  EXPECT_EQ(machine->System().Version().outcome(), Outcome::kNotSupported);
}

TEST_F(Live, UsersAreThoseOfTheTree) {
  tree.Write("/etc/passwd", "ann:x:7:7:Ann:/home/ann:/bin/sh\nshort:x:8\nodd:x:9:9::here:\n");
  EXPECT_EQ(machine->Users().HomeOf("ann").value(), "/home/ann");
  EXPECT_EQ(machine->Users().HomeOf("short").outcome(), Outcome::kAbsent);
  EXPECT_EQ(machine->Users().HomeOf("odd").outcome(), Outcome::kMalformed);
  EXPECT_EQ(machine->Users().CurrentHome().outcome(), Outcome::kNotSupported);
}

TEST_F(Live, AgreesWithOtherPrograms) {
  machine::Machine const& live = machine::CurrentMachine();
  EXPECT_EQ(live.System().KernelRelease().value(), FirstLineOf("uname -r"));
  EXPECT_THAT(*live.System().Version(), Contains(Pair("Architecture", FirstLineOf("uname -m"))));
  EXPECT_EQ(live.Users().CurrentUser().value(), FirstLineOf("id -un"));
  EXPECT_EQ(live.Users().CurrentHome().value(), FirstLineOf("printf %s \"$HOME\""));
  EXPECT_EQ(live.Users().HomeOf("root").value(), FirstLineOf("getent passwd root | cut -d: -f6"));
  EXPECT_EQ(std::to_string(live.Clock().BootSecondsSince1970().value()),
            FirstLineOf("sed -n 's/^btime //p' /proc/stat"));
  EXPECT_EQ(std::to_string(live.Memory().SwapBytes().value() / 1024),
            FirstLineOf("awk '/^SwapTotal/ {print $2}' /proc/meminfo"));
  EXPECT_EQ(live.Environment().Variable("PATH").value(), FirstLineOf("printf %s \"$PATH\""));
  EXPECT_EQ(live.Environment().Variable("NO=SUCH").outcome(), Outcome::kAbsent);
  EXPECT_NEAR(static_cast<double>(*live.Clock().MicrosecondsSince1970()) / 1e6,
              std::stod(FirstLineOf("date +%s.%N")), 5);
}

}  // namespace
