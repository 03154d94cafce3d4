// What expressions answer from the records of a scripted host, and of a directory beside it.
#include "inspectors/activedirectory/account_properties.h"
#include "inspectors/activedirectory/active_directory_server.h"
#include "inspectors/users/session_info.h"
#include "inspectors/users/user.h"
#include "tests/directory/folder_context.h"
#include "tests/portable_inspectors/answers.h"
#include "tests/support/on_scripted_machine.h"
#include "tests/support/scripted_records.h"

namespace {

constexpr char kPending[] = "Data pending request from server";
constexpr char kNone[] = "no such object";

class ScriptedHost final : public FolderContext {
 public:
  using FolderContext::FolderContext;

  std::unique_ptr<ActiveDirectoryLocalComputer> computer;
  mutable std::vector<ActiveDirectoryLocalUser> users;

  ActiveDirectoryLocalComputer* LocalComputer() const override { return computer.get(); }
  ActiveDirectoryLocalUser* LocalUser(std::string const& name,
                                      std::string const& domain) const override {
    for (auto& user : users) {
      if (user.GetName() == name && user.GetDomain() == domain) return &user;
    }
    return nullptr;
  }
  ActiveDirectoryLocalUser* LocalUserAt(std::uint32_t index) const override {
    return index < users.size() ? &users[index] : nullptr;
  }
};

std::vector<ActiveDirectoryGroup> Groups() {
  std::vector<ActiveDirectoryGroup> groups;
  char const* const rows[][3] = {{"Staff", "CN=Staff", "S-1-5-21-7-512"},
                                 {"NoSid", "CN=NoSid", ""},
                                 {"NoDn", "", "S-1-5-32-544"},
                                 {"Odd", "CN=Odd", "S-1-5"}};
  for (auto const& [name, distinguished_name, sid] : rows) {
    groups.emplace_back(name).SetDistinguishedName(distinguished_name);
    groups.back().SetSid(sid);
  }
  groups[2].SetErrorMessage("No distinguishedName Found");
  groups[2].SetLastSampleTime({3});
  return groups;
}

template <class Account>
void Fill(Account& account, std::string dn) {
  account.SetCacheState(kFilledFromDirectory);
  account.SetDistinguishedName(std::move(dn));
  account.SetLastSampleTime({1'000'000});
  account.SetGroups(Groups());
}

// Ann's record was read, Ben's never, and Cid's reading failed.
class ActiveDirectory : public OnScriptedMachine {
 protected:
  ActiveDirectory() {
    host_.computer = std::make_unique<ActiveDirectoryLocalComputer>();
    Fill(*host_.computer, "CN=WS1,DC=corp");
    host_.users = {{"ann", "CORP"},
                   ActiveDirectoryLocalUser("ben"),
                   ActiveDirectoryLocalUser("cid"),
                   ActiveDirectoryLocalUser("")};
    Fill(host_.users[0], "CN=ann");
    Fill(host_.users[2], "");
    host_.users[2].SetErrorMessage("No distinguishedName found");
    host_.users[2].SetGroupsErrorMessage("No tokenGroups found");
    Fill(host_.users[3], "CN=nameless");
    machine_->SetZone("UTC", "UTC0");
    machine::RecordArray sessions;
    for (auto const& [name, id] :
         {std::pair("CORP\\ann", 257), {"ben", 256}, {"cid", 65}, {"stranger", -1}}) {
      sessions.emplace_back(machine::RecordDictionary(
          {{"kCGSSessionIDKey", std::int64_t{id}}, {"kCGSSessionUserNameKey", std::string(name)}}));
    }
    machine_->console_user = machine::RecordDictionary(
        {{"Name", std::string("cid")}, {"SessionInfo", std::move(sessions)}});
    gatotu::SetInspectorContext(&host_);
  }
  ~ActiveDirectory() override {
    gatotu::SetInspectorContext(nullptr);
    SessionInfo::Shutdown();
  }

  TemporaryFolder const folder_;
  ScriptedHost host_{folder_};
};

using Rows = std::vector<std::pair<std::string, char const*>>;

void ExpectAnswers(Rows const& rows, std::string const& of = " of active directory") {
  for (auto const& [question, answer] : rows) EXPECT_EQ(Answer(question + of), answer) << question;
}

TEST_F(ActiveDirectory, ShowsWhatTheHostHas) {
  ExpectAnswers({
      {"distinguished name of local computer", "CN=WS1,DC=corp"},
      {"distinguished name error message of local computer", kNone},
      {"groups error message of local computer", kNone},
      {"sample time of local computer", "1970-01-01T00:00:01.000000+00:00"},
      {"names of groups of local computer", "Staff\nNoDn\nOdd"},
      {"distinguished names of groups of local computer", "CN=Staff\nCN=Odd"},
      {"component strings of sids of groups of local computer", "S-1-5-21-7-512\nS-1-5-32-544"},
      {"sid of group \"staff\" of local computer", "S-1-5-21-7-512"},
      {"name of group \"NoSid\" of local computer", kNone},
      {"sid of group \"odd\" of local computer", kNone},
      {"sid of group \"nodn\" of local computer", "S-1-5-32-544"},
      {"distinguished name error message of group \"nodn\" of local computer",
       "No distinguishedName Found"},
      {"sample time of group \"nodn\" of local computer", "1970-01-01T00:00:00.000003+00:00"},
      {"exists group \"absent\" of local computer", "false"},
      {"names of local users", "ann"},
      {"distinguished names of local users", "CN=ann\nCN=nameless"},
      {"name of local user \"ANN\"", "ann"},
      {"sample time of local user \"ann\"", "1970-01-01T00:00:01.000000+00:00"},
      {"names of groups of local user \"ann\"", "Staff\nNoDn\nOdd"},
      {"sid of group \"Staff\" of local user \"ann\"", "S-1-5-21-7-512"},
      {"exists group \"staff\" of local user \"ann\"", "false"},
      {"exists group \"NoDn\" of local user \"ann\"", "false"},
      {"name of local user \"cid\"", kNone},
      {"distinguished name error message of local user \"cid\"", "No distinguishedName found"},
      {"groups error message of local user \"cid\"", "No tokenGroups found"},
      {"distinguished names of logged on users", "CN=ann"},
      {"(sid of group \"staff\" of it = sid of group \"Staff\" of it) of local computer", "true"},
      {"(sid of group \"staff\" of it = sid of group \"nodn\" of it) of local computer", "false"},
  });
}

TEST_F(ActiveDirectory, ARecordThatWasNotReadIsAskedFor) {
  host_.computer = std::make_unique<ActiveDirectoryLocalComputer>();
  ExpectAnswers({
      {"distinguished name error message of local computer", kPending},
      {"groups error message of local computer", kPending},
      {"distinguished name of local computer", kNone},
      {"number of local users", "2"},
  });
  EXPECT_EQ(host_.computer->GetCacheState(), kRequestPending);
  EXPECT_EQ(host_.users[1].GetCacheState(), kNeverFilled);
  for (std::string const how : {"local", "logged on"}) {
    host_.users[1] = ActiveDirectoryLocalUser("ben");
    ExpectAnswers({
        {"distinguished name error message of " + how + " user \"ben\"", kPending},
        {"groups error message of " + how + " user \"ben\"", kPending},
    });
    EXPECT_EQ(host_.users[1].GetCacheState(), kRequestPending) << how;
  }
}

TEST_F(ActiveDirectory, IsThereWithoutAnythingInIt) {
  InspectorContext other;
  ScriptedHost disabled(folder_), empty(folder_);
  disabled.is_enabled = false;
  disabled.users = host_.users;
  for (InspectorContext* const context :
       std::vector<InspectorContext*>{nullptr, &other, &disabled, &empty}) {
    gatotu::SetInspectorContext(context);
    ExpectAnswers({
        {"distinguished name of local computer", kNone},
        {"groups error message of local computer", kNone},
        {"sample time of local computer", "1970-01-01T00:00:00.000000+00:00"},
        {"number of groups of local computer", "0"},
        {"distinguished name of local user \"ann\"", kNone},
        {"distinguished name error message of local user \"ben\"", kNone},
        {"distinguished name of logged on user \"ann\"", kNone},
        {"number of local users", "0"},
        {"number of logged on users", "0"},
    });
  }
  EXPECT_EQ(disabled.users[1].GetCacheState(), kNeverFilled);
  host_.is_enabled = false;
  gatotu::SetInspectorContext(&host_);
  ExpectAnswers({{"distinguished name of local computer", "CN=WS1,DC=corp"}});
}

TEST_F(ActiveDirectory, LooksForLoggedOnUsersByNameAndDomain) {
  struct {
    char const *name, *domain;
    bool answer;
    std::string found;
  } const cases[] = {
      {"ANN", "", true, "CN=ann"},       {"ann", "corp", true, "CN=ann"},
      {"ann", "other", true, "before"},  {"absent", "", true, "before"},
      {"stranger", "", false, "before"}, {"ben", "", false, ""},
  };
  for (auto const& row : cases) {
    ActiveDirectoryLocalUser user;
    user.SetDistinguishedName("before");
    EXPECT_EQ(ActiveDirectoryServer::The().GetLoggedOnUser(&host_, row.name, row.domain, user),
              row.answer)
        << row.name;
    EXPECT_EQ(user.GetDistinguishedName(), row.found) << row.name << row.domain;
  }
  machine_->console_user.reset();
  EXPECT_THAT(Answer("names of logged on users of active directory"),
              testing::HasSubstr("MacUnableToGetSessionList"));
}

TEST_F(ActiveDirectory, LeadsOnFromTheUsersOfTheMachine) {
  auto const directory = std::make_shared<ScriptedRecords>();
  for (std::string const name : {"ann", "ben", "cid", "CORP\\ann", "stranger"}) {
    directory->Add(kUsersRecordType, name,
                   {{"dsAttrTypeStandard:NFSHomeDirectory", {name == "ben" ? "/none" : "/"}}});
  }
  machine_->directory = directory;
  auto const live = machine::MakeLiveMachine();
  machine_->files = {live, &live->Files()};
  ExpectAnswers(
      {
          {"distinguished names of active directory users of users", "CN=ann"},
          {"exists active directory user of user \"ben\"", "false"},
          {"names of users whose (not exists home directory of it)", "ben"},
          {"(active of it, remote of it, name of user of it) of current user", "true, false, cid"},
          {"(name of it, session id of it) of logged on users",
           "stranger, \xFF\ncid, A\nben, \nCORP\\ann, \x01"},
      },
      "");
}

TEST(SecurityIdentifier, ThatHoldsNothingEqualsNothing) {
  security_identifier const sid("S-1-5-32-544"), same("S-1-5-32-544"), none, failed("S-1-5");
  EXPECT_TRUE(sid == same);
  EXPECT_FALSE(sid == none || none == sid || none == none || none == failed);
}

}  // namespace
