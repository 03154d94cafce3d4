// Applications below folders and of the machine.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "inspectors/files/application.h"
#include "inspectors/files/application_filter.h"
#include "portable/file_errors.h"
#include "tests/inspectors/asking.h"
#include "tests/inspectors/scripted_directory.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/scripted_machine.h"

namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

enum Order { kBig, kLittle };

std::string Words(Order order, std::initializer_list<std::uint32_t> words) {
  std::string bytes;
  for (std::uint32_t const word : words) {
    for (int i = 0; i < 4; ++i) {
      bytes += static_cast<char>(word >> (order == kBig ? 24 - 8 * i : 8 * i));
    }
  }
  return bytes;
}

std::string Thin(Order order, std::uint32_t type, std::uint32_t magic = 0xFEEDFACF) {
  return Words(order, {magic, 7, 3, type, 1, 2, 3});
}

// Of two architectures: the first one's file at byte 64, the other's behind it.
std::string Universal(std::uint32_t count, std::uint32_t offset, std::uint32_t first,
                      std::uint32_t second = 6) {
  std::string bytes = Words(kBig, {0xCAFEBABE, count, 7, 3, offset, 28, 2, 12, 9, 92, 28, 2});
  bytes.resize(64);
  return bytes + Thin(kLittle, first) + Thin(kBig, second);
}

template <class First, class Next>
std::vector<std::string> NamesFrom(First const& first, Next const& next) {
  std::vector<std::string> names;
  try {
    for (filesystem_object found = first();; found = next()) {
      names.push_back(found.Item().Name().MakeUTF8String());
    }
  } catch (NoSuchObject const&) {
  }
  return names;
}

std::vector<std::string> NamesBelow(std::string const& path) {
  folder const start = MacintoshPlatform::posix_folder_of_world(path);
  app_iterator applications;
  return NamesFrom([&] { return applications.First(start); },
                   [&] { return applications.Next(start); });
}

class Applications : public testing::Test {
 protected:
  RecordedTree tree_;
};

TEST_F(Applications, AreProgramsByTheirHeader) {
  struct {
    char const* name;
    std::string content;
    bool is_program;
  } const cases[] = {
      {"32 bits, little", Thin(kLittle, 2, 0xFEEDFACE), true},
      {"32 bits, big", Thin(kBig, 2, 0xFEEDFACE), true},
      {"64 bits, little", Thin(kLittle, 2), true},
      {"64 bits, big", Thin(kBig, 5), true},
      {"library", Thin(kLittle, 6), false},
      {"type in the other order", Thin(kLittle, 0x02000000), false},
      {"shell script", "#!/bin/sh\nexec /Applications/Other.app/program\n", false},
      {"first of two", Universal(2, 64, 2), true},
      {"second of two", Universal(2, 64, 6, 2), false},
      {"first preloaded", Universal(18, 64, 5), true},
      {"as many as a Java version", Universal(19, 64, 2), false},
      {"huge count", Universal(0xFFFFFFFF, 64, 2), false},
      {"itself", Universal(2, 0, 2), false},
      {"cut at the first", Universal(2, 64 + 29, 6, 2), false},
      {"behind the end", Universal(2, 0xFFFFFFF0, 2), false},
      {"universal, little", Words(kLittle, {0xCAFEBABE, 1, 7, 3, 28, 28, 2}) + Thin(kBig, 2), true},
      {"empty", "", false},
  };
  std::vector<std::string> programs;
  for (auto const& row : cases) {
    tree_.Write(std::string("all/") + row.name, row.content);
    if (row.is_program) programs.push_back(row.name);
    FileItem const item(MakeFileLocation(ConstData(tree_.Path(std::string("all/") + row.name))));
    bool is_added = false;
    try {
      is_added = AppFilter(item) == descendant_iterator::kAdd;
    } catch (EndOfFileError const&) {
    }
    EXPECT_EQ(is_added, row.is_program) << row.name;
  }
  EXPECT_THAT(NamesBelow(tree_.Path("all")), testing::UnorderedElementsAreArray(programs));

  std::string const whole = Thin(kLittle, 2), universal = Universal(2, 64, 2);
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    std::string const suffix = std::to_string(size);
    tree_.Write("cut/thin " + suffix, whole.substr(0, size));
    tree_.Write("cut/universal " + suffix, universal.substr(0, 64 + size));
  }
  EXPECT_THAT(NamesBelow(tree_.Path("cut")), UnorderedElementsAre("thin 28", "universal 28"));
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

// A machine with two users who have applications, at a time that the test sets.
class MachineApplications : public Applications {
 protected:
  MachineApplications() {
    auto const live = tree_.Machine();
    machine_->files = std::shared_ptr<machine::FileSource const>(live, &live->Files());
    machine_->microseconds = 0;
    Install("/Applications/Tools/Example.app");
    Install("/home/a/Applications/Own.app");
    for (char const* name : {"a", "b", "nobody", "odd", "same as a", "without", "z"}) {
      directory_.AddUser(name, "501");
    }
    SetHome("a", "/home/a");
    SetHome("nobody", "/");
    SetHome("odd", "home/a");
    SetHome("same as a", "/home/a/");
    SetHome("z", "/home/z");
    Install("/home/z/Applications/Last.app");
  }
  ~MachineApplications() override { RecordingEvaluator::Instance().on_check = nullptr; }

  void Install(std::string const& path) { tree_.Write(path + "/Contents/PkgInfo", "APPL????"); }
  void SetHome(std::string const& user, std::string const& home) {
    directory_.users[user]["dsAttrTypeStandard:NFSHomeDirectory"] = {home};
  }
  void SetSeconds(std::int64_t seconds) { machine_->microseconds = seconds * 1'000'000; }
  static std::vector<std::string> Names() {
    app_iterator all;
    return NamesFrom([&] { return all.First(); }, [&] { return all.Next(); });
  }

  ScriptedDirectory directory_;
  std::shared_ptr<ScriptedMachine> machine_ = std::make_shared<ScriptedMachine>();
  MachineInUse const use_{machine_};
};

TEST_F(MachineApplications, AreLookedForEveryThreeMinutes) {
  EXPECT_THAT(Names(), UnorderedElementsAre("Example.app", "Own.app", "Last.app"));
  Install("/Applications/New.app");
  std::filesystem::remove_all(tree_.Path("home/z"));
  SetSeconds(179);
  EXPECT_THAT(Names(), UnorderedElementsAre("Example.app", "Own.app"));
  SetSeconds(180);
  EXPECT_THAT(Names(), UnorderedElementsAre("Example.app", "Own.app", "New.app"));
  MachineInUse const other(tree_.Machine());
  Install("/Applications/Newer.app");
  EXPECT_THAT(Names(), Contains("Newer.app")) << "what was found on another machine";
  std::filesystem::remove_all(tree_.Path("Applications/Newer.app"));
  Install("/Applications/Newest.app");
  EXPECT_THAT(Names(), UnorderedElementsAre("Example.app", "Own.app", "New.app")) << "no clock";
}

TEST_F(MachineApplications, StayAsTheyWereWhenAScanIsInterrupted) {
  struct Stop {};
  EXPECT_THAT(Names(), Contains("Own.app"));
  Install("/Applications/New.app");
  SetSeconds(1000);
  int checks = 0;
  RecordingEvaluator::Instance().on_check = [&] {
    if (++checks == 9) throw Stop();
  };
  EXPECT_THROW(Names(), Stop);
  SetSeconds(1179);
  EXPECT_THAT(Names(), UnorderedElementsAre("Example.app", "Own.app", "Last.app"));
  SetSeconds(1180);
  EXPECT_THAT(Names(), Contains("New.app"));
  std::filesystem::remove_all(tree_.Path("Applications"));
  std::filesystem::remove_all(tree_.Path("home"));
  SetSeconds(2000);
  checks = 10;
  EXPECT_THAT(Names(), IsEmpty());
  EXPECT_EQ(checks, 10 + 7) << "once for each user";
}

TEST_F(MachineApplications, AreFoundByTheirExactName) {
  auto const ask = [](std::string const& name) {
    inspector_string const parameter = Name(name);
    return Ask<filesystem_object>("application", "", &kEmptyObject, &parameter).Path();
  };
  EXPECT_EQ(ask("Example.app"), "/Applications/Tools/Example.app");
  for (char const* name : {"example.app", "Example", ""}) {
    EXPECT_THROW(ask(name), NoSuchObject) << name;
  }
  directory_.fails = true;
  SetSeconds(1000);
  EXPECT_THAT(Names(), UnorderedElementsAre("Example.app"));
  std::filesystem::remove_all(tree_.Path("Applications"));
  SetSeconds(2000);
  EXPECT_THAT(Names(), IsEmpty());
}

}  // namespace
