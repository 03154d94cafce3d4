// The live machine's directory against LDAP servers, good and bad.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "machine/live/worker.h"
#include "machine/machine.h"
#include "tests/support/directory_server.h"

namespace {

using machine::DirectoryQuery;
using machine::kGroupRecords;
using machine::kUserRecords;
using machine::Outcome;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::SizeIs;

using Records = machine::Fact<machine::DirectoryRecords>;

constexpr char kDistinguishedName[] = "dsAttrTypeNative:distinguishedName";
constexpr char kTokenGroups[] = "dsAttrTypeNative:tokenGroups";

// S-1-5-21-7, and in base64 as LDIF has bytes.
std::string const kSid("\1\2\0\0\0\0\0\5\25\0\0\0\7\0\0\0", 16);
constexpr char kEncodedSid[] = "AQIAAAAAAAUVAAAABwAAAA==\n";

std::string Entry(std::string const& kind, int number, std::string const& attributes) {
  std::string const plain = "n" + std::to_string(number), name = "cn=" + plain + ",dc=test";
  return "dn: " + name + "\nobjectClass: " + kind + "\ncn: " + plain +
         "\nobjectCategory: person\ndistinguishedName: " + name + "\n" + attributes + "\n";
}

std::string Groups(int count) {
  std::string lines;
  for (int i = 0; i < count; ++i) lines += "tokenGroups: " + std::to_string(i) + "\n";
  return lines;
}

class NetworkDirectory : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!DirectoryServer::IsInstalled()) return;
    std::string const account = "sAMAccountName: ", sid = std::string("objectSid:: ") + kEncodedSid;
    std::string entries =
        Entry("user", 1, account + "ann\ndisplayName: Ann Lee\nuidNumber: 7\n" + sid) +
        Entry("user", 2, account + "root\ntokenGroups:: " + kEncodedSid) +
        Entry("user", 3, "sAMAccountName:: KigpXMOk\n") +
        Entry("user", 4, account + "many\n" + Groups(10'000)) +
        Entry("user", 5, account + "short\ntokenGroups:: AQIDBAUG\n") +
        Entry("computer", 6, account + "WS7$\ndNSHostName: ws7.test\n") +
        Entry("group", 7, account + "staff\n" + sid);
    for (int i = 100; i < 1300; ++i) {
      entries += Entry("group", i, account + "g" + std::to_string(i) + "\n");
    }
    server = std::make_unique<DirectoryServer>(entries);
  }
  static void TearDownTestSuite() { server.reset(); }

  void SetUp() override {
    if (!DirectoryServer::IsInstalled()) GTEST_SKIP() << "slapd is missing";
    ASSERT_TRUE(server->is_running());
    settings.uri = server->uri();
    settings.base = "dc=test";
    settings.bind_name = DirectoryServer::kBindName;
    settings.bind_password = DirectoryServer::kPassword;
    settings.allows_clear_loopback = true;
    live = machine::MakeLiveMachine();
  }
  void TearDown() override { machine::SetDirectorySettings({}); }

  static DirectoryQuery Named(std::string_view type, std::vector<std::string> names,
                              std::string requested) {
    return {
        .type = std::string(type), .values = std::move(names), .requested = {std::move(requested)}};
  }
  Records Find(DirectoryQuery const& query) {
    machine::SetDirectorySettings(settings);
    return live->Directory().Find(query);
  }
  static std::vector<std::string> Values(Records const& records, std::string const& attribute) {
    if (!records) return {records.absence().where};
    std::vector<std::string> values;
    for (machine::DirectoryRecord const& record : *records) {
      if (auto const* found = record.Find(attribute)) {
        values.insert(values.end(), found->values.begin(), found->values.end());
      }
    }
    return values;
  }
  // The values of one attribute.
  std::vector<std::string> Ask(std::string_view type, std::vector<std::string> names,
                               std::string const& attribute) {
    return Values(Find(Named(type, std::move(names), attribute)), attribute);
  }
  Outcome OutcomeOf(char const* user, char const* attribute = kDistinguishedName) {
    return Find(Named(kUserRecords, {user}, attribute)).outcome();
  }

  static inline std::unique_ptr<DirectoryServer> server;
  machine::DirectorySettings settings;
  std::shared_ptr<machine::Machine const> live;
};

TEST_F(NetworkDirectory, AnswersBehindTheAccounts) {
  Records const ann = Find(Named(kUserRecords, {"ANN"}, "dsAttributesAll"));
  EXPECT_THAT(Values(ann, "dsAttrTypeStandard:RealName"), ElementsAre("Ann Lee"));
  EXPECT_THAT(Values(ann, "dsAttrTypeStandard:UniqueID"), ElementsAre("7"));
  EXPECT_THAT(Values(ann, "dsAttrTypeNative:objectSid"), ElementsAre(kSid));
  std::string const node(machine::kRecordNode);
  EXPECT_THAT(Values(ann, node), ElementsAre("/LDAPv3/127.0.0.1"));
  // The accounts know this one too, but not by names of the directory's own.
  EXPECT_THAT(Ask(kUserRecords, {"root"}, node), ElementsAre("/Local/Default"));
  EXPECT_THAT(Ask(kUserRecords, {"root"}, kTokenGroups), ElementsAre(kSid));
  EXPECT_THAT(Ask(machine::kComputerRecords, {"ws7"}, kDistinguishedName),
              ElementsAre("cn=n6,dc=test"));
}

TEST_F(NetworkDirectory, FindsOddNamesAndNoOthers) {
  EXPECT_THAT(Ask(kUserRecords, {"*()\\\xC3\xA4"}, kDistinguishedName),
              ElementsAre("cn=n3,dc=test"));
  for (std::string const& name : {std::string("*"), std::string("ann)(cn=*"),
                                  std::string("ann\0", 4), std::string(5000, 'x')}) {
    EXPECT_THAT(Ask(kUserRecords, {name}, kDistinguishedName), testing::IsEmpty()) << name;
  }
}

TEST_F(NetworkDirectory, FindsGroupsBySecurityIdentifier) {
  DirectoryQuery query = Named(kGroupRecords, {"S-1-5-21-7"}, kDistinguishedName);
  query.attribute = "dsAttrTypeNative:objectSid";
  query.limit = 1;
  EXPECT_THAT(Values(Find(query), kDistinguishedName), ElementsAre("cn=n7,dc=test"));
}

TEST_F(NetworkDirectory, ReadsManyValuesAndManyRecords) {
  EXPECT_THAT(Ask(kUserRecords, {"many"}, kTokenGroups), SizeIs(10'000));
  EXPECT_THAT(Ask(kUserRecords, {"short"}, kTokenGroups), ElementsAre("\1\2\3\4\5\6"));
  EXPECT_THAT(Ask(kGroupRecords, {}, kDistinguishedName), SizeIs(1201));
}

TEST_F(NetworkDirectory, ConnectsAnewWhenTheServerWasStartedAnew) {
  machine::SetDirectorySettings(settings);
  DirectoryQuery const query = Named(kUserRecords, {"ann"}, kDistinguishedName);
  EXPECT_TRUE(live->Directory().Find(query));
  server->Restart();
  EXPECT_THAT(Values(live->Directory().Find(query), kDistinguishedName),
              ElementsAre("cn=n1,dc=test"));
}

TEST_F(NetworkDirectory, RefusesToShowAPassword) {
  settings.allows_clear_loopback = false;
  EXPECT_THAT(
      Ask(kUserRecords, {"ann"}, kDistinguishedName),
      ElementsAre(testing::AnyOf(testing::HasSubstr("Protocol error"), testing::HasSubstr("TLS"),
                                 testing::HasSubstr("unsupported"))));
  settings.uri.replace(0, 4, "LDAP");
  EXPECT_NE(OutcomeOf("ann"), Outcome::kAnswered);
  settings.allows_clear_loopback = true;
  for (char const* password : {"", "wrong"}) {
    settings.bind_password = password;
    EXPECT_EQ(OutcomeOf("ann"), Outcome::kPermissionRefused) << password;
  }
}

TEST_F(NetworkDirectory, AnswersInTimeWhateverTheServerDoes) {
  using Fault = FaultyServer::Fault;
  struct {
    char const* name;
    std::uint16_t port;
    Fault fault;
    std::size_t after_bytes;
    Outcome outcome;
  } const cases[] = {
      {"says nothing", 0, Fault::kSilence, 0, Outcome::kTimedOut},
      {"hangs up", 0, Fault::kHangUp, 0, Outcome::kAbsent},
      {"says nothing after the bind", server->port(), Fault::kSilence, 14, Outcome::kTimedOut},
      {"hangs up after the bind", server->port(), Fault::kHangUp, 14, Outcome::kAbsent},
      {"says nothing in the middle", server->port(), Fault::kSilence, 5000, Outcome::kTimedOut},
      {"hangs up in the middle", server->port(), Fault::kHangUp, 5000, Outcome::kAbsent},
  };
  settings.time_limit = milliseconds(300);
  for (auto const& test : cases) {
    FaultyServer const faulty(test.port, test.fault, test.after_bytes);
    settings.uri = faulty.uri();
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(OutcomeOf("many", kTokenGroups), test.outcome) << test.name;
    EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(2000)) << test.name;
  }
  settings.uri = "ldap://127.0.0.1:1";
  EXPECT_EQ(OutcomeOf("ann", kTokenGroups), Outcome::kAbsent);
}

// Each connection goes silent in the middle of a long answer, so that short ones still come.
TEST_F(NetworkDirectory, LeavesASilentServerAloneForAWhile) {
  FaultyServer const faulty(server->port(), FaultyServer::Fault::kSilence, 5000);
  settings.uri = faulty.uri();
  settings.time_limit = milliseconds(500);
  DirectoryQuery const ann = Named(kUserRecords, {"ann"}, kDistinguishedName);
  EXPECT_EQ(OutcomeOf("many", kTokenGroups), Outcome::kTimedOut);
  auto const start = std::chrono::steady_clock::now();
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(live->Directory().Find(ann).outcome(), Outcome::kTimedOut);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(400));
  std::this_thread::sleep_until(start + settings.time_limit);
  EXPECT_TRUE(live->Directory().Find(ann)) << "after a while";

  EXPECT_EQ(OutcomeOf("many", kTokenGroups), Outcome::kTimedOut);
  EXPECT_TRUE(Find(ann)) << "with other settings";
}

void AwaitAbandonedCalls() {
  for (int i = 0; i < 200 && machine::live::IsAnyCallAbandoned(); ++i) {
    std::this_thread::sleep_for(milliseconds(10));
  }
  EXPECT_FALSE(machine::live::IsAnyCallAbandoned());
}

TEST_F(NetworkDirectory, ASilentServerLeavesTimeForTheOthers) {
  FaultyServer const silent(0, FaultyServer::Fault::kSilence, 0);
  FaultyServer const half_silent(server->port(), FaultyServer::Fault::kSilence, 14);
  struct {
    char const* name;
    std::string uris;
    char const* found;
    bool takes_time;
  } const rows[] = {
      {"first", silent.uri() + " " + server->uri(), "cn=n1,dc=test", true},
      {"asked last the next time", silent.uri() + "," + server->uri(), "cn=n1,dc=test", false},
      {"after the bind", half_silent.uri() + " " + server->uri(), "no answer in time", true},
      {"asked last then", half_silent.uri() + " " + server->uri(), "cn=n1,dc=test", false},
  };
  settings.time_limit = milliseconds(1000);
  for (auto const& row : rows) {
    settings.uri = row.uris;
    auto const start = std::chrono::steady_clock::now();
    auto const found = Ask(kUserRecords, {"ann"}, kDistinguishedName);
    bool const took_time = std::chrono::steady_clock::now() - start >= milliseconds(500);
    EXPECT_THAT(found, ElementsAre(row.found)) << row.name;
    EXPECT_EQ(took_time, row.takes_time) << row.name;
    AwaitAbandonedCalls();
  }
}

TEST_F(NetworkDirectory, IsGivenUpWhenAskedTo) {
  auto const silent = std::make_unique<FaultyServer>(0, FaultyServer::Fault::kSilence, 0);
  settings.uri = silent->uri() + " " + server->uri();
  settings.time_limit = milliseconds(60'000);
  auto const start = std::chrono::steady_clock::now();
  settings.should_stop = [start] {
    return std::chrono::steady_clock::now() - start > milliseconds(100);
  };
  EXPECT_EQ(OutcomeOf("ann", kTokenGroups), Outcome::kTimedOut);
  EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(1000));
  AwaitAbandonedCalls();
}

}  // namespace
