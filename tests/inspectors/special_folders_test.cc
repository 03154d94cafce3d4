// Domains, special folders and their cache, frameworks.

#include "inspectors/files/special_folder.h"
#include "portable/core_foundation/errors.h"
#include "tests/inspectors/asking.h"
#include "tests/inspectors/scripted_folders.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/big_endian_text.h"

std::string Shown(folder const& found) { return found.Path(); }

namespace {

using testing::ElementsAre;
using testing::Pair;

// Each without the " folder" that its name ends in, and with its code as text, where "ƒ" stands for
// one byte.
constexpr char kFolders[] =
    "system macs, apple menu items amnu, control panels ctrl, desktop desk, extensions extn, "
    "fonts font, preferences pref, printmonitor documents prnt, startup items strt, shutdown "
    "items shdf, temporary items temp, disabled startup items strD, disabled extensions extD, "
    "applications apps, documents docs, chewable items flnt, application support asup, text "
    "encodings ƒtex, help ƒhlp, internet plugins ƒnet, modem scripts ƒmod, printer "
    "descriptions ppdf, printer drivers ƒprd, scripting additions ƒscr, shared libraries "
    "ƒlib, voices fvoc, control strip modules sdev, assistants astƒ, utilities utiƒ, apple "
    "extras aexƒ, contextual menu items cmnu, macos read me morƒ, colorsync profiles prof, "
    "themes thme, favorites favs, disabled control panels ctrD, disabled system extensions "
    "macD, disabled shutdown items shdD, location manager modules walk, location manager "
    "preferences trip, locations fall, classic sdsk, domain top dtop, domain library dlib, "
    "color sync sync, printers impr, speech spch, carbon carb, documentation info, developer "
    "docs ddoc, developer help devh, iss download issd, user temp utmp, cache cach, framework "
    "fram, private framework pfrm, developer devf, sound ssnd, component cmpd, quicktime "
    "wcmp, core services csrv, audio adio, kernel extensions kext, users usrs, current user "
    "cusr, shared sdat, volume settings vsfd, locales ƒloc, receipts rcpt";

// The plain properties of an object that give this type, in order of registration.
std::vector<std::string> NamesOf(std::string const& result, std::string const& object) {
  std::vector<std::string> names;
  for (RecordedRegistration const& each : RecordingEvaluator::Instance().registered) {
    bool const is_one = each.result == result && each.object == object && each.parameter.empty();
    if (each.call == "Property" && is_one) names.push_back(each.name);
  }
  return names;
}

TEST(Domains, AreTheSevenOfTheSystem) {
  std::vector<std::pair<std::string, int>> domains;
  for (std::string const& name : NamesOf("domain", "")) {
    domains.emplace_back(name, Ask<domain>(name).value & 0xFFFF);
  }
  EXPECT_THAT(domains,
              ElementsAre(Pair("system domain", 0x8002), Pair("local domain", 0x8003),
                          Pair("user domain", 0x8005), Pair("network domain", 0x8004),
                          Pair("classic domain", 0x8006), Pair("on system disk domain", 0x8000),
                          Pair("on appropriate disk domain", 0x8001)));
}

class SpecialFolders : public testing::Test {
 protected:
  // A folder of the test, and the system's answer to this question.
  std::string Place(int domain, OSType code, std::string const& name) {
    std::filesystem::create_directories(tree_.At("/" + name));
    return folders_.paths[{domain, code}] = tree_.At("/" + name);
  }

  // Whether the answer took a call of the system.
  bool IsNew(OSType code, domain const& domain = kDomainOfWorld) {
    std::size_t const before = folders_.asked.size();
    EXPECT_EQ(FindSpecialFolder(code, domain).Path(), (folders_.paths[{domain.value, code}]));
    return folders_.asked.size() != before;
  }

  // All that are remembered, from 0 to 9.
  void RememberTen() {
    for (OSType code = 0; code < 10; ++code) {
      Place(kSystemDomain, code, std::to_string(code));
      EXPECT_TRUE(IsNew(code));
    }
  }

  RecordedTree tree_;
  ScriptedFolders folders_;
};

TEST_F(SpecialFolders, EachNameAsksForItsCodeInTheSystemsOrAGivenDomain) {
  domain const given{kNetworkDomain};
  std::string found;
  for (std::string const& name : NamesOf("folder", "domain")) {
    folders_.asked.clear();
    EXPECT_THROW(Ask<folder>(name), NoSuchObject) << name;
    EXPECT_THROW(Ask<folder>(name, "domain", &given), NoSuchObject) << name;
    ASSERT_FALSE(folders_.asked.empty()) << name;
    OSType const code = folders_.asked[0].second;
    EXPECT_THAT(folders_.asked, ElementsAre(ScriptedFolders::Key(kSystemDomain, code),
                                            ScriptedFolders::Key(kNetworkDomain, code)))
        << name;
    std::string text = BigEndianText(code, 4);
    if (auto const at = text.find('\xC4'); at != std::string::npos) text.replace(at, 1, "ƒ");
    found += (found.empty() ? "" : ", ") + name.substr(0, name.rfind(" folder")) + " " + text;
    ASSERT_THAT(kFolders, testing::StartsWith(found));
  }
  EXPECT_EQ(found, kFolders);
  EXPECT_EQ(folders_.creations, 0);
}

TEST_F(SpecialFolders, TheTenFoundLastAreRemembered) {
  RememberTen();
  Place(kSystemDomain, 10, "10");
  for (OSType code = 0; code < 10; ++code) EXPECT_FALSE(IsNew(code)) << code;
  EXPECT_TRUE(IsNew(10));
  EXPECT_FALSE(IsNew(1));
  EXPECT_TRUE(IsNew(0)) << "the first made room for the eleventh";
  EXPECT_TRUE(IsNew(1)) << "and the second for the first, however often it was asked for";
  EXPECT_FALSE(IsNew(3));

  std::filesystem::remove(tree_.At("/3"));
  EXPECT_FALSE(IsNew(3)) << "a folder that is gone is still known";
  ScriptedFolders::Forget();
  EXPECT_THROW(FindSpecialFolder(3, kDomainOfWorld), NoSuchObject);
  EXPECT_TRUE(IsNew(4));
}

TEST_F(SpecialFolders, DomainsAreRememberedApart) {
  domain const user{kUserDomain};
  Place(kSystemDomain, 'p', "System/Preferences");
  Place(kUserDomain, 'p', "ann/Preferences");
  EXPECT_TRUE(IsNew('p'));
  EXPECT_TRUE(IsNew('p', user));
  EXPECT_FALSE(IsNew('p'));
  EXPECT_FALSE(IsNew('p', user));
}

TEST_F(SpecialFolders, WhatTheSystemDoesNotFindIsAskedForAgain) {
  RememberTen();
  for (int time = 1; time <= 2; ++time) {
    EXPECT_THROW(FindSpecialFolder(10, kDomainOfWorld), NoSuchObject);
    EXPECT_EQ(folders_.asked.size(), 10U + static_cast<unsigned>(time));
  }
  for (OSType code = 0; code < 10; ++code) EXPECT_FALSE(IsNew(code)) << code;
}

TEST_F(SpecialFolders, AnItemThatIsNoFolderStandsWhereTheNextFolderGoes) {
  RememberTen();
  tree_.Write("/file", "");
  folders_.paths[{kSystemDomain, 'f'}] = tree_.At("/file");
  EXPECT_THROW(FindSpecialFolder('f', kDomainOfWorld), NoSuchObject);
  EXPECT_EQ(FindSpecialFolder(0, kDomainOfWorld).Path(), tree_.At("/file"));
  EXPECT_FALSE(IsNew(1));

  Place(kSystemDomain, 'n', "next");
  EXPECT_TRUE(IsNew('n'));
  EXPECT_FALSE(IsNew(1)) << "the next went where the file stood";
  EXPECT_TRUE(IsNew(0));
}

TEST_F(SpecialFolders, OtherErrorsPass) {
  Place(kSystemDomain, 'v', "vanishing");
  folders_.after_finding = [&] { std::filesystem::remove(tree_.At("/vanishing")); };
  EXPECT_THROW(FindSpecialFolder('v', kDomainOfWorld), CFURLCreateFromFSRefFailed);
}

TEST_F(SpecialFolders, FrameworksAreFoundByName) {
  OSType const frameworks = kFrameworksFolderType;
  Place(kSystemDomain, frameworks, "system");
  Place(kUserDomain, frameworks, "user");
  domain const user{kUserDomain}, local{kLocalDomain};
  for (char const* framework : {"system/A.framework", "user/B.framework"}) {
    std::filesystem::create_directories(tree_.At(std::string("/") + framework));
  }
  tree_.Write("/system/File.framework", "");
  struct {
    domain const* of;
    std::string name, path;
  } const cases[] = {{nullptr, "A", "/system/A.framework"},
                     {&user, "B", "/user/B.framework"},
                     {nullptr, "a", ""},
                     {nullptr, "B", ""},
                     {nullptr, "File", ""},
                     {nullptr, "../user/B", ""},
                     {&local, "A", ""}};
  for (auto const& row : cases) {
    inspector_string const name = Name(row.name);
    std::string const type = row.of != nullptr ? "domain" : "";
    EXPECT_EQ(Told([&] { return Ask<folder>("framework", type, row.of, &name); }),
              row.path.empty() ? kNone : tree_.At(row.path))
        << row.name;
  }
  EXPECT_EQ(folders_.asked.size(), 3U);
}

}  // namespace
