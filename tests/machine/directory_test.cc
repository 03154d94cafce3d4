#include "machine/directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "frameworks/CoreFoundation/recorded_facts.h"
#include "machine/capture/capture.h"
#include "machine/capture/recorder.h"
#include "machine/directory_records.h"
#include "machine/live/directory_entry.h"
#include "machine/live/directory_filter.h"
#include "tests/machine/recorded_tree.h"

namespace {

using machine::DirectoryMatch;
using machine::DirectoryNode;
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
  return {.node = DirectoryNode::kSearch,
          .type = std::move(type),
          .attribute = kName,
          .values = std::move(names),
          .match = DirectoryMatch::kIgnoringCase,
          .requested = {std::move(requested)},
          .limit = 0};
}

TEST(LocalDirectory, AgreesWithGetent) {
  auto const live = machine::MakeLiveMachine();
  DirectoryQuery query = Named(kUsers, {}, kAll);
  query.node = DirectoryNode::kLocal;
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
  FILE* const getent = ::popen("getent passwd | cut -d: -f1,3,4,6,7", "r");
  std::string expected(1 << 16, '\0');
  expected.resize(std::fread(expected.data(), 1, expected.size(), getent));
  if (::pclose(getent) != 0 || expected.empty()) GTEST_SKIP() << "getent is missing";
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

// Sends the values "0", "1", ... of one attribute, as many at a time as it is told to.
class RangedConnection final : public machine::live::LdapConnection {
 public:
  RangedConnection(std::size_t count, std::size_t at_once) : count_(count), at_once_(at_once) {}

  std::string const& uri() const override { return uri_; }
  std::string const& configured_base() const override { return uri_; }
  bool is_usable() const override { return true; }
  machine::Fact<std::vector<machine::live::LdapEntry>> Search(
      machine::live::LdapSearch const& search, machine::live::Patience const&) override {
    std::size_t const first = std::stoul(search.attributes.front().substr(13));
    std::size_t const end = std::min(first + at_once_, count_);
    machine::live::LdapEntry entry = {search.base, {}};
    std::vector<std::string> values;
    for (std::size_t i = first; i < end; ++i) values.push_back(std::to_string(i));
    std::string const last = end == count_ ? "*" : std::to_string(end - 1);
    std::string const name = "member;range=" + std::to_string(first) + "-" + last;
    if (!values.empty()) entry.attributes.emplace_back(name, std::move(values));
    return std::vector{entry};
  }

 private:
  std::string const uri_ = "ldap://dc1";
  std::size_t const count_, at_once_;
};

TEST(DirectoryEntry, JoinsValuesThatComeInParts) {
  machine::live::Patience const patience(std::chrono::milliseconds(10'000));
  for (std::size_t const count : {2u, 3u, 7u}) {
    RangedConnection connection(count, 2);
    machine::live::LdapEntry entry = {"cn=g", {{"cn", {"g"}}, {"member;Range=0-1", {"0", "1"}}}};
    bool const goes_on = count > 2;
    EXPECT_EQ(CompleteEntry(connection, {}, patience, entry).has_value(), !goes_on) << count;
    if (!goes_on) continue;  // nothing came behind what was promised
    EXPECT_EQ(entry.attributes[1].first, "member");
    EXPECT_EQ(entry.attributes[1].second.size(), count);
    EXPECT_EQ(entry.attributes[1].second.back(), std::to_string(count - 1));
  }
}

class CapturedDirectory : public testing::Test {
 protected:
  std::shared_ptr<machine::Machine const> Open() {
    auto const capture = machine::OpenCapture(tree.At(""), {}, &ReadRecordedFacts);
    EXPECT_TRUE(capture) << machine::CaptureMessage(capture.absence());
    return capture ? *capture : nullptr;
  }
  void Write(std::string const& path, std::string const& entries) {
    tree.Write(path, "<plist version=\"1.0\"><dict>" + entries + "</dict></plist>");
  }

  RecordedTree tree;
};

TEST_F(CapturedDirectory, JoinsItsRecordsAndThoseOfAVolume) {
  Write("/machine.plist",
        "<key>Directory</key><dict><key>dsRecTypeStandard:Users</key><array>"
        "<dict><key>dsAttrTypeStandard:RecordName</key><array><string>ann</string></array>"
        "<key>dsAttrTypeStandard:AppleMetaNodeLocation</key><string>/LDAPv3/dc1</string>"
        "<key>dsAttrTypeNative:tokenGroups</key><array><data>AQIA</data></array></dict>"
        // One that has no name is left out.
        "<dict><key>dsAttrTypeStandard:UniqueID</key><string>7</string></dict>"
        "</array></dict>");
  std::string const users = "/root/var/db/dslocal/nodes/Default/users/";
  Write(users + "ann.plist",
        "<key>name</key><array><string>ann</string><string>Ann L</string></array>"
        "<key>uid</key><array><string>501</string></array>"
        "<key>ShadowHashData</key><array><data>AAAA</data></array>");
  Write(users + "zoe.plist", "<key>name</key><array><string>zoe</string></array>");
  Write(users + "nameless.plist", "<key>uid</key><array><string>0</string></array>");
  tree.Write(users + "broken.plist", "<plist><dict><key>name");
  auto const capture = Open();
  auto const find = [&](std::vector<std::string> names, char const* requested) {
    return Lines(capture->Directory().Find(Named(kUsers, std::move(names), requested)), requested);
  };
  EXPECT_THAT(find({"ann l"}, "dsAttrTypeStandard:UniqueID"), ElementsAre("ann=501"));
  EXPECT_THAT(find({}, kName), ElementsAre("ann=ann,Ann L", "zoe=zoe"));
  EXPECT_THAT(find({"ann"}, "dsAttrTypeNative:tokenGroups"),
              ElementsAre(std::string("ann=\1\2\0", 7)));
  EXPECT_THAT(find({"ann"}, "dsAttrTypeNative:ShadowHashData"), IsEmpty());
}

TEST_F(CapturedDirectory, AWrongRecordIsMalformed) {
  for (char const* directory :
       {"<string/>", "<dict><key>dsRecTypeStandard:Users</key><dict/></dict>",
        "<dict><key>dsRecTypeStandard:Users</key><array><true/></array></dict>",
        "<dict><key>dsRecTypeStandard:Users</key><array><dict/></array></dict>",
        "<dict><key>dsRecTypeStandard:Users</key><array><dict>"
        "<key>dsAttrTypeStandard:RecordName</key><array><true/></array></dict></array></dict>"}) {
    Write("/machine.plist", "<key>Directory</key>" + std::string(directory));
    EXPECT_EQ(Open()->Directory().Find(Named(kUsers, {}, kAll)).outcome(), Outcome::kMalformed)
        << directory;
  }
  Write("/machine.plist", "");
  EXPECT_EQ(Open()->Directory().Find(Named(kUsers, {}, kAll)).outcome(), Outcome::kAbsent);
}

// Answers with its records, and fails for one name.
class ScriptedDirectory final : public machine::Machine, private machine::DirectorySource {
 public:
  machine::DirectorySource const& Directory() const override { return *this; }

 private:
  machine::Fact<machine::DirectoryRecords> Find(DirectoryQuery const& query) const override {
    if (query.values == std::vector<std::string>{"slow"}) {
      return machine::Absence{Outcome::kTimedOut, "ldap://dc1", "no answer in time"};
    }
    machine::DirectoryAnswer answer(query);
    for (char const* name : {"ann", "bob*", "bob*"}) {
      DirectoryRecord record = {kUsers, name, "/LDAPv3/dc1", {}};
      record.Add(kName, name);
      record.Add("dsAttrTypeNative:objectSid", std::string("\1\1\0\0\0\0\0\5\7\0\0\0", 12));
      if (Matches(record, query)) answer.Offer(std::move(record));
    }
    return answer.Take();
  }
};

TEST_F(CapturedDirectory, AnswersAsItWasRecorded) {
  auto const live = std::make_shared<ScriptedDirectory>();
  machine::Recorder recorder(live);
  DirectoryQuery by_sid = Named(kUsers, {"S-1-5-7"}, kName);
  by_sid.attribute = "dsAttrTypeNative:objectSid";
  by_sid.limit = 2;
  DirectoryQuery const asked[] = {Named(kUsers, {"bob*"}, kName), Named(kUsers, {"nobody"}, kName),
                                  Named(kUsers, {"slow"}, kName), by_sid, Named(kUsers, {}, kAll)};
  for (DirectoryQuery const& query : asked) {
    recorder.RecordingMachine()->Directory().Find(query);
  }
  ASSERT_TRUE(recorder.Write(tree.At("/taken"), &WriteRecordedFacts));
  auto const capture = machine::OpenCapture(tree.At("/taken"), {}, &ReadRecordedFacts).value();
  for (DirectoryQuery const& query : asked) {
    auto const expected = live->Directory().Find(query);
    auto const found = capture->Directory().Find(query);
    EXPECT_EQ(Lines(found, kName), Lines(expected, kName));
    EXPECT_EQ(found ? "" : found.absence().where, expected ? "" : expected.absence().where);
  }
  EXPECT_THAT(Lines(capture->Directory().Find(Named(kUsers, {"ANN"}, kName))), ElementsAre("ann"));
  EXPECT_EQ(capture->Directory().Find(Named(kGroups, {}, kName)).outcome(), Outcome::kAbsent);
}

}  // namespace
