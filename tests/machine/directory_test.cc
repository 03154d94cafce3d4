#include "machine/directory.h"

#include "machine/directory_records.h"
#include "machine/live/directory_entry.h"
#include "machine/live/directory_filter.h"
#include "tests/machine/recorded_capture.h"
#include "tests/portable_inspectors/program_output.h"
#include "tests/support/scripted_machine.h"
#include "tests/support/scripted_records.h"

namespace {

using machine::DirectoryQuery;
using machine::DirectoryRecord;
using machine::Outcome;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kName[] = "dsAttrTypeStandard:RecordName";
constexpr char kAll[] = "dsAttributesAll";

std::string const kUsers(machine::kUserRecords), kGroups(machine::kGroupRecords),
    kComputers(machine::kComputerRecords);

// A record as "name" or "name attribute=value,value".
std::vector<std::string> Lines(machine::Fact<machine::DirectoryRecords> const& records,
                               std::string const& attribute = {}) {
  if (!records) return {std::string(NameOf(records.outcome()))};
  std::vector<std::string> lines;
  for (DirectoryRecord const& record : *records) {
    std::string& line = lines.emplace_back(record.name);
    machine::DirectoryAttribute const* const found = record.Find(attribute);
    if (found == nullptr) continue;
    char separator = '=';
    for (std::string const& value : found->values) {
      line += std::exchange(separator, ',') + value;
    }
  }
  return lines;
}

DirectoryQuery Named(std::string type, std::vector<std::string> names, std::string requested) {
  return {.type = std::move(type), .values = std::move(names), .requested = {std::move(requested)}};
}

TEST(LocalDirectory, AgreesWithGetent) {
  std::string const expected = OutputOf("getent passwd | cut -d: -f1,3,4,6,7");
  if (expected.empty()) GTEST_SKIP() << "getent is missing";
  auto const live = machine::MakeLiveMachine();
  DirectoryQuery query = Named(kUsers, {}, kAll);
  query.node = machine::DirectoryNode::kLocal;
  auto const users = live->Directory().Find(query);
  ASSERT_TRUE(users);
  std::string text;
  for (DirectoryRecord const& user : *users) {
    text += user.name;
    for (char const* name : {"UniqueID", "PrimaryGroupID", "NFSHomeDirectory", "UserShell"}) {
      auto const* value = user.Find("dsAttrTypeStandard:" + std::string(name));
      text += ":" + (value == nullptr ? std::string() : value->values.front());
    }
    text += "\n";
  }
  EXPECT_EQ(text, expected);
  EXPECT_THAT(
      Lines(live->Directory().Find(Named(kUsers, {"ROOT"}, kAll)), "dsAttrTypeStandard:UniqueID"),
      ElementsAre("root=0"));
}

TEST(LocalDirectory, ReadsTheAccountsOfARecordedTree) {
  RecordedTree tree;
  tree.Write("/etc/passwd",
             "ann:x:7:8:Ann Lee,room 3:/home/ann:/bin/sh\n"
             "+::::::\nbroken\n\nbob:x:9:8::/b:\nno number:x:z:8::/:\n");
  tree.Write("/etc/group", "staff:x:8:ann,bob\nempty:x:10:\n");
  auto const machine = tree.Machine();
  auto const find = [&](std::string const& type, std::vector<std::string> names,
                        std::string const& attribute) {
    return Lines(machine->Directory().Find(Named(type, std::move(names), kAll)), attribute);
  };
  EXPECT_THAT(find(kUsers, {}, "dsAttrTypeStandard:RealName"), ElementsAre("ann=Ann Lee", "bob"));
  EXPECT_THAT(find(kUsers, {"BOB", "nobody"}, "dsAttrTypeStandard:UniqueID"), ElementsAre("bob=9"));
  EXPECT_THAT(find(kGroups, {}, "dsAttrTypeStandard:GroupMembership"),
              ElementsAre("staff=ann,bob", "empty"));
  EXPECT_THAT(find(kComputers, {}, kName), IsEmpty());
  // It has no names of its own to answer with.
  EXPECT_THAT(Lines(machine->Directory().Find(
                  Named(kUsers, {"ann"}, "dsAttrTypeNative:distinguishedName"))),
              IsEmpty());
}

TEST(DirectoryFilter, EscapesWhatHasAMeaning) {
  struct {
    char const* name;
    std::string type, value, filter;
  } const cases[] = {
      {"plain", kUsers, "ann", "(&(objectCategory=person)(objectClass=user)(sAMAccountName=ann))"},
      {"special", kGroups, std::string("*()\\\0", 5),
       "(&(objectClass=group)(sAMAccountName=\\2a\\28\\29\\5c\\00))"},
      {"other bytes", kGroups, "\xC3\xA4\n", "(&(objectClass=group)(sAMAccountName=\\c3\\a4\\0a))"},
      {"computer", kComputers, "ws7",
       "(&(objectClass=computer)(|(sAMAccountName=ws7$)(cn=ws7)(dNSHostName=ws7)))"},
  };
  for (auto const& test : cases) {
    auto const search = machine::live::SearchFor(Named(test.type, {test.value}, kAll));
    ASSERT_TRUE(search) << test.name;
    EXPECT_EQ(search->filter, test.filter) << test.name;
  }
  EXPECT_FALSE(machine::live::SearchFor(Named(kUsers, {""}, kAll)));
  EXPECT_FALSE(machine::live::SearchFor(Named("dsRecTypeStandard:Printers", {"x"}, kAll)));
  DirectoryQuery odd = Named(kUsers, {"x"}, "dsAttrTypeNative:a)(b=*");
  EXPECT_THAT(machine::live::SearchFor(odd)->attributes, ElementsAre("sAMAccountName"));
  odd.attribute = "dsAttrTypeNative:a)(b";
  EXPECT_FALSE(machine::live::SearchFor(odd));
}

TEST(DirectoryFilter, SendsSecurityIdentifiersAsBytes) {
  DirectoryQuery query = Named(kGroups, {"S-1-5-32-544"}, kAll);
  query.attribute = "dsAttrTypeNative:objectSid";
  EXPECT_EQ(machine::live::SearchFor(query)->filter,
            "(&(objectClass=group)(objectSid=\\01\\02\\00\\00\\00\\00\\00\\05\\20\\00\\00\\00"
            "\\20\\02\\00\\00))");
  for (char const* text : {"", "S-", "S-1", "S-1-", "S-1-5-", "S-1-5--1", "S-1-5-4294967296",
                           "S-256-5", "S-1-5-x", "S-1-1-1-1-1-1-1-1-1-1-1-1-1-1-1-1-1-1"}) {
    EXPECT_FALSE(machine::BinarySid(text)) << text;
  }
}

// Answers a search for an attribute with the part of its values that it has.
class RangedConnection final : public machine::live::LdapConnection {
 public:
  std::string const& uri() const override { return default_base; }
  std::string const& configured_base() const override { return default_base; }
  bool is_usable() const override { return true; }
  machine::Fact<std::vector<machine::live::LdapEntry>> Search(
      machine::live::LdapSearch const& search, machine::live::Patience const&) override {
    machine::live::LdapEntry entry = {search.base, {}};
    auto const part = parts.find(search.attributes.front());
    if (part != parts.end()) entry.attributes.push_back(part->second);
    return std::vector{entry};
  }

  std::map<std::string, std::pair<std::string, std::vector<std::string>>> parts;
};

TEST(DirectoryEntry, JoinsValuesThatComeInParts) {
  machine::live::Patience const patience(std::chrono::milliseconds(10'000));
  machine::live::LdapEntry const first = {"cn=g",
                                          {{"cn", {"g"}}, {"member;Range=0-1", {"0", "1"}}}};
  RangedConnection connection;
  auto entry = first;
  EXPECT_TRUE(CompleteEntry(connection, {}, patience, entry)) << "nothing came behind the promise";
  connection.parts = {{"member;range=2-*", {"member;range=2-3", {"2", "3"}}},
                      {"member;range=4-*", {"member;range=4-*", {"4"}}}};
  entry = first;
  EXPECT_FALSE(CompleteEntry(connection, {}, patience, entry));
  EXPECT_EQ(entry.attributes[1].first, "member");
  EXPECT_THAT(entry.attributes[1].second, ElementsAre("0", "1", "2", "3", "4"));
}

TEST(CapturedDirectory, JoinsItsRecordsAndThoseOfAVolume) {
  RecordedTree const tree;
  std::string const users = "/root/var/db/dslocal/nodes/Default/users/";
  tree.Write(users + "ann.plist", R"(<plist><dict>
      <key>name</key><array><string>ann</string><string>Ann L</string></array>
      <key>uid</key><array><string>501</string></array>
      <key>ShadowHashData</key><array><data>AAAA</data></array></dict></plist>)");
  tree.Write(users + "zoe.plist",
             "<plist><dict><key>name</key><array><string>zoe</string></array></dict></plist>");
  tree.Write(users + "nameless.plist",
             "<plist><dict><key>uid</key><array><string>0</string></array></dict></plist>");
  tree.Write(users + "broken.plist", "<plist><dict><key>name");
  // The record that has no name is left out.
  auto const capture = Documented(tree, R"(
      <key>Directory</key><dict><key>dsRecTypeStandard:Users</key><array>
        <dict><key>dsAttrTypeStandard:RecordName</key><array><string>ann</string></array>
          <key>dsAttrTypeStandard:AppleMetaNodeLocation</key><string>/LDAPv3/dc1</string>
          <key>dsAttrTypeNative:tokenGroups</key><array><data>AQIA</data></array></dict>
        <dict><key>dsAttrTypeStandard:UniqueID</key><string>7</string></dict></array></dict>)");
  auto const find = [&](std::vector<std::string> names, char const* requested) {
    return Lines(capture->Directory().Find(Named(kUsers, std::move(names), requested)), requested);
  };
  EXPECT_THAT(find({"ann l"}, "dsAttrTypeStandard:UniqueID"), ElementsAre("ann=501"));
  EXPECT_THAT(find({}, kName), ElementsAre("ann=ann,Ann L", "zoe=zoe"));
  EXPECT_THAT(find({"ann"}, "dsAttrTypeNative:tokenGroups"),
              ElementsAre(std::string("ann=\1\2\0", 7)));
  EXPECT_THAT(find({"ann"}, "dsAttrTypeNative:ShadowHashData"), IsEmpty());
}

TEST(CapturedDirectory, AWrongRecordIsMalformed) {
  RecordedTree const tree;
  auto const outcome_of = [&tree](std::string const& entries) {
    return Documented(tree, entries)->Directory().Find(Named(kUsers, {}, kAll)).outcome();
  };
  for (char const* directory :
       {"<string/>", "<dict><key>dsRecTypeStandard:Users</key><dict/></dict>",
        "<dict><key>dsRecTypeStandard:Users</key><array><true/></array></dict>",
        "<dict><key>dsRecTypeStandard:Users</key><array><dict/></array></dict>",
        "<dict><key>dsRecTypeStandard:Users</key><array><dict>"
        "<key>dsAttrTypeStandard:RecordName</key><array><true/></array></dict></array></dict>"}) {
    EXPECT_EQ(outcome_of(std::string("<key>Directory</key>") + directory), Outcome::kMalformed)
        << directory;
  }
  EXPECT_EQ(outcome_of(""), Outcome::kAbsent);
}

TEST(CapturedDirectory, AnswersAsItWasRecorded) {
  auto const records = std::make_shared<ScriptedRecords>();
  auto const live = std::make_shared<ScriptedMachine>();
  live->directory = records;
  for (char const* name : {"ann", "bob*", "bob*"}) {
    records->Add(kUsers, name,
                 {{"dsAttrTypeNative:objectSid", {std::string("\1\1\0\0\0\0\0\5\7\0\0\0", 12)}}});
  }
  machine::Recorder recorder(live);
  auto const ask = [&records](machine::Machine const& machine, DirectoryQuery const& query) {
    records->failure.reset();
    if (query.values == std::vector<std::string>{"slow"}) records->failure = Outcome::kTimedOut;
    auto const found = machine.Directory().Find(query);
    return found ? Lines(found, kName) : std::vector{found.absence().source, Lines(found).front()};
  };
  DirectoryQuery by_sid = Named(kUsers, {"S-1-5-7"}, kName);
  by_sid.attribute = "dsAttrTypeNative:objectSid";
  by_sid.limit = 2;
  DirectoryQuery const asked[] = {Named(kUsers, {"bob*"}, kName), Named(kUsers, {"nobody"}, kName),
                                  Named(kUsers, {"slow"}, kName), by_sid, Named(kUsers, {}, kAll)};
  for (DirectoryQuery const& query : asked) ask(*recorder.RecordingMachine(), query);
  RecordedTree const tree;
  auto const capture = Recorded(recorder, tree.At("/taken"));
  for (DirectoryQuery const& query : asked) EXPECT_EQ(ask(*capture, query), ask(*live, query));
  EXPECT_THAT(Lines(capture->Directory().Find(Named(kUsers, {"ANN"}, kName))), ElementsAre("ann"));
  EXPECT_EQ(capture->Directory().Find(Named(kGroups, {}, kName)).outcome(), Outcome::kAbsent);
}

}  // namespace
