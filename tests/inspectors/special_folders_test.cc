// Domains, special folders and their cache, frameworks.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "evaluator/plugin/exceptions.h"
#include "inspectors/files/framework_folder.h"
#include "inspectors/files/special_folder.h"
#include "portable/core_foundation/errors.h"
#include "tests/inspectors/scripted_folders.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/recording_evaluator.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct NamedDomain {
  char const* name;
  std::uint16_t value;
};
constexpr NamedDomain kDomains[] = {{"system domain", 0x8002},
                                    {"local domain", 0x8003},
                                    {"user domain", 0x8005},
                                    {"network domain", 0x8004},
                                    {"classic domain", 0x8006},
                                    {"on system disk domain", 0x8000},
                                    {"on appropriate disk domain", 0x8001}};

struct NamedFolder {
  char const* name;  // without the " folder" that each ends in
  OSType code;
};
constexpr NamedFolder kFolders[] = {
    {"system", 0x6D616373},
    {"apple menu items", 0x616D6E75},
    {"control panels", 0x6374726C},
    {"desktop", 0x6465736B},
    {"extensions", 0x6578746E},
    {"fonts", 0x666F6E74},
    {"preferences", 0x70726566},
    {"printmonitor documents", 0x70726E74},
    {"startup items", 0x73747274},
    {"shutdown items", 0x73686466},
    {"temporary items", 0x74656D70},
    {"disabled startup items", 0x73747244},
    {"disabled extensions", 0x65787444},
    {"applications", 0x61707073},
    {"documents", 0x646F6373},
    {"chewable items", 0x666C6E74},
    {"application support", 0x61737570},
    {"text encodings", 0xC4746578},
    {"help", 0xC4686C70},
    {"internet plugins", 0xC46E6574},
    {"modem scripts", 0xC46D6F64},
    {"printer descriptions", 0x70706466},
    {"printer drivers", 0xC4707264},
    {"scripting additions", 0xC4736372},
    {"shared libraries", 0xC46C6962},
    {"voices", 0x66766F63},
    {"control strip modules", 0x73646576},
    {"assistants", 0x617374C4},
    {"utilities", 0x757469C4},
    {"apple extras", 0x616578C4},
    {"contextual menu items", 0x636D6E75},
    {"macos read me", 0x6D6F72C4},
    {"colorsync profiles", 0x70726F66},
    {"themes", 0x74686D65},
    {"favorites", 0x66617673},
    {"disabled control panels", 0x63747244},
    {"disabled system extensions", 0x6D616344},
    {"disabled shutdown items", 0x73686444},
    {"location manager modules", 0x77616C6B},
    {"location manager preferences", 0x74726970},
    {"locations", 0x66616C6C},
    {"classic", 0x7364736B},
    {"domain top", 0x64746F70},
    {"domain library", 0x646C6962},
    {"color sync", 0x73796E63},
    {"printers", 0x696D7072},
    {"speech", 0x73706368},
    {"carbon", 0x63617262},
    {"documentation", 0x696E666F},
    {"developer docs", 0x64646F63},
    {"developer help", 0x64657668},
    {"iss download", 0x69737364},
    {"user temp", 0x75746D70},
    {"cache", 0x63616368},
    {"framework", 0x6672616D},
    {"private framework", 0x7066726D},
    {"developer", 0x64657666},
    {"sound", 0x73736E64},
    {"component", 0x636D7064},
    {"quicktime", 0x77636D70},
    {"core services", 0x63737276},
    {"audio", 0x6164696F},
    {"kernel extensions", 0x6B657874},
    {"users", 0x75737273},
    {"current user", 0x63757372},
    {"shared", 0x73646174},
    {"volume settings", 0x76736664},
    {"locales", 0xC46C6F63},
    {"receipts", 0x72637074},
};

// The names of the plain properties of an object that give this type, in order of registration.
std::vector<std::string> NamesOf(std::string const& result, std::string const& object) {
  std::vector<std::string> names;
  for (RecordedRegistration const& each : RecordingEvaluator::Instance().registered) {
    bool const is_one = each.result == result && each.object == object && each.parameter.empty();
    if (each.call == "Property" && is_one) names.push_back(each.name);
  }
  return names;
}

template <class Result>
Result Ask(std::string const& name, std::string const& object = "", void const* value = nullptr) {
  auto const* const found = RecordingEvaluator::Instance().Find("Property", name, object);
  if (found == nullptr) throw "not registered";
  return found->Get<Result>(nullptr, value);
}

TEST(Domains, AreTheSevenOfTheSystem) {
  std::vector<std::string> names;
  for (NamedDomain const& row : kDomains) {
    names.push_back(row.name);
    EXPECT_EQ(static_cast<std::uint16_t>(Ask<domain>(row.name).value), row.value) << row.name;
  }
  EXPECT_EQ(NamesOf("domain", ""), names);
}

class SpecialFolders : public testing::Test {
 protected:
  SpecialFolders() { Clear(); }
  ~SpecialFolders() override { Clear(); }

  static void Clear() {
    Instant now{};
    ClearSpecialFolderCaches(now, nullptr);
  }

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

  RecordedTree tree_;
  ScriptedFolders folders_;
};

TEST_F(SpecialFolders, EachNameAsksForItsCodeInTheSystemsOrAGivenDomain) {
  domain const given{kNetworkDomain};
  std::vector<std::string> names;
  for (NamedFolder const& row : kFolders) {
    names.push_back(std::string(row.name) + " folder");
    folders_.asked.clear();
    EXPECT_THROW(Ask<folder>(names.back()), NoSuchObject);
    EXPECT_THROW(Ask<folder>(names.back(), "domain", &given), NoSuchObject);
    EXPECT_THAT(folders_.asked, ElementsAre(ScriptedFolders::Key(kSystemDomain, row.code),
                                            ScriptedFolders::Key(kNetworkDomain, row.code)))
        << row.name;
  }
  EXPECT_EQ(NamesOf("folder", "domain"), names);
  EXPECT_EQ(folders_.creations, 0);
  EXPECT_EQ(names.size(), 69U);
}

TEST_F(SpecialFolders, TheTenFoundLastAreRemembered) {
  for (OSType code = 0; code <= 10; ++code) Place(kSystemDomain, code, std::to_string(code));
  for (OSType code = 0; code < 10; ++code) EXPECT_TRUE(IsNew(code));
  for (OSType code = 0; code < 10; ++code) EXPECT_FALSE(IsNew(code)) << code;
  EXPECT_TRUE(IsNew(10));
  EXPECT_FALSE(IsNew(1));
  EXPECT_TRUE(IsNew(0)) << "the first made room for the eleventh";
  EXPECT_TRUE(IsNew(1)) << "and the second for the first, however often it was asked for";
  EXPECT_FALSE(IsNew(3));

  std::filesystem::remove(tree_.At("/3"));
  EXPECT_FALSE(IsNew(3)) << "a folder that is gone is still known";
  Clear();
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
  for (OSType code = 0; code < 10; ++code) Place(kSystemDomain, code, std::to_string(code));
  for (OSType code = 0; code < 10; ++code) EXPECT_TRUE(IsNew(code));
  for (int time = 1; time <= 2; ++time) {
    EXPECT_THROW(FindSpecialFolder(10, kDomainOfWorld), NoSuchObject);
    EXPECT_EQ(folders_.asked.size(), 10U + static_cast<unsigned>(time));
  }
  for (OSType code = 0; code < 10; ++code) EXPECT_FALSE(IsNew(code)) << code;
}

TEST_F(SpecialFolders, AnItemThatIsNoFolderStandsWhereTheNextFolderGoes) {
  for (OSType code = 0; code < 10; ++code) Place(kSystemDomain, code, std::to_string(code));
  for (OSType code = 0; code < 10; ++code) EXPECT_TRUE(IsNew(code));
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
    SCOPED_TRACE(row.name);
    auto const* const name = reinterpret_cast<unsigned char const*>(row.name.data());
    auto const find = [&] {
      return row.of == nullptr ? framework_folder(name, row.name.size())
                               : framework_folder_of_domain(name, row.name.size(), *row.of);
    };
    if (row.path.empty()) {
      EXPECT_THROW(find(), NoSuchObject);
    } else {
      EXPECT_EQ(find().Path(), tree_.At(row.path));
    }
  }
  EXPECT_EQ(folders_.asked.size(), 3U);
}

}  // namespace
