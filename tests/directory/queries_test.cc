#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frameworks/DirectoryService/references.h"
#include "inspectors/activedirectory/directory/account_operations.h"
#include "inspectors/activedirectory/directory/directory_errors.h"
#include "inspectors/activedirectory/directory/directory_queries.h"
#include "inspectors/activedirectory/directory/record_lookup.h"
#include "tests/directory/folder_context.h"
#include "tests/support/scripted_machine.h"
#include "tests/support/scripted_records.h"

namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Attributes = std::vector<machine::DirectoryAttribute>;
using Groups = std::vector<ActiveDirectoryGroup>;

constexpr char kDistinguishedName[] = "dsAttrTypeNative:distinguishedName";

// S-1-5-<first>
std::string Sid(std::uint32_t first) {
  std::string sid = "\1\1\0\0\0\0\0\5"s;
  for (int shift = 0; shift < 32; shift += 8) sid += static_cast<char>(first >> shift);
  return sid;
}

class Queries : public testing::Test {
 protected:
  Queries() {
    machine_->directory = directory_;
    machine_->microseconds = 5;
    machine_->computer_name = "Zoë";
  }
  void TearDown() override { EXPECT_EQ(DirectoryServiceOpenReferenceCount(), 0u); }

  void AddGroup(std::uint32_t number, std::vector<std::string> names) {
    Attributes attributes = {{"dsAttrTypeNative:objectSid", {Sid(number)}}};
    if (!names.empty()) attributes.push_back({kDistinguishedName, std::move(names)});
    directory_->Add(std::string(machine::kGroupRecords), "g" + std::to_string(number), attributes);
  }

  std::shared_ptr<ScriptedRecords> directory_ = std::make_shared<ScriptedRecords>();
  std::shared_ptr<ScriptedMachine> machine_ = std::make_shared<ScriptedMachine>();
  MachineInUse in_use_{machine_};
};

template <class Failed>
std::string Fail(MacintoshPlatform::ADAttributeArgs const&) {
  throw Failed();
}

TEST_F(Queries, TellWhichCallFailed) {
  struct {
    std::string (*routine)(MacintoshPlatform::ADAttributeArgs const&);
    char const* error;
  } const rows[] = {
      {Fail<MacintoshPlatform::DSGetRecordListFailed>, "dsGetRecordList() failed"},
      {Fail<DSGetRecordListFailed>, "Unknown error"},
      {Fail<ODGetLocalHostedNodeFailed>, "Unknown error"},
      {Fail<ODGetDirNodeInfoFailed>, "dsGetDirNodeInfo() failed"},
      {Fail<ODGetAttributeValueDataFailed>, "attr value was NULL"},
      {Fail<ODDataBufferAllocFailed>, "dsDataBufferAllocate() failed"},
      {Fail<ODGetDirNodeNameFailed>, "dsGetDirNodeName() failed"},
      {Fail<ODBuildListFromPathFailed>, "dsBuildFromPath() failed"},
      {Fail<ODOpenDirNodeFailed>, "dsOpenDirNode() failed"},
      {Fail<ODGetSearchDirNodeFailed>, "dsFindDirNodes() failed"},
      {Fail<ODGetRecordEntryFailed>, "dsGetRecordEntry() failed"},
      {Fail<OpenDirectoryServiceNotAvailable>, "dsOpenDirService() failed"},
      {Fail<int>, "Unknown error"},
  };
  for (auto const& row : rows) {
    std::string result = "before";
    EXPECT_EQ(CallODRoutineAndCatchError(row.routine, {}, result), row.error);
    EXPECT_EQ(result, "before");
  }
}

TEST_F(Queries, FindDistinguishedNames) {
  std::string const none = "No distinguishedName found", failed = "dsGetRecordList() failed";
  std::string const bad_list = "dsBuildListFromStrings() failed";
  struct {
    char const* name;
    std::string user;
    Attributes attributes;  // of the user "ann"
    std::string found, error;
    bool answers_as_is = false;
  } const rows[] = {
      {"found", "ANN", {{kDistinguishedName, {"CN=ann", "second"}}}, "CN=ann", ""},
      {"bytes", "ann", {{kDistinguishedName, {"\0\xFF"s}}}, "\0\xFF"s, ""},
      {"unknown", "bob", {{kDistinguishedName, {"CN=ann"}}}, "", none},
      {"pattern", "a*", {{kDistinguishedName, {"CN=ann"}}}, "", none},
      {"filter", "ann)(\\", {{kDistinguishedName, {"CN=ann"}}}, "", none},
      {"empty", "", {{kDistinguishedName, {"CN=ann"}}}, "", none},
      {"word for all", "dsRecordsAll", {{kDistinguishedName, {"CN=ann"}}}, "-", bad_list},
      {"cut short by NUL", "ann\0x"s, {{kDistinguishedName, {"CN=ann"}}}, "-", bad_list},
      {"larger than the buffer",
       "ann",
       {{kDistinguishedName, {std::string(9000, 'x')}}},
       "-",
       failed},
      {"empty name", "ann", {{kDistinguishedName, {""}}}, "", none},
      {"no attribute", "ann", {}, "-", "dsGetAttributeEntry() failed", true},
      {"no value", "ann", {{kDistinguishedName, {}}}, "-", "dsGetAttributeValue() failed", true},
  };
  for (auto const& row : rows) {
    directory_->records = {{"dsRecTypeStandard:Users", "ann", {}, row.attributes}};
    directory_->records[0].attributes.push_back({std::string(machine::kRecordName), {"ann"}});
    directory_->answers_as_is = row.answers_as_is;
    if (row.attributes.empty()) directory_->records[0].attributes.clear();
    std::string found = "-", error = "old";
    bool const is_found =
        MacintoshPlatform::GetLocalUserDistinguishedName(nullptr, row.user, "D", found, error);
    EXPECT_EQ(error, row.error) << row.name;
    EXPECT_EQ(found, row.found) << row.name;
    EXPECT_EQ(is_found, row.error.empty()) << row.name;
  }
}

TEST_F(Queries, FindTheComputerByItsNameInMacRoman) {
  directory_->Add(std::string(machine::kComputerRecords), "Zo\x91$",
                  {{kDistinguishedName, {"CN=Zoe"}}, {"dsAttrTypeNative:tokenGroups", {Sid(7)}}});
  std::string found, error;
  Groups groups;
  EXPECT_TRUE(MacintoshPlatform::GetLocalComputerDistinguishedName(nullptr, found, error));
  EXPECT_TRUE(MacintoshPlatform::GetLocalComputerGroupSids(nullptr, groups, error));
  EXPECT_EQ(found, "CN=Zoe");
  EXPECT_THAT(groups, SizeIs(1));
  machine_->computer_name.reset();
  EXPECT_FALSE(MacintoshPlatform::GetLocalComputerDistinguishedName(nullptr, found, error));
  EXPECT_EQ(error, "No distinguishedName found");
}

TEST_F(Queries, ListTheSidsOfAnAccount) {
  std::string const none = "No tokenGroups found";
  std::string const most = "\1\xFF\0\0\0\0\0\5"s + std::string(4 * 254, '\0') + "\7\0\0\0"s;
  struct {
    char const* name;
    std::vector<std::string> values, sids;
    std::string error;
  } const rows[] = {
      {"two", {Sid(7), Sid(9)}, {"S-1-5-7", "S-1-5-9"}, ""},
      {"six bytes", {"\1\0\0\0\0\0"s, Sid(7)}, {"S-1-5-7"}, ""},
      {"only six bytes", {"\1\0\0\0\0\0"s}, {}, none},
      {"cut short", {Sid(7).substr(0, 11)}, {}, none},
      {"255 sub-authorities", {most}, {"S-1-5-7"}, ""},
      {"no groups", {}, {}, none},
      {"as many as need many buffers", std::vector(10'000, Sid(7)), std::vector(10'000, "S-1-5-7"s),
       ""},
  };
  for (auto const& row : rows) {
    directory_->records.clear();
    directory_->Add("ann", row.values);
    directory_->calls = 0;
    Groups groups = {ActiveDirectoryGroup("old")};
    std::string error;
    EXPECT_EQ(MacintoshPlatform::GetLocalUserGroupSids(nullptr, "ann", "D", groups, error),
              row.error.empty());
    EXPECT_EQ(error, row.error) << row.name;
    EXPECT_EQ(directory_->calls, 1) << row.name;
    if (!row.error.empty()) {
      EXPECT_EQ(groups.at(0).GetName(), "old") << row.name;
      continue;
    }
    std::vector<std::string> sids;
    for (ActiveDirectoryGroup const& group : groups) sids.push_back(group.GetSid());
    EXPECT_EQ(sids, row.sids) << row.name;
  }
}

TEST_F(Queries, NameGroupsByTheirSids) {
  std::string const none = "No distinguishedName Found";
  struct {
    char const* name;
    std::vector<std::string> names;
    std::string found, distinguished_name, message;
  } const rows[] = {
      {"ordinary", {"CN=Staff,OU=G,DC=c"}, "Staff", "CN=Staff,OU=G,DC=c", ""},
      {"no equals sign", {"Staff,DC"}, "", "", none},
      {"no comma", {"CN=Staff"}, "", "", none},
      {"comma before", {"a,CN=Staff"}, "", "", none},
      {"comma before and behind", {"a,CN=Staff,DC=c"}, "Staff", "a,CN=Staff,DC=c", ""},
      {"nothing between", {"CN=,DC=c"}, "", "", none},
      {"the last value wins", {"CN=a,x", "CN=b,x", "c"}, "b", "c", ""},
      {"unknown", {}, "", "", none},
  };
  for (auto const& row : rows) {
    directory_->records.clear();
    AddGroup(7, row.names);
    Groups groups(1);
    groups[0].SetSid("S-1-5-7");
    std::string error = "old";
    EXPECT_TRUE(MacintoshPlatform::GetLocalUserGroups(nullptr, groups, error)) << row.name;
    EXPECT_EQ(groups[0].GetName(), row.found) << row.name;
    EXPECT_EQ(groups[0].GetDistinguishedName(), row.distinguished_name) << row.name;
    EXPECT_EQ(groups[0].GetErrorMessage(), row.message) << row.name;
    EXPECT_EQ(groups[0].GetLastSampleTime().microseconds, 0) << row.name;
  }
  AddGroup(8, {"CN=b,x"});
  EXPECT_EQ(MacintoshPlatform::GetGroupInternal({"S-1-5-8", std::string(machine::kGroupRecords)})
                .GetLastSampleTime()
                .microseconds,
            5);
}

TEST_F(Queries, EndAGroupResolutionEarly) {
  TemporaryFolder const folder;
  FolderContext context(folder);
  context.stops_after = 1;
  AddGroup(7, {"CN=Staff,DC=c"});
  Groups groups(2);
  for (ActiveDirectoryGroup& group : groups) group.SetSid("S-1-5-7");
  std::string error;
  EXPECT_FALSE(MacintoshPlatform::GetLocalComputerGroups(&context, groups, error));
  EXPECT_EQ(error, "Client Requested Shutdown");
  EXPECT_EQ(groups[0].GetName(), "Staff");
  EXPECT_EQ(groups[1].GetName() + groups[1].GetErrorMessage(), "");

  directory_->failure = machine::Outcome::kTimedOut;
  EXPECT_FALSE(MacintoshPlatform::GetLocalComputerGroups(nullptr, groups, error));
  EXPECT_EQ(error, "dsGetRecordList() failed");
  groups.clear();
  EXPECT_FALSE(MacintoshPlatform::GetLocalComputerGroups(nullptr, groups, error));
  EXPECT_EQ(error, "dsGetRecordList() failed");
  error.clear();
  EXPECT_FALSE(MacintoshPlatform::GetLocalComputerGroups(nullptr, groups, error));
  EXPECT_EQ(error, "No SIDs to evaluate");
}

TEST_F(Queries, LookUpWholeRecords) {
  std::string const users(machine::kUserRecords), name(machine::kRecordName);
  for (int i = 0; i < 100; ++i) {
    directory_->Add(users, std::to_string(i), {{"a", {std::string(900, 'x'), "y"}}, {"b", {""}}});
  }
  directory_->Add(users, "large", {{"a", {std::string(50'000, 'x')}}});
  std::vector<ODRecord> const all = GetODObjectListOfType(users);
  EXPECT_EQ(directory_->last.node, machine::DirectoryNode::kLocal);
  EXPECT_EQ(directory_->calls, 1);
  ASSERT_THAT(all, SizeIs(101));
  EXPECT_THAT(all[99].at(name), ElementsAre("99"));
  EXPECT_THAT(all[99].at("a"), ElementsAre(std::string(900, 'x'), "y"));

  ODRecord const large = GetODObjectOfType(users, "LARGE");
  EXPECT_EQ(directory_->last.node, machine::DirectoryNode::kSearch);
  std::string value = "old";
  EXPECT_TRUE(GetODRecordSingleValue(large, "a", value));
  EXPECT_EQ(value.size(), 50'000u);
  EXPECT_TRUE(GetODRecordSingleValue(all[0], "b", value));
  EXPECT_EQ(value, "");
  EXPECT_FALSE(GetODRecordSingleValue(all[0], "A", value));
  EXPECT_FALSE(GetODRecordSingleValue({{"a", {}}}, "a", value));

  EXPECT_THROW(GetODObjectOfType(users, "none"), DSGetRecordListFailed);
  EXPECT_THROW(GetODObjectOfType(users, "dsRecordsAll"), ODBuildListFromStringFailed);
  EXPECT_THAT(GetODObjectListOfType("dsRecTypeStandard:Others"), IsEmpty());
  directory_->failure = machine::Outcome::kPermissionRefused;
  EXPECT_THROW(GetODObjectListOfType(users), DSGetRecordListFailed);
}

}  // namespace
