#include <CoreFoundation/CoreFoundation.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <thread>

#include "tests/frameworks/cf_text.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/on_scripted_machine.h"

namespace {

using machine::Outcome;
using testing::Contains;
using testing::Pair;

constexpr char kUuid[] = "0A1B2C3D-0000-1111-2222-0123456789ab";
constexpr char kByHost[] = "/home/ada/Library/Preferences/ByHost/";
constexpr char kOfUser[] = "/home/ada/Library/Preferences/app.plist";
constexpr char kOfAll[] = "/Library/Preferences/app.plist";
constexpr char kGlobal[] = "/Library/Preferences/.GlobalPreferences.plist";

OwnedObject Copy(std::string const& application = "app") {
  OwnedString const name = Make(application, kCFStringEncodingUTF8);
  return OwnedObject(CFPreferencesCopyAppValue(CFSTR("key"), name.get()));
}
std::string Read(std::string const& application = "app") { return TextOf(Copy(application).get()); }

class Preferences : public OnScriptedMachine {
 protected:
  Preferences() {
    machine_->current_home = "/home/ada";
    machine_->host_identifier = kUuid;
    machine_->files = {live_, &live_->Files()};
  }

  void Write(std::string const& path, std::string const& value) const {
    tree_.Write(path, "{ key = \"" + value + "\"; }");
  }
  // Until the times of files tell every change.
  static void Settle() { std::this_thread::sleep_for(std::chrono::milliseconds(60)); }

  RecordedTree tree_;
  std::shared_ptr<machine::Machine const> live_ = tree_.Machine();
};

TEST_F(Preferences, ComeFromTheFirstFileThatHasTheKey) {
  CFStringRef const current = kCFPreferencesCurrentUser, any = kCFPreferencesAnyUser;
  CFStringRef const host = kCFPreferencesCurrentHost, any_host = kCFPreferencesAnyHost;
  CFStringRef const app = CFSTR("app"), every = kCFPreferencesAnyApplication;
  std::string const global = kByHost + std::string(".GlobalPreferences.") + kUuid + ".plist";
  std::tuple<std::string, CFStringRef, CFStringRef, CFStringRef> const rows[] = {
      {kByHost + std::string("app.") + kUuid + ".plist", app, current, host},
      {kOfUser, app, current, any_host},
      {global, every, current, host},
      {"/home/ada/Library/Preferences/.GlobalPreferences.plist", every, current, any_host},
      {kOfAll, app, any, any_host},
      {kGlobal, every, any, host},
  };
  for (auto const& row : rows) Write(std::get<0>(row), std::get<0>(row));
  EXPECT_EQ(TextOf(OwnedObject(CFPreferencesCopyAppValue(CFSTR("key"), every)).get()), global);
  for (auto const& [path, application, user, of_host] : rows) {
    EXPECT_EQ(Read(), path);
    OwnedObject const alone(CFPreferencesCopyValue(CFSTR("key"), application, user, of_host));
    EXPECT_EQ(TextOf(alone.get()), path);
    tree_.Write(path, "{ other = \"\"; }");
  }
  EXPECT_EQ(Read(), "none");
}

TEST_F(Preferences, OfAHostThatIsNotKnownCountWhereThereIsOne) {
  std::string const uuid = kUuid, address = "0123456789ab";
  std::tuple<char const*, std::set<std::string>, std::string> const rows[] = {
      {"a UUID", {uuid}, uuid},
      {"a network address", {address, "x", address + "0"}, address},
      {"two", {uuid, address}, "user"},
      {"a bad digit", {"0123456789ag", "0A1B2C3D-0000-1111-2222_0123456789ab"}, "user"},
      {"none", {}, "user"},
  };
  machine_->host_identifier.reset();
  Write(kOfUser, "user");
  for (auto const& [what, hosts, answer] : rows) {
    std::filesystem::remove_all(tree_.At(kByHost));
    Write(kByHost + ("other." + address) + ".plist", "another application");
    for (auto const& host : hosts) Write(kByHost + ("app." + host) + ".plist", host);
    EXPECT_EQ(Read(), answer) << what;
  }
  machine_->host_identifier = "../../x";
  Write("/home/ada/Library/Preferences/x.plist", "elsewhere");
  EXPECT_EQ(Read(), "user");
}

TEST_F(Preferences, ThatCannotBeReadArePassedOver) {
  using Tree = RecordedTree const;
  std::tuple<char const*, void (*)(Tree&), Outcome> const rows[] = {
      {"folder", [](Tree& tree) { tree.MakeFolder(kOfUser); }, Outcome::kMalformed},
      {"pipe", [](Tree& tree) { tree.MakeFifo(kOfUser); }, Outcome::kMalformed},
      {"device", [](Tree& tree) { tree.Link(kOfUser, "/dev/zero"); }, Outcome::kAbsent},
      {"empty file", [](Tree& tree) { tree.Write(kOfUser); }, Outcome::kMalformed},
      {"damage", [](Tree& tree) { tree.Write(kOfUser, "bplist00{"); }, Outcome::kMalformed},
      {"array", [](Tree& tree) { tree.Write(kOfUser, "(key, value)"); }, Outcome::kMalformed},
      {"17 MiB",
       [](Tree& tree) { tree.Write(kOfUser, "{ key = user; }" + std::string(17 << 20, ' ')); },
       Outcome::kMalformed},
      {"another's file",
       [](Tree& tree) {
         tree.Write(kOfUser, "{ key = user; }");
         std::filesystem::permissions(tree.At(kOfUser), std::filesystem::perms::none);
       },
       Outcome::kPermissionRefused},
  };
  Write(kOfAll, "all");
  // What one's own rights forbid, the superuser may do.
  uid_t const self = ::geteuid(), other = self == 0 ? 65534 : self;
  std::filesystem::permissions(tree_.At(""), std::filesystem::perms(0755));
  for (auto const& [what, put, reason] : rows) {
    put(tree_);
    ASSERT_EQ(::seteuid(other), 0);
    // Twice, for what is known of a file from before.
    for (int i = 0; i < 2; ++i) {
      AnnouncementLog log;
      EXPECT_EQ(Read(), "all") << what;
      EXPECT_THAT(log.entries, Contains(Pair(kOfUser, reason))) << what;
      Settle();
    }
    ASSERT_EQ(::seteuid(self), 0);
    std::filesystem::remove(tree_.At(kOfUser));
  }
}

TEST_F(Preferences, WithoutACurrentUserAreThoseOfAll) {
  Write(kOfUser, "user");
  Write(kOfAll, "all");
  machine_->current_home.reset();
  AnnouncementLog log;
  EXPECT_EQ(Read(), "all");
  EXPECT_THAT(log.entries, Contains(Pair("~/Library/Preferences", Outcome::kAbsent)));
}

TEST_F(Preferences, OfAnApplicationWhoseNameIsNoFilesNameAreTheGlobalOnes) {
  Write(kOfAll, "elsewhere");
  Write("/Library/Preferences/.plist", "elsewhere");
  Write("/app.plist", "elsewhere");
  Write("/Library/Preferences/...plist", "dots");
  Write(kGlobal, "global");
  for (std::string const& name : {std::string(), std::string("../../app"), std::string("/app"),
                                  std::string("app\0", 4), std::string(300, 'x')}) {
    EXPECT_EQ(Read(name), "global") << name;
  }
  EXPECT_EQ(Read(".."), "dots");
  Write("/Library/Preferences/kCFPreferencesCurrentApplication.plist", "elsewhere");
  EXPECT_EQ(Read("kCFPreferencesCurrentApplication"), "global");
}

TEST_F(Preferences, AreReadAgainWhenTheirFileChanges) {
  Write(kOfUser, "one");
  OwnedObject const first = Copy();
  Write(kOfUser, "two");  // at once, of the same size
  EXPECT_EQ(Read(), "two");
  Settle();
  EXPECT_EQ(Read(), "two");
  Write("/new", "six");
  std::filesystem::last_write_time(tree_.At("/new"),
                                   std::filesystem::last_write_time(tree_.At(kOfUser)));
  std::filesystem::rename(tree_.At("/new"), tree_.At(kOfUser));
  EXPECT_EQ(Read(), "six");
  std::filesystem::remove(tree_.At(kOfUser));
  EXPECT_EQ(Read(), "none");
  EXPECT_EQ(TextOf(first.get()), "one");
  EXPECT_EQ(CFGetRetainCount(first.get()), 1);
}

// One status of each file, and where the host is not known one of the folder.
TEST_F(Preferences, ReadAgainCostNoMoreThanAStatusOfEachFile) {
  for (char const* path : {kOfUser, kOfAll}) tree_.Write(path, "{ other = 1; }");
  Write(kGlobal, "global");
  for (bool const is_host_known : {true, false}) {
    if (!is_host_known) machine_->host_identifier.reset();
    Settle();
    EXPECT_EQ(Read(), "global");
    AnnouncementLog log;
    EXPECT_EQ(Read(), "global");
    std::set<std::pair<std::string, Outcome>> const once(log.entries.begin(), log.entries.end());
    EXPECT_EQ(log.entries.size(), once.size());
    EXPECT_EQ(log.entries.size(), is_host_known ? 6u : 5u);
    EXPECT_EQ(log.bytes, 0u);
  }
}

TEST_F(Preferences, KeptAreOnlyThoseReadLast) {
  auto const name = [](int i) { return "app" + std::to_string(i); };
  for (int i = 0; i < 100; ++i) Write("/Library/Preferences/" + name(i) + ".plist", name(i));
  Settle();
  std::vector<OwnedObject> values;
  for (int i = 0; i < 100; ++i) values.push_back(Copy(name(i)));
  AnnouncementLog log;
  EXPECT_EQ(Read(name(99)), name(99));
  EXPECT_EQ(log.bytes, 0u);
  EXPECT_EQ(Read(name(0)), name(0));
  EXPECT_GT(log.bytes, 0u);
  for (int i = 0; i < 100; ++i)
    EXPECT_EQ(TextOf(values[static_cast<std::size_t>(i)].get()), name(i));
}

}  // namespace
