#include <CoreServices/CoreServices.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

#include "frameworks/CoreServices/special_folders.h"
#include "frameworks/CoreServices/user_directories.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/big_endian_text.h"
#include "tests/support/on_scripted_machine.h"

namespace {

using machine::Outcome;
using testing::Contains;
using testing::Pair;

// Four characters, where an ƒ stands for the byte that Mac Roman has it at.
OSType Code(std::string text) {
  if (std::size_t const at = text.find("ƒ"); at != std::string::npos) text.replace(at, 2, "\xC4");
  return BigEndianNumber(text);
}

// The path of what is found, else the status code.
std::string Find(char const* code, FSVolumeRefNum domain, bool create = false) {
  FSRef ref = {};
  UInt8 path[4096] = "";
  OSStatus status = FSFindFolder(domain, Code(code), create, &ref);
  if (status == noErr) status = FSRefMakePath(&ref, path, sizeof path);
  return status == noErr ? reinterpret_cast<char*>(path) : std::to_string(status);
}

class SpecialFolders : public OnScriptedMachine {
 protected:
  // Another machine, of the same files.
  void Use(machine::Platform platform) {
    machine_ = std::make_shared<ScriptedMachine>();
    machine_->platform = platform;
    machine_->current_home = "/Users/ada";
    Hold(tree_.Machine());
    machine::SetCurrentMachine(machine_);
  }
  void Hold(std::shared_ptr<machine::Machine const> const& files) {
    machine_->files = {files, &files->Files()};
  }
  // Each code finds its folder of a domain in a tree that has them all and nothing else.
  using Case = std::tuple<char const*, FSVolumeRefNum, char const*>;
  void Expect(std::vector<Case> const& cases) {
    for (auto const& [code, domain, answer] : cases) {
      if (*answer == '/' && !std::filesystem::exists(tree_.At(answer))) tree_.MakeFolder(answer);
    }
    for (auto const& [code, domain, answer] : cases) {
      EXPECT_EQ(Find(code, domain), answer) << code << ' ' << domain;
    }
  }

  RecordedTree tree_;
};

TEST_F(SpecialFolders, OfAMacOSVolume) {
  Use(machine::Platform::kMacOS);
  tree_.MakeFolder("/private/tmp");
  tree_.Link("/tmp", "private/tmp");
  tree_.Write("/Library/Receipts", "a file");
  tree_.Link("/Library/Modem Scripts", "../../../../etc");
  tree_.MakeFolder("/etc");
  Expect({
      {"macs", kSystemDomain, "/System"},
      {"macs", kClassicDomain, "/System Folder"},
      {"macs", kUserDomain, "-43"},
      {"font", kSystemDomain, "/System/Library/Fonts"},
      {"font", kUserDomain, "/Users/ada/Library/Fonts"},
      {"font", kClassicDomain, "/System Folder/Fonts"},
      {"pref", kOnSystemDisk, "/Library/Preferences"},
      {"asup", kOnAppropriateDisk, "/Users/ada/Library/Application Support"},
      {"cach", kOnSystemDisk, "/System/Library/Caches"},
      {"apps", kClassicDomain, "/Applications (Mac OS 9)"},
      {"utiƒ", kClassicDomain, "/Utilities"},
      {"temp", kSystemDomain, "/private/tmp"},
      {"temp", kUserDomain, "/Users/ada/Library/Caches/TemporaryItems"},
      {"cusr", kNetworkDomain, "/Users/ada"},
      {"dtop", kLocalDomain, "/"},
      {"rcpt", kLocalDomain, "/Library/Receipts"},
      {"ƒmod", kLocalDomain, "/etc"},
      {"????", kSystemDomain, "-43"},
      {"font", 0, "-43"},
      {"font", -100, "-43"},
  });
  std::filesystem::remove_all(tree_.At("/System Folder"));
  EXPECT_EQ(Find("apps", kClassicDomain), "-43");
}

TEST_F(SpecialFolders, OfALinuxMachine) {
  Use(machine::Platform::kLinux);
  machine_->kernel_release = "6.1.0-13-amd64";
  machine_->environment = {
      {"XDG_CONFIG_HOME", "/conf"}, {"XDG_DATA_HOME", "share"}, {"TMPDIR", "/scratch"}};
  tree_.Write("/conf/user-dirs.dirs",
              "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\nXDG_DOCUMENTS_DIR=\"/papers\"\n");
  Expect({
      {"font", kSystemDomain, "/usr/share/fonts"},
      {"font", kLocalDomain, "/usr/local/share/fonts"},
      {"font", kUserDomain, "/Users/ada/.local/share/fonts"},
      {"font", kNetworkDomain, "-43"},
      {"pref", kSystemDomain, "/etc"},
      {"pref", kUserDomain, "/conf"},
      {"asup", kOnAppropriateDisk, "/Users/ada/.local/share"},
      {"strt", kOnSystemDisk, "/etc/xdg/autostart"},
      {"strD", kUserDomain, "/conf/autostart.disabled"},
      {"extn", kSystemDomain, "/usr/lib/modules/6.1.0-13-amd64"},
      {"ƒtex", kSystemDomain, "/usr/lib/aarch64-linux-gnu/gconv"},
      {"desk", kUserDomain, "/Users/ada/Schreibtisch"},
      {"docs", kUserDomain, "/papers"},
      {"utmp", kSystemDomain, "/scratch"},
      {"dtop", kLocalDomain, "/usr/local"},
      {"prnt", kSystemDomain, "-43"},
  });
}

TEST_F(SpecialFolders, WhatTheMachineDoesNotTellIsNotFoundAndWhyIsSaid) {
  for (char const* path : {"/etc", "/evil", "/Users/ada/.config", "/Users/ada/Desktop"}) {
    tree_.MakeFolder(path);
  }
  tree_.Write("/etc/user-dirs.dirs", "XDG_DESKTOP_DIR=Desktop\n");
  using Machine = ScriptedMachine;
  std::tuple<char const*, char const*, void (*)(Machine&), Outcome> const rows[] = {
      {"no home", "pref", [](Machine& it) { it.current_home.reset(); }, Outcome::kAbsent},
      {"a home that is no path", "pref", [](Machine& it) { it.current_home = "evil"; },
       Outcome::kMalformed},
      {"an environment that cannot be asked", "pref",
       [](Machine& it) { it.reason = Outcome::kNotSupported; }, Outcome::kNotSupported},
      {"no platform", "pref", [](Machine& it) { it.platform.reset(); }, Outcome::kAbsent},
      {"no place for temporary files", "utmp", [](Machine&) {}, Outcome::kAbsent},
      {"user directories without the variable", "desk",
       [](Machine& it) { it.environment["XDG_CONFIG_HOME"] = "/etc"; }, Outcome::kAbsent},
  };
  for (auto const& [what, code, change, reason] : rows) {
    Use(machine::Platform::kLinux);
    change(*machine_);
    AnnouncementLog log;
    EXPECT_EQ(Find(code, kUserDomain), "-43") << what;
    std::string const source = std::string("special folder ") + code + " of the user";
    EXPECT_THAT(log.entries, Contains(Pair(source, reason))) << what;
  }
  machine_->kernel_release = "../../../evil";
  EXPECT_EQ(Find("extn", kSystemDomain), "-43");
}

TEST_F(SpecialFolders, AreMadeOnlyWhereThatIsAskedForAndAllowed) {
  Use(machine::Platform::kMacOS);
  tree_.Link("/Library", "/nowhere");
  EXPECT_EQ(Find("cach", kUserDomain, true), "-46");
  Hold(machine::MakeLiveMachine(tree_.At(""), machine::Changes::kAllowed));
  EXPECT_EQ(Find("cach", kUserDomain), "-43");
  EXPECT_FALSE(std::filesystem::exists(tree_.At("/Users")));
  EXPECT_EQ(Find("cach", kOnAppropriateDisk, true), "/Users/ada/Library/Caches");
  struct stat status = {};
  ASSERT_EQ(::stat(tree_.At("/Users/ada/Library").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u);
  EXPECT_EQ(Find("prnt", kUserDomain, true), "-43");
  EXPECT_EQ(Find("font", kLocalDomain, true), "-120");
}

TEST(SpecialFoldersOfTheRunningMachine, AreThoseThatItHas) {
  MachineInUse use(machine::MakeLiveMachine());
  std::string const fonts = "/usr/share/fonts";
  bool const has_fonts = std::filesystem::exists(fonts);
  EXPECT_EQ(Find("font", kSystemDomain), has_fonts ? std::filesystem::canonical(fonts) : "-43");
  RecordedTree const tree;
  ASSERT_EQ(::setenv("XDG_CONFIG_HOME", tree.At("").c_str(), 1), 0);
  EXPECT_EQ(Find("pref", kUserDomain), std::filesystem::canonical(tree.At("")));
  ::unsetenv("XDG_CONFIG_HOME");
}

TEST(SpecialFolderTables, HaveRowsOfTheFormThatTheirBaseWants) {
  for (SpecialFolderTable const* table : {&kMacOSFolders, &kLinuxFolders}) {
    DomainSet libraries = 0;
    for (DomainLibrary const& library : table->libraries) libraries |= library.domain;
    for (SpecialFolderRow const& row : table->rows) {
      std::string_view const path = row.path;
      EXPECT_EQ(path.starts_with('/'), row.base == FolderBase::kRoot) << path;
      EXPECT_TRUE(path == "/" || !path.ends_with('/')) << path;
      int const without = row.base == FolderBase::kLibrary ? row.domains & ~libraries : 0;
      EXPECT_EQ(without, 0) << path;
    }
  }
}

TEST(UserDirectories, AreReadAsTheShellWould) {
  std::pair<char const*, char const*> const rows[] = {
      {"XDG_DESKTOP_DIR=\"$HOME/Desktop\"", "/home/ada/Desktop"},
      {"# XDG_DESKTOP_DIR=\"/a\"\n \tXDG_DESKTOP_DIR = \"/b\"  \n", "/b"},
      {"XDG_DESKTOP_DIR=\"/a\"\nXDG_DESKTOP_DIR=\"/b\"\nXDG_DESKTOP_DIR=\"c\"", "/b"},
      {"XDG_DESKTOP_DIR=\"$HOME\"", "/home/ada"},
      {R"(XDG_DESKTOP_DIR="$HOME/\$5 \"off\"")", "/home/ada/$5 \"off\""},
      {"XDG_DESKTOP_DIRECTORY=\"/a\"", "none"},
      {"XDG_DESKTOP_DIR=\"$HOMES/a\"", "none"},
      {"XDG_DESKTOP_DIR=\"/a", "none"},
      {"XDG_DESKTOP_DIR=\"/a\\\"", "none"},
      {"XDG_DESKTOP_DIR=/a", "none"},
      {"", "none"},
  };
  for (auto const& [text, value] : rows) {
    EXPECT_EQ(UserDirectoryIn(text, "XDG_DESKTOP_DIR", "/home/ada").value_or("none"), value)
        << text;
  }
}

}  // namespace
