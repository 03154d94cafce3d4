#include "frameworks/DirectoryService/references.h"
#include "inspectors/activedirectory/directory/account_operations.h"
#include "inspectors/activedirectory/directory/directory_errors.h"
#include "inspectors/activedirectory/directory/directory_queries.h"
#include "inspectors/activedirectory/directory/record_lookup.h"
#include "tests/directory/folder_context.h"
#include "tests/support/on_scripted_machine.h"
#include "tests/support/scripted_records.h"

namespace {

using namespace std::string_literals;
using Groups = std::vector<ActiveDirectoryGroup>;

constexpr char kDistinguishedName[] = "dsAttrTypeNative:distinguishedName";

// S-1-5-<first>
std::string Sid(std::uint32_t first) {
  std::string sid = "\1\1\0\0\0\0\0\5"s;
  for (int shift = 0; shift < 32; shift += 8) sid += static_cast<char>(first >> shift);
  return sid;
}

class Queries : public OnScriptedMachine {
 protected:
  Queries() {
    machine_->directory = directory_;
    machine_->microseconds = 5;
    machine_->computer_name = "Zoë";
  }
  void TearDown() override { EXPECT_EQ(DirectoryServiceOpenReferenceCount(), 0u); }

  void AddGroup(std::uint32_t number, std::vector<std::string> names) {
    directory_->Add(
        std::string(machine::kGroupRecords), "g" + std::to_string(number),
        {{"dsAttrTypeNative:objectSid", {Sid(number)}}, {kDistinguishedName, std::move(names)}});
  }
  // What was found, or why nothing was.
  static std::string NameOf(std::string const& user) {
    std::string found, error = "old";
    return MacintoshPlatform::GetLocalUserDistinguishedName(nullptr, user, "D", found, error)
               ? found
               : error;
  }
  static std::string SidsOf(std::string const& user) {
    Groups groups = {ActiveDirectoryGroup("old")};
    std::string sids, error = "old";
    bool const is_found =
        MacintoshPlatform::GetLocalUserGroupSids(nullptr, user, "D", groups, error);
    if (!is_found) return groups.at(0).GetName() + ": " + error;
    for (ActiveDirectoryGroup const& group : groups) sids += group.GetSid() + " ";
    return sids;
  }
  bool NameGroups(ActiveDirectoryInspectorContext const* context) {
    for (ActiveDirectoryGroup& group : groups_) group.SetSid("S-1-5-7");
    return MacintoshPlatform::GetLocalUserGroups(context, groups_, error_);
  }

  std::shared_ptr<ScriptedRecords> directory_ = std::make_shared<ScriptedRecords>();
  Groups groups_;
  std::string error_;
};

template <class Failed>
std::string Fail(MacintoshPlatform::ADAttributeArgs const&) {
  throw Failed();
}

TEST_F(Queries, HaveNoTextForSomeFailures) {
  std::string result = "before";
  for (auto const routine : {Fail<DSGetRecordListFailed>, Fail<ODGetLocalHostedNodeFailed>,
                             Fail<DebuggableException>, Fail<int>}) {
    EXPECT_EQ(CallODRoutineAndCatchError(routine, {}, result), "Unknown error");
  }
  EXPECT_EQ(result, "before");
}

TEST_F(Queries, FindDistinguishedNames) {
  std::string const none = "No distinguishedName found";
  std::string const bad_list = "dsBuildListFromStrings() failed";
  struct {
    char const* name;
    std::string user;
    std::vector<std::string> names;  // of the user "ann"
    std::string outcome;
  } const rows[] = {
      {"the first", "ANN", {"CN=ann", "second"}, "CN=ann"},
      {"bytes", "ann", {"\0\xFF"s}, "\0\xFF"s},
      {"unknown", "bob", {"CN=ann"}, none},
      {"pattern", "a*", {"CN=ann"}, none},
      {"no user", "", {"CN=ann"}, none},
      {"word for all", "dsRecordsAll", {"CN=ann"}, bad_list},
      {"cut short by NUL", "ann\0x"s, {"CN=ann"}, bad_list},
      {"larger than the buffer", "ann", {std::string(9000, 'x')}, "dsGetRecordList() failed"},
      {"empty", "ann", {""}, none},
      {"no value", "ann", {}, "dsGetAttributeValue() failed"},
  };
  for (auto const& row : rows) {
    directory_->records.clear();
    directory_->Add(std::string(machine::kUserRecords), "ann", {{kDistinguishedName, row.names}});
    EXPECT_EQ(NameOf(row.user), row.outcome) << row.name;
  }
  directory_->answers_as_is = true;
  directory_->records[0].attributes.clear();
  EXPECT_EQ(NameOf("ann"), "dsGetAttributeEntry() failed");
}

TEST_F(Queries, FindTheComputerByItsNameInMacRoman) {
  directory_->Add(std::string(machine::kComputerRecords), "Zo\x91$",
                  {{kDistinguishedName, {"CN=Zoe"}}});
  std::string found;
  EXPECT_TRUE(MacintoshPlatform::GetLocalComputerDistinguishedName(nullptr, found, error_));
  EXPECT_EQ(found, "CN=Zoe");
  machine_->computer_name.reset();
  EXPECT_FALSE(MacintoshPlatform::GetLocalComputerDistinguishedName(nullptr, found, error_));
}

TEST_F(Queries, ListTheSidsOfAnAccount) {
  std::string const none = "old: No tokenGroups found", short_sid = "\1\0\0\0\0\0"s;
  struct {
    char const* name;
    std::vector<std::string> values;
    std::string outcome;
  } const rows[] = {
      {"six bytes", {short_sid, Sid(7), Sid(9)}, "S-1-5-7 S-1-5-9 "},
      {"only six bytes", {short_sid}, none},
      {"cut short", {Sid(7).substr(0, 11)}, none},
      {"no groups", {}, none},
  };
  for (auto const& row : rows) {
    directory_->records.clear();
    directory_->Add("ann", row.values);
    EXPECT_EQ(SidsOf("ann"), row.outcome) << row.name;
  }
  directory_->Add("bob", std::vector(10'000, Sid(7)));
  directory_->calls = 0;
  EXPECT_EQ(SidsOf("bob").size(), 80'000u);
  EXPECT_EQ(directory_->calls, 1);
}

TEST_F(Queries, NameGroupsByTheirSids) {
  struct {
    char const* name;
    std::vector<std::string> names;
    std::string found;
  } const rows[] = {
      {"ordinary", {"CN=Staff,OU=G,DC=c"}, "Staff of CN=Staff,OU=G,DC=c"},
      {"no equals sign", {"Staff,DC"}, ""},
      {"no comma", {"CN=Staff"}, ""},
      {"comma before", {"a,CN=Staff"}, ""},
      {"comma before and behind", {"a,CN=Staff,DC=c"}, "Staff of a,CN=Staff,DC=c"},
      {"nothing between", {"CN=,DC=c"}, ""},
      {"the last value wins", {"CN=a,x", "CN=b,x", "c"}, "b of c"},
      {"unknown", {}, ""},
  };
  for (auto const& row : rows) {
    directory_->records.clear();
    AddGroup(7, row.names);
    groups_.assign(1, {});
    EXPECT_TRUE(NameGroups(nullptr)) << row.name;
    ActiveDirectoryGroup const& group = groups_[0];
    EXPECT_EQ(group.GetErrorMessage(), row.found.empty() ? "No distinguishedName Found" : "");
    EXPECT_EQ(group.GetName() + (row.found.empty() ? "" : " of ") + group.GetDistinguishedName(),
              row.found)
        << row.name;
    EXPECT_EQ(group.GetLastSampleTime().microseconds, 0) << row.name;
  }
}

TEST_F(Queries, EndAGroupResolutionEarly) {
  TemporaryFolder const folder;
  FolderContext context(folder);
  context.stops_after = 1;
  AddGroup(7, {"CN=Staff,DC=c"});
  groups_.resize(2);
  EXPECT_FALSE(NameGroups(&context));
  EXPECT_EQ(error_, "Client Requested Shutdown");
  EXPECT_EQ(groups_[0].GetName(), "Staff");
  EXPECT_EQ(groups_[1].GetName() + groups_[1].GetErrorMessage(), "");

  directory_->failure = machine::Outcome::kTimedOut;
  EXPECT_FALSE(NameGroups(nullptr));
  groups_.clear();
  EXPECT_FALSE(NameGroups(nullptr));
  EXPECT_EQ(error_, "dsGetRecordList() failed");
  error_.clear();
  EXPECT_FALSE(NameGroups(nullptr));
  EXPECT_EQ(error_, "No SIDs to evaluate");
}

TEST_F(Queries, LookUpWholeRecords) {
  std::string const users(machine::kUserRecords);
  for (int i = 0; i < 100; ++i) {
    directory_->Add(users, std::to_string(i), {{"a", {std::string(900, 'x'), "y"}}, {"b", {""}}});
  }
  directory_->Add(users, "large", {{"a", {std::string(50'000, 'x')}}});
  ODRecordList const all = GetODObjectListOfType(users);
  EXPECT_EQ(directory_->last.node, machine::DirectoryNode::kLocal);
  ASSERT_EQ(all.size(), 101u);
  // More than one buffer holds.
  std::string value;
  int number = 0;
  ODRecordList::Place place;
  while (auto const record = all.Next(place)) {
    EXPECT_FALSE(GetODRecordSingleValue(*record, "A", value));
    EXPECT_TRUE(GetODRecordSingleValue(*record, "dsAttrTypeStandard:RecordName", value));
    EXPECT_EQ(value, number == 100 ? "large" : std::to_string(number));
    ++number;
  }
  EXPECT_EQ(number, 101);

  ODRecord const large = GetODObjectOfType(users, "LARGE");
  EXPECT_TRUE(GetODRecordSingleValue(large, "a", value));
  EXPECT_EQ(directory_->last.node, machine::DirectoryNode::kSearch);
  EXPECT_EQ(value.size(), 50'000u);
  directory_->Add(users, "valueless", {{"b", {}}, {"a", {"x"}}});
  ODRecord const valueless = GetODObjectOfType(users, "valueless");
  EXPECT_FALSE(GetODRecordSingleValue(valueless, "b", value));
  std::string attributes;
  for (auto const& [name, first] : valueless.Attributes()) attributes += name + "=" + first + ";";
  EXPECT_EQ(attributes, "a=x;b=;dsAttrTypeStandard:RecordName=valueless;");
  EXPECT_THROW(GetODObjectOfType(users, "none"), DSGetRecordListFailed);
  directory_->failure = machine::Outcome::kPermissionRefused;
  EXPECT_THROW(GetODObjectListOfType(users), DSGetRecordListFailed);
}

}  // namespace
