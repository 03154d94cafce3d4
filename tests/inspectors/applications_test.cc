// Applications below folders and of the machine.
#include <sys/resource.h>

#include "inspectors/files/application.h"
#include "inspectors/users/user.h"
#include "tests/inspectors/asking.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/scripted_machine.h"
#include "tests/support/scripted_records.h"

namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::UnorderedElementsAre;

enum Order { kBig, kLittle };

std::string Words(Order order, std::initializer_list<std::uint32_t> words) {
  std::string bytes;
  for (std::uint32_t const word : words) {
    for (int i = 0; i < 32; i += 8)
      bytes += static_cast<char>(word >> (order == kBig ? 24 - i : i));
  }
  return bytes;
}

std::string Thin(Order order, std::uint32_t type, std::uint32_t magic = 0xFEEDFACF) {
  return Words(order, {magic, 7, 3, type, 1, 2, 3});
}

// Of two architectures, whose files have these types and lie at bytes 48 and 76.
std::string Universal(std::uint32_t count, std::uint32_t offset, std::uint32_t first,
                      std::uint32_t second = 6) {
  return Words(kBig, {0xCAFEBABE, count, 7, 3, offset, 28, 2, 12, 9, 76, 28, 2}) +
         Thin(kLittle, first) + Thin(kBig, second);
}

template <class... Start>
std::vector<std::string> NamesOf(Start const&... start) {
  auto const name = [](auto const& found) { return found.Item().Name().MakeUTF8String(); };
  return All(app_iterator(), name, start...);
}

std::vector<std::string> NamesBelow(std::string const& path) { return NamesOf(folder(path)); }

class Applications : public testing::Test {
 protected:
  RecordedTree tree_;
};

TEST_F(Applications, AreProgramsByTheirHeader) {
  std::string const universal = Universal(2, 48, 2);
  struct {
    char const* name;
    std::string content;
    bool is_program = false;
  } const cases[] = {
      {"32 bits, little", Thin(kLittle, 2, 0xFEEDFACE), true},
      {"32 bits, big", Thin(kBig, 2, 0xFEEDFACE), true},
      {"64 bits, little", Thin(kLittle, 2), true},
      {"64 bits, big, preloaded", Thin(kBig, 5), true},
      {"first of two", universal, true},
      {"first of eighteen", Universal(18, 48, 5), true},
      {"universal, little", Words(kLittle, {0xCAFEBABE, 1, 7, 3, 28, 28, 2}) + Thin(kBig, 2), true},
      {"library", Thin(kLittle, 6)},
      {"type in the other order", Thin(kLittle, 0x02000000)},
      {"text", "#!/bin/sh\nexec /Applications/Other.app/program\n"},
      {"second of two", Universal(2, 48, 6, 2)},
      {"as many as a Java version", Universal(19, 48, 2)},
      {"huge count", Universal(0xFFFFFFFF, 48, 2)},
      {"itself", Universal(2, 0, 2)},
      {"cut at the first", Universal(2, 48 + 29, 2, 2)},
      {"behind the end", Universal(2, 0xFFFFFFF0, 2)},
  };
  std::vector<std::string> expected;
  for (auto const& row : cases) {
    tree_.Write(row.name, row.content);
    if (row.is_program) expected.push_back(row.name);
  }
  for (std::size_t size = 0; size < 28; ++size) {
    tree_.Write("thin " + std::to_string(size), Thin(kBig, 2).substr(0, size));
    tree_.Write("universal " + std::to_string(size), universal.substr(0, 48 + size));
  }
  EXPECT_THAT(NamesBelow(tree_.Path()), testing::UnorderedElementsAreArray(expected));
}

TEST_F(Applications, AreBundlesWithoutWhatLiesInThem) {
  std::string const program = Thin(kLittle, 2), odd_name = "\xff\xfe.app";
  for (std::string const& name : {std::string("A.app"), odd_name, std::string("Upper.APP")}) {
    tree_.Write(name + "/Contents/PkgInfo", "APPL????");
    tree_.Write(name + "/in " + name, program);
  }
  tree_.Write("none.app/more/program", program);
  tree_.Link("linked.app", "A.app");
  tree_.Link("none.app/linked", "..");
  tree_.Link("loop", "loop");
  tree_.Link("link to program", "none.app/more/program");
  tree_.Link("link to nothing", "nothing");
  tree_.MakeFifo("fifo");
  tree_.Link("link to fifo", "fifo");
  AnnouncementLog log;
  EXPECT_THAT(NamesBelow(tree_.Path()), UnorderedElementsAre("A.app", odd_name, "in Upper.APP",
                                                             "program", "link to program"));
  using machine::Outcome;
  EXPECT_THAT(log.entries, Contains(Pair(tree_.Path("fifo"), Outcome::kMalformed)));
  EXPECT_THAT(log.entries, Contains(Pair(tree_.Path("loop"), testing::Ne(Outcome::kAnswered))));
  EXPECT_THAT(log.entries, Contains(Pair(tree_.Path("link to nothing"), Outcome::kAbsent)));
}

// Somebody else's programs for Macintosh, from a package registry; this wants the network.
TEST_F(Applications, AreThosePackagesThatTheFileProgramCallsExecutable) {
  std::string const fetch =
      "command -v file >/dev/null && cd " + tree_.Path() +
      " && timeout 60 npm pack --ignore-scripts --fetch-retries=0 @esbuild/darwin-x64@0.21.5 "
      "@esbuild/darwin-arm64@0.21.5 fsevents@2.3.3 >fetch.log 2>&1 && for package in *.tgz; do "
      "mkdir in-$package && tar xzf $package -C in-$package || exit 1; done";
  if (std::system(fetch.c_str()) != 0) GTEST_SKIP() << "no packages by npm, or no `file` program";
  std::string const judge = "cd " + tree_.Path() +
                            " && find . -type f -exec sh -c 'file -b \"$1\" | "
                            "grep -q \"Mach-O.* executable\" && basename \"$1\"' - {} \\; >judged";
  ASSERT_EQ(std::system(judge.c_str()), 0);
  std::string found;
  for (std::string const& name : NamesBelow(tree_.Path())) found += name + "\n";
  EXPECT_EQ(found, "esbuild\nesbuild\n");
  EXPECT_EQ(found, tree_.Read("judged"));
}

// The descriptors give out long before the folders do.
TEST_F(Applications, AreFoundWithFewOpenFiles) {
  constexpr int kDepth = 50;
  std::string path;
  for (int i = 0; i < kDepth; ++i) tree_.Write((path += "d/") + "program", Thin(kBig, 2));
  rlimit before;
  getrlimit(RLIMIT_NOFILE, &before);
  rlimit const few = {40, before.rlim_max};
  setrlimit(RLIMIT_NOFILE, &few);
  std::vector<std::string> const found = NamesBelow(tree_.Path());
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(found.size(), std::size_t{kDepth});
}

// A machine with several users, at a time that the test sets.
class MachineApplications : public Applications {
 protected:
  MachineApplications() {
    auto const live = tree_.Machine();
    machine_->files = std::shared_ptr<machine::FileSource const>(live, &live->Files());
    machine_->directory = directory_;
    SetSeconds(0);
    Install("/Applications/Tools/Example.app");
    Install("/home/a/Applications/Own.app");
    Install("/home/z/Applications/Last.app");
    for (char const* home : {"/home/a", "/home/none", "home/a", "", "/home/z", "/home/z"}) {
      directory_->Add(kUsersRecordType, home, {{"dsAttrTypeStandard:NFSHomeDirectory", {home}}});
    }
    directory_->Add("without home", {});
  }
  ~MachineApplications() override { RecordingEvaluator::Instance().on_check = nullptr; }

  void Install(std::string const& path) { tree_.Write(path + "/Contents/PkgInfo", "APPL????"); }
  void Remove(std::string const& path) { std::filesystem::remove_all(tree_.At(path)); }
  void SetSeconds(std::int64_t seconds) { machine_->microseconds = seconds * 1'000'000; }

  std::shared_ptr<ScriptedRecords> directory_ = std::make_shared<ScriptedRecords>();
  std::shared_ptr<ScriptedMachine> machine_ = std::make_shared<ScriptedMachine>();
  MachineInUse const use_{machine_};
};

TEST_F(MachineApplications, AreLookedForEveryThreeMinutes) {
  EXPECT_THAT(NamesOf(), UnorderedElementsAre("Example.app", "Own.app", "Last.app", "Last.app"));
  Install("/Applications/New.app");
  Remove("/home/z");
  SetSeconds(179);
  EXPECT_THAT(NamesOf(), UnorderedElementsAre("Example.app", "Own.app"));
  SetSeconds(180);
  EXPECT_THAT(NamesOf(), UnorderedElementsAre("Example.app", "Own.app", "New.app"));
  MachineInUse const without_clock(tree_.Machine());
  Remove("/Applications/New.app");
  Install("/Applications/Other.app");
  EXPECT_THAT(NamesOf(), UnorderedElementsAre("Example.app", "Other.app"));
  Install("/Applications/Newest.app");
  EXPECT_THAT(NamesOf(), Not(Contains("Newest.app")));
}

TEST_F(MachineApplications, StayAsTheyWereWhenAScanIsInterrupted) {
  struct Stop {};
  EXPECT_THAT(NamesOf(), Contains("Own.app"));
  Install("/Applications/New.app");
  SetSeconds(1000);
  int checks = 0;
  RecordingEvaluator::Instance().on_check = [&] {
    if (++checks == 9) throw Stop();
  };
  EXPECT_THROW(NamesOf(), Stop);
  SetSeconds(1179);
  EXPECT_THAT(NamesOf(), UnorderedElementsAre("Example.app", "Own.app", "Last.app", "Last.app"));
  Remove("/Applications");
  Remove("/home");
  SetSeconds(1180);
  checks = 10;
  EXPECT_THAT(NamesOf(), IsEmpty());
  EXPECT_EQ(checks, 10 + 7) << "once for each user";
}

TEST_F(MachineApplications, AreFoundByTheirExactName) {
  auto const ask = [](std::string const& name) {
    return application_of_world(Bytes(name), name.size()).Path();
  };
  EXPECT_EQ(ask("Example.app"), "/Applications/Tools/Example.app");
  for (char const* name : {"example.app", "Example", ""}) {
    EXPECT_THROW(ask(name), NoSuchObject) << name;
  }
  directory_->failure = machine::Outcome::kTimedOut;
  SetSeconds(1000);
  EXPECT_THAT(NamesOf(), UnorderedElementsAre("Example.app"));
}

}  // namespace
