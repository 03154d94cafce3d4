#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>

#include <fstream>
#include <set>
#include <sstream>
#include <thread>
#include <tuple>

#include "machine/live/worker.h"
#include "tests/machine/recorded_capture.h"
#include "tests/portable_inspectors/program_output.h"
#include "tests/support/scripted_machine.h"
#include "tests/support/scripted_volumes.h"

namespace {

using machine::Links;
using machine::Outcome;
using machine::Volume;
using machine::VolumeFacts;
using machine::live::IsAnyCallAbandoned;
using machine::live::RunWithin;
using namespace std::chrono_literals;

// "name mount-point", one after the other.
std::vector<std::string> Listed(machine::Machine const& machine) {
  std::vector<std::string> listed;
  auto const volumes = machine.Volumes().Volumes();
  if (!volumes) return {std::string(NameOf(volumes.outcome()))};
  for (Volume const& volume : **volumes) listed.push_back(volume.name + " " + volume.mount_point);
  return listed;
}

TEST(MountedVolumes, AreTheMountsThatHoldFilesAndCanBeReached) {
  constexpr char kBefore[] = "2 1 0:5 / /proc rw - proc proc rw\n";
  constexpr char kRoot[] = "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n";
  std::string const users = "fuse.files f rw,user_id=" + std::to_string(::geteuid() + 1);
  struct {
    char const* what;
    std::string table;
    std::vector<std::string> listed;
  } const rows[] = {
      {"escapes", "3 1 8:2 / /a\\040b\\134c rw shared:2 - ext4 /dev/sdb1 rw\n", {"a b\\c /a b\\c"}},
      {"memory", "3 1 0:9 / /tmp rw - tmpfs tmpfs rw\n", {"tmp /tmp"}},
      {"pseudo", "3 1 0:9 / /sys rw - sysfs sysfs rw\n", {}},
      {"second place",
       "3 1 8:2 / /a rw - xfs /dev/sdb1 rw\n4 1 8:2 / /b rw - xfs /dev/sdb1 rw\n",
       {"a /a"}},
      {"from within", "3 1 8:2 /in /a rw - ext4 /dev/sdb1 rw\n", {}},
      {"part of a btrfs", "3 1 0:7 /@home /home rw - btrfs /dev/sdb1 rw\n", {"home /home"}},
      {"covered",
       "3 1 0:7 / /a rw - tmpfs x rw\n4 3 0:8 / /a rw - tmpfs y rw\n5 4 0:9 / /a/b rw - tmpfs z "
       "rw\n",
       {"a /a", "b /a/b"}},
      {"way covered",
       "3 1 0:7 / /a/b rw - tmpfs x rw\n4 3 0:8 / /a/b/c rw - tmpfs y rw\n"
       "5 1 0:9 / /a rw - tmpfs z rw\n",
       {"a /a"}},
      {"of another user", "3 1 0:7 / /a rw - " + users + "\n", {}},
      {"open to all", "3 1 0:7 / /a rw - " + users + ",allow_other\n", {"a /a"}},
      {"circle", "3 4 0:7 / /a rw - tmpfs x rw\n4 3 0:8 / /b rw - tmpfs x rw\n", {"a /a", "b /b"}},
      {"labels",
       "3 1 8:2 / /a rw - ext4 /dev/sdz1 rw\n4 1 8:3 / /b rw - ext4 /dev/mapper/vg-b rw\n",
       {"My Disk/1 /a", "b%zz /b"}},
      {"broken", "3 1\n\n- - - - - - -\n3 1 8:2 / /a rw - ext4 /dev/sdc rw\n", {"a /a"}},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.what);
    RecordedTree const tree;
    tree.Link("/dev/disk/by-label/My\\x20Disk\\x2f1", "../../sdz1");
    tree.Link("/dev/disk/by-label/b%zz", "../../dm-0");
    tree.Link("/dev/mapper/vg-b", "../dm-0");
    tree.Write("/proc/self/mountinfo", kBefore + row.table + kRoot);
    auto expected = row.listed;
    expected.insert(expected.begin(), "System /");
    EXPECT_EQ(Listed(*tree.Machine()), expected);
  }
  EXPECT_THAT(Listed(*RecordedTree().Machine()), testing::ElementsAre("System /"));
}

TEST(MountedVolumes, TellWhatDfTells) {
  machine::Machine const& live = machine::CurrentMachine();
  auto const volumes = live.Volumes().Volumes();
  ASSERT_TRUE(volumes);
  EXPECT_EQ((*volumes)->front().mount_point, "/");
  for (Volume const& volume : **volumes) {
    SCOPED_TRACE(volume.mount_point);
    auto const facts = live.Volumes().FactsOf(volume);
    std::istringstream told(FirstLineOf("df -B1 --output=size,iused '" + volume.mount_point +
                                        "' 2>/dev/null | tail -n 1"));
    std::uint64_t size = 0, files = 0;
    if (!facts || !(told >> size >> files)) continue;
    EXPECT_EQ(facts->total_bytes, size);
    EXPECT_NEAR(static_cast<double>(facts->files.value_or(0)), static_cast<double>(files), 1e4);
    EXPECT_FALSE(facts->folders);
    auto const status = live.Files().Status(volume.mount_point, machine::Links::kKeep);
    EXPECT_EQ(volume.mount, status->mount);
    EXPECT_EQ(facts->modified->seconds, status->modification.seconds);
  }
}

TEST(MountedVolumes, AreThoseThatFindmntFinds) {
  std::string const found = OutputOf("findmnt -D -n -r -o MAJ:MIN,TARGET,FSTYPE,FSROOT");
  if (found.empty()) GTEST_SKIP() << "no findmnt";
  std::set<std::string> expected = {"/"}, devices;
  std::istringstream lines(found);
  for (std::string device, target, type, root; lines >> device >> target >> type >> root;) {
    if (target == "/") devices.insert(device);
    if (type == "devtmpfs" || root != "/" || target.find('\\') != std::string::npos) continue;
    if (devices.insert(device).second) expected.insert(target);
  }
  std::set<std::string> listed;
  for (Volume const& volume : **machine::CurrentMachine().Volumes().Volumes()) {
    if (volume.mount_point.find(' ') == std::string::npos) listed.insert(volume.mount_point);
  }
  EXPECT_EQ(listed, expected);
}

// In a child with mounts of its own, which end with it. The value it returns is 0, or the line of
// the first expectation that failed, or `kRefused`.
constexpr int kRefused = 255;
#define CHECK_IN_CHILD(condition) \
  if (!(condition)) return __LINE__ % kRefused

int InChildWithMounts(int (*check)(RecordedTree const&)) {
  RecordedTree const tree;
  std::filesystem::create_directories(tree.At("/a"));
  std::filesystem::create_directories(tree.At("/b"));
  pid_t const child = ::fork();
  if (child == 0) {
    bool const may_mount = ::unshare(CLONE_NEWNS) == 0 &&
                           ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    ::_exit(may_mount ? check(tree) : kRefused);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int SeeMountsComeAndGo(RecordedTree const& tree) {
  auto const machine = machine::MakeLiveMachine();
  auto const before = Listed(*machine);
  CHECK_IN_CHILD(*machine->Volumes().Volumes() == *machine->Volumes().Volumes());
  if (::mount("x", tree.At("/a").c_str(), "tmpfs", MS_RDONLY, "size=8k") != 0) return kRefused;
  auto const volumes = machine->Volumes().Volumes();
  CHECK_IN_CHILD((*volumes)->size() == before.size() + 1);
  Volume const added = (*volumes)->back();
  CHECK_IN_CHILD(added.name == "a" && added.mount_point == tree.At("/a"));
  auto const facts = machine->Volumes().FactsOf(added);
  CHECK_IN_CHILD(facts && facts->total_bytes == 8192u);
  CHECK_IN_CHILD(facts->flags == machine::kVolumeIsReadOnly);
  CHECK_IN_CHILD(::umount(tree.At("/a").c_str()) == 0);
  CHECK_IN_CHILD(Listed(*machine) == before);
  CHECK_IN_CHILD(machine->Volumes().FactsOf(added).outcome() == Outcome::kAbsent);
  return 0;
}

// A file system that never answers, as that of a server that is gone.
bool MountADeadOne(std::string const& point) {
  int const device = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
  std::string const options =
      "fd=" + std::to_string(device) + ",rootmode=40000,user_id=0,group_id=0";
  return ::mount("x", point.c_str(), "fuse.dead", 0, options.c_str()) == 0;
}

int AskADeadVolume(RecordedTree const& tree) {
  std::string const dead = tree.At("/a");
  if (!MountADeadOne(dead)) return kRefused;
  auto const machine = machine::MakeLiveMachine();
  auto const started = std::chrono::steady_clock::now();
  AnnouncementLog const log;
  for (int i = 0; i < 5; ++i) {
    for (Volume const& volume : **machine->Volumes().Volumes()) {
      bool const is_dead = volume.mount_point == dead;
      auto const facts = machine->Volumes().FactsOf(volume);
      CHECK_IN_CHILD((facts.outcome() == Outcome::kTimedOut) == is_dead);
    }
  }
  CHECK_IN_CHILD(std::chrono::steady_clock::now() - started < 8s);
  CHECK_IN_CHILD(
      std::count(log.entries.begin(), log.entries.end(), std::pair(dead, Outcome::kTimedOut)) == 5);
  CHECK_IN_CHILD(IsAnyCallAbandoned());
  return 0;
}

// Whoever asks for a file there first waits for it, and nobody after.
int AskForFilesOfADeadVolume(RecordedTree const& tree) {
  std::string const dead = tree.At("/a");
  if (!MountADeadOne(dead)) return kRefused;
  auto const machine = machine::MakeLiveMachine();
  machine::FileSource const& files = machine->Files();
  std::string const beside = tree.At("/a-file"), link = tree.At("/link"), parent = tree.At("/");
  tree.Link("/link", "a");
  std::ofstream(beside) << "x";
  auto const started = std::chrono::steady_clock::now();
  for (std::string const& path : {dead, dead + "/x", parent + "b/..//a/x"}) {
    CHECK_IN_CHILD(files.Status(path, Links::kKeep).outcome() == Outcome::kTimedOut);
    CHECK_IN_CHILD(files.Describe(path, Links::kFollow).outcome() == Outcome::kTimedOut);
    CHECK_IN_CHILD(files.CanonicalFolder(path).outcome() == Outcome::kTimedOut);
    CHECK_IN_CHILD(files.OpenFolder(path).outcome() == Outcome::kTimedOut);
    CHECK_IN_CHILD(files.CreateFile(path, 0600).outcome() == Outcome::kTimedOut);
  }
  for (std::string const& path : {beside, link}) {
    CHECK_IN_CHILD(files.Status(path, Links::kKeep).outcome() == Outcome::kAnswered);
  }
  auto const folder = files.OpenFolder(parent);
  CHECK_IN_CHILD(folder.outcome() == Outcome::kAnswered);
  CHECK_IN_CHILD((*folder)->OpenFolder("a").outcome() == Outcome::kTimedOut);
  int count = 0;
  while (*(*folder)->Next(machine::Detail::kAll) != nullptr) ++count;
  CHECK_IN_CHILD(count == 3);  // all but the dead one
  CHECK_IN_CHILD(std::chrono::steady_clock::now() - started < 4s);
  CHECK_IN_CHILD(::umount2(dead.c_str(), MNT_DETACH) == 0);
  std::this_thread::sleep_for(1100ms);
  CHECK_IN_CHILD(files.Status(dead, Links::kKeep).outcome() == Outcome::kAnswered);
  return 0;
}

using MountCheck = std::pair<char const*, int (*)(RecordedTree const&)>;
class MountsOfOnesOwn : public testing::TestWithParam<MountCheck> {};

TEST_P(MountsOfOnesOwn, AreToldOfInTime) {
  int const line = InChildWithMounts(GetParam().second);
  if (line == kRefused) GTEST_SKIP() << "may not mount";
  EXPECT_EQ(line, 0);
}

INSTANTIATE_TEST_SUITE_P(All, MountsOfOnesOwn,
                         testing::Values(MountCheck("ComeAndGo", SeeMountsComeAndGo),
                                         MountCheck("DeadOneIsWaitedForOnce", AskADeadVolume),
                                         MountCheck("DeadOneHangsNoQuestionForFiles",
                                                    AskForFilesOfADeadVolume)),
                         [](auto const& info) { return info.param.first; });

TEST(Worker, AbandonsWhatDoesNotReturn) {
  RecordedTree const tree;
  std::string const pipe = tree.At("/pipe");
  tree.MakeFifo("/pipe");
  auto const hang = [pipe] { ::close(::open(pipe.c_str(), O_RDONLY | O_CLOEXEC)); };
  EXPECT_FALSE(RunWithin(20ms, pipe, hang));
  EXPECT_TRUE(IsAnyCallAbandoned());
  EXPECT_FALSE(RunWithin(1h, pipe, [] { ADD_FAILURE() << "begun beside the one that hangs"; }));
  bool is_done = false;
  EXPECT_TRUE(RunWithin(1h, "another", [&] { is_done = true; }));
  EXPECT_TRUE(is_done);

  ::close(::open(pipe.c_str(), O_WRONLY | O_CLOEXEC));
  for (int i = 0; i < 1000 && IsAnyCallAbandoned(); ++i) std::this_thread::sleep_for(5ms);
  EXPECT_FALSE(IsAnyCallAbandoned());
  EXPECT_EQ(machine::live::AskWithin(1h, pipe, [] { return 5; }), 5);
}

// All that a machine tells of a volume, to compare.
std::string Told(machine::Machine const& machine, Volume const& volume) {
  std::string const listed = testing::PrintToString(std::tuple(
      volume.name, volume.mount_point, volume.mount, volume.device, volume.other_mounts));
  auto const facts = machine.Volumes().FactsOf(volume);
  if (!facts) return listed + std::string(NameOf(facts.outcome())) + facts.absence().source;
  auto const time = [](std::optional<machine::FileTime> const& time) {
    return time ? std::pair(time->seconds, time->nanoseconds) : std::pair(INT64_MIN, 0u);
  };
  return listed + testing::PrintToString(std::tuple(
                      facts->total_bytes, facts->free_bytes, facts->block_bytes, facts->files,
                      facts->folders, facts->flags, time(facts->created), time(facts->modified)));
}

TEST(CapturedVolumes, AreWhatWasRecorded) {
  auto const script = std::make_shared<ScriptedMachine>();
  auto const volumes = std::make_shared<ScriptedVolumes>();
  script->volumes = volumes;
  using Time = machine::FileTime;
  VolumeFacts const whole = {UINT64_MAX, 1,      512, 3, 4, Time{-5, 999'999'999},
                             Time{1, 0}, 0x8080, {}};
  volumes->Add({"System", "/", 27, 2049, {31, 32}}, whole);
  volumes->Add({"d\xFF", "/dead", 28, 5, {}}, machine::Absence{Outcome::kTimedOut, "/dead", {}});
  volumes->facts.emplace("/proc", VolumeFacts());
  Volume const proc = {"proc", "/proc", 40, 6, {}};

  machine::Recorder recorder(script);
  recorder.RecordEverything();
  recorder.RecordingMachine()->Volumes().FactsOf(proc);
  RecordedTree const tree;
  auto const capture = Recorded(recorder, tree.At("/"));
  auto const again = capture->Volumes().Volumes();
  ASSERT_TRUE(again);
  ASSERT_EQ((*again)->size(), 2u);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(Told(*capture, (**again)[i]), Told(*script, volumes->volumes[i]));
  }
  EXPECT_EQ(Told(*capture, proc), Told(*script, proc));
}

TEST(CapturedVolumes, MayBeWrittenByHand) {
  auto const volume = [](std::string const& name, std::string const& point) {
    return "<dict><key>Name</key><string>" + name + "</string><key>MountPoint</key><string>" +
           point + "</string></dict>";
  };
  std::string const root = volume("R", "/");
  std::string const nameless = "<dict><key>MountPoint</key><string>/A</string></dict>";
  struct {
    char const* what;
    std::string volumes;
    std::vector<std::string> listed;
  } const rows[] = {
      {"root last", volume("A", "/Volumes/A") + root, {"R /", "A /Volumes/A"}},
      {"twice", root + root, {"R /"}},
      {"slash at the end", volume("A", "/A//"), {"A /A"}},
      {"none", "", {}},
      {"no name", nameless, {"malformed"}},
      {"no name beside one", nameless + root, {"R /"}},
      {"no place", "<dict><key>Name</key><string>A</string></dict>", {"malformed"}},
      {"relative", volume("A", "a"), {"malformed"}},
      {"no dictionary", "<string>A</string>", {"malformed"}},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.what);
    RecordedTree const tree;
    EXPECT_EQ(Listed(*Documented(tree, "<key>Volumes</key><array>" + row.volumes + "</array>")),
              row.listed);
  }
  RecordedTree const tree;
  auto const capture = Documented(tree, R"(<key>Volumes</key><array>
      <dict><key>Name</key><string>A</string><key>MountPoint</key><string>/Volumes/A</string>
        <key>TotalBytes</key><integer>1000</integer>
        <key>Created</key><date>2001-01-01T00:00:00Z</date></dict>
      <dict><key>Name</key><string>B</string><key>MountPoint</key><string>/B</string>
        <key>FreeBytes</key><integer>-1</integer></dict></array>)");
  auto const facts = capture->Volumes().FactsOf({"A", "/Volumes/A", 0, 0, {}});
  EXPECT_EQ(facts->total_bytes, 1000u);
  EXPECT_EQ(facts->created->seconds, 978'307'200);
  EXPECT_FALSE(facts->free_bytes || facts->files || facts->modified);
  EXPECT_EQ(capture->Volumes().FactsOf({"B", "/B", 0, 0, {}}).outcome(), Outcome::kMalformed);
  EXPECT_EQ(capture->Volumes().FactsOf({"C", "/C", 0, 0, {}}).outcome(), Outcome::kAbsent);
}

TEST(CapturedVolumes, ABareMacOSVolumeIsOne) {
  RecordedTree const tree;
  std::string const services = "/System/Library/CoreServices/";
  tree.Write(services + "SystemVersion.plist", "<plist><dict/></plist>");
  EXPECT_THAT(Listed(*OpenedCapture(tree.At(""))), testing::ElementsAre("System /"));
  tree.Write(services + ".disk_label.contentDetails", "Macintosh HD\n");
  auto const volume = OpenedCapture(tree.At(""));
  EXPECT_THAT(Listed(*volume), testing::ElementsAre("Macintosh HD /"));
  auto const facts = volume->Volumes().FactsOf((*volume->Volumes().Volumes())->front());
  ASSERT_TRUE(facts);
  EXPECT_FALSE(facts->total_bytes || facts->files);
  EXPECT_TRUE(facts->modified);
}

}  // namespace
