#include <SystemConfiguration/SystemConfiguration.h>

#include "inspectors/activedirectory/directory/directory_errors.h"
#include "inspectors/users/logged_on_user.h"
#include "tests/inspectors/asking.h"
#include "tests/support/on_scripted_machine.h"
#include "tests/support/scripted_records.h"

namespace {

using machine::Record;
using machine::RecordArray;
using machine::RecordDictionary;
using MacintoshPlatform::LoggedInUser;
using testing::ElementsAre;

using Entries = std::vector<RecordDictionary::Entry>;

Record Session(std::int64_t id, std::int64_t user, Record name) {
  return RecordDictionary({{"kCGSSessionIDKey", id},
                           {"kCGSSessionUserIDKey", user},
                           {"kCGSSessionUserNameKey", std::move(name)}});
}
Record Session(std::int64_t id, std::int64_t user, char const* name) {
  return Session(id, user, std::string(name));
}

class Sessions : public OnScriptedMachine {
 protected:
  Sessions() { machine_->directory = directory_; }
  ~Sessions() override { SessionInfo::Shutdown(); }

  void Publish(RecordArray sessions, Entries console = {}) {
    console.emplace_back("SessionInfo", std::move(sessions));
    machine_->console_user = RecordDictionary(std::move(console));
  }
  void PublishTwoUsers() {
    Publish({Session(300, 502, "ben"), Session(257, 501, "ann")}, {{"Name", std::string("ben")}});
    directory_->Add(kUsersRecordType, "ann", {{"dsAttrTypeStandard:UniqueID", {"501"}}});
    directory_->Add(kUsersRecordType, "ben", {{"dsAttrTypeStandard:UniqueID", {"502"}}});
  }
  std::vector<std::string> Refreshed() {
    EXPECT_TRUE(SessionInfo::Initialize());
    SessionInfo::RefreshList();
    return Listed();
  }
  static std::vector<std::string> Listed() {
    std::vector<std::string> texts;
    for (SessionInfo const& each : SessionInfo::GetList()) {
      texts.push_back(Shown(each.SessionID()) + " " + Shown(each.UserID()) + " " + each.UserName());
    }
    return texts;
  }

  std::shared_ptr<ScriptedRecords> directory_ = std::make_shared<ScriptedRecords>();
};

TEST_F(Sessions, ComeInTheOrderOfTheirNumbers) {
  Publish({Session(300, 1, "d"), Session(-1, 2, "a"), Session(300, 3, "e"), Session(257, 4, "c"),
           RecordDictionary({{"kCGSSessionUserIDKey", std::int64_t{5}}})});
  EXPECT_THAT(Refreshed(), ElementsAre("-1 2 a", "0 5 ", "257 4 c", "300 1 d", "300 3 e"));
  unsigned long total = 7, second = 7;
  SessionInfo::GetLoginCounts(total, second);
  EXPECT_EQ(total, 5u);
  EXPECT_EQ(second, 0u);
}

TEST_F(Sessions, OfOddTypesHaveTheirDefaults) {
  std::string const longest(1024, 'x');
  struct {
    char const* name;
    Record session;
    std::string expected;
  } const cases[] = {
      {"empty", RecordDictionary(), "0 4294967294 "},
      {"texts for numbers",
       RecordDictionary(
           {{"kCGSSessionIDKey", std::string("5")}, {"kCGSSessionUserIDKey", std::string("5")}}),
       "0 4294967294 "},
      {"real", RecordDictionary({{"kCGSSessionIDKey", 5.7}}), "5 4294967294 "},
      {"great numbers", Session(INT64_MAX, 4294967295, "a"), "9223372036854775807 4294967295 a"},
      {"data for a name", Session(1, 2, machine::RecordBytes{"ann"}), "1 2 "},
      {"not ASCII", Session(1, 2, "\xC3\xA4"), "1 2 \xC3\xA4"},
      {"not UTF-8", Session(1, 2, "a\xFF"), "1 2 "},
      {"longest", Session(1, 2, longest), "1 2 " + longest},
      {"longer", Session(1, 2, longest + "x"), "1 2 "},
  };
  for (auto const& row : cases) {
    Publish({row.session});
    EXPECT_THAT(Refreshed(), ElementsAre(row.expected)) << row.name;
    SessionInfo::Shutdown();
  }
}

TEST_F(Sessions, AListThatIsNoneIsAFailure) {
  std::optional<RecordDictionary> const published[] = {
      std::nullopt, RecordDictionary(), RecordDictionary({{"SessionInfo", RecordDictionary()}}),
      RecordDictionary({{"SessionInfo", RecordArray{RecordDictionary(), std::string("x")}}})};
  for (auto const& value : published) {
    machine_->console_user = value;
    EXPECT_THROW(Refreshed(), MacUnableToGetSessionList);
    EXPECT_THROW(LoggedOnUsers().First(), MacUnableToGetSessionList);
    EXPECT_THROW(MacintoshPlatform::GetLoggedInUsers(), MacUnableToGetSessionList);
  }
}

TEST_F(Sessions, AreKeptUntilANumberChanges) {
  struct {
    char const* name;
    RecordArray sessions;
    bool is_replaced;
    char const* first;
  } const cases[] = {
      {"new", {Session(1, 2, "ann")}, true, "1 2 ann"},
      {"renamed", {Session(1, 2, "ben")}, false, "1 2 ann"},
      {"another user", {Session(1, 3, "ben")}, true, "1 3 ben"},
      {"another session", {Session(2, 3, "ben")}, true, "2 3 ben"},
      {"one more", {Session(2, 3, "cid"), Session(4, 5, "dan")}, true, "2 3 cid"},
      {"one less", {Session(2, 3, "ben")}, true, "2 3 ben"},
  };
  ASSERT_TRUE(SessionInfo::Initialize());
  for (auto const& row : cases) {
    Publish(row.sessions);
    EXPECT_EQ(SessionInfo::RefreshList(), row.is_replaced) << row.name;
    EXPECT_EQ(Listed().front(), row.first) << row.name;
  }
  Publish({Session(2, 3, "eve")});
  MachineInUse const again(machine_);
  EXPECT_THAT(Refreshed(), ElementsAre("2 3 eve"));
}

Record Login(bool is_done, bool is_on_console) {
  return RecordDictionary(
      {{"kCGSessionLoginDoneKey", is_done}, {"kCGSSessionOnConsoleKey", is_on_console}});
}

bool IsDone(CFArrayRef sessions, CFIndex index) {
  auto const session = static_cast<CFDictionaryRef>(CFArrayGetValueAtIndex(sessions, index));
  return CFDictionaryGetValue(session, CFSTR("kCGSessionLoginDoneKey")) == kCFBooleanTrue;
}

// Which of the published sessions say that the login is done, "yyn".
std::string FinishedLogins() {
  AutoCFString key;
  key.Seize(SCDynamicStoreKeyCreateConsoleUser(nullptr));
  AutoCFDictionary console;
  console.Seize(static_cast<CFDictionaryRef>(SCDynamicStoreCopyValue(nullptr, key.Get())));
  auto const published =
      static_cast<CFArrayRef>(CFDictionaryGetValue(console.Get(), CFSTR("SessionInfo")));
  AutoCF<CFMutableArrayRef> sessions;
  sessions.Seize(CFArrayCreateMutableCopy(nullptr, 0, published));
  MacintoshPlatform::FinishLoginsOnConsole(sessions.Get(), console.Get());
  EXPECT_FALSE(IsDone(published, 1)) << "what was published is changed";
  std::string text;
  for (CFIndex i = 0; i < 3; ++i) text += IsDone(sessions.Get(), i) ? 'y' : 'n';
  return text;
}

TEST_F(Sessions, OfPantherAreFinishedInFrontOfTheConsole) {
  struct {
    std::optional<std::uint32_t> version;
    Entries console;
    char const* expected;
  } const cases[] = {
      {0x1030, {{"Name", std::string("ann")}}, "yyn"},
      {0x103F, {{"Name", std::int64_t{1}}}, "yyn"},
      {0x1039, {{"Name", std::string("loginwindow")}}, "ynn"},
      {0x1039, {}, "ynn"},
      {0x102F, {{"Name", std::string("ann")}}, "ynn"},
      {0x1040, {{"Name", std::string("ann")}}, "ynn"},
      {std::nullopt, {{"Name", std::string("ann")}}, "ynn"},
  };
  for (auto const& row : cases) {
    machine_->gestalt.clear();
    if (row.version) machine_->gestalt["sysv"] = *row.version;
    Publish({Login(true, true), Login(false, true), Login(false, false)}, row.console);
    EXPECT_EQ(FinishedLogins(), row.expected) << std::hex << row.version.value_or(0);
  }
}

TEST_F(Sessions, EachUserIsLoggedOnOnceASession) {
  PublishTwoUsers();
  LoggedOnUsers users;
  EXPECT_EQ(users.First().Name(), "ann");
  Publish({});
  SessionInfo::RefreshList();
  logged_on_user const ben = users.Next();
  EXPECT_EQ(MakeThisAUser(ben).ID(), "502");
  EXPECT_THROW(users.Next(), NoSuchObject);
  EXPECT_THROW(users.First(), NoSuchObject);
}

TEST_F(Sessions, AUserWithoutARecordIsTheDirectorysFailure) {
  PublishTwoUsers();
  directory_->records.clear();
  EXPECT_THROW(LoggedOnUsers().First(), DSGetRecordListFailed);
  EXPECT_THROW(CurrentUser(), DSGetRecordListFailed);
}

TEST_F(Sessions, TheCurrentUserIsTheOneInFrontOfTheConsole) {
  PublishTwoUsers();
  EXPECT_EQ(CurrentUser().session.SessionID(), 300);
  RecordArray const sessions = {Session(9, 502, "ben"), Session(3, 502, "ben"), RecordDictionary()};
  Publish(sessions, {{"Name", std::string("ben")}});
  EXPECT_EQ(CurrentUser().session.SessionID(), 3);
  Entries const nobody[] = {{},
                            {{"Name", std::string("loginwindow")}},
                            {{"Name", std::string("Ben")}},
                            {{"Name", std::string("\xFF")}},
                            {{"Name", machine::RecordBytes{"ben"}}}};
  for (Entries const& console : nobody) {
    Publish(sessions, console);
    EXPECT_THROW(CurrentUser(), NoSuchObject);
  }
  machine_->console_user.reset();
  EXPECT_THROW(CurrentUser(), NoSuchObject);
}

TEST_F(Sessions, NamesOfLoggedInUsersAreTakenApart) {
  std::pair<char const*, LoggedInUser> const cases[] = {
      {"ann", {"ann", ""}},
      {"CORP\\ann", {"ann", "CORP"}},
      {"ann@corp.example", {"ann", "corp.example"}},
      {"CORP\\ann@x", {"ann@x", "CORP"}},
      {"ann@home@corp", {"ann@home", "corp"}},
      {"\\ann", {"ann", ""}},
      {"ann\\", {"ann\\", ""}},
      {"@corp", {"@corp", ""}},
      {"", {"", ""}},
  };
  for (auto const& [name, expected] : cases) {
    Publish({Session(5, 501, name), Session(4, 500, "first")});
    EXPECT_THAT(MacintoshPlatform::GetLoggedInUsers(),
                ElementsAre(LoggedInUser{"first", ""}, expected))
        << name;
    SessionInfo::Shutdown();
  }
}

}  // namespace
