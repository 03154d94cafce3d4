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
using machine::DirectoryRecord;
using machine::Fact;
using machine::Outcome;
using std::chrono::milliseconds;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

using Records = Fact<machine::DirectoryRecords>;

constexpr char kDistinguishedName[] = "dsAttrTypeNative:distinguishedName";
constexpr char kTokenGroups[] = "dsAttrTypeNative:tokenGroups";

std::string Base64(std::string const& bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t group = 0;
    for (std::size_t j = 0; j < 3; ++j) {
      group = group << 8 | (i + j < bytes.size() ? static_cast<unsigned char>(bytes[i + j]) : 0);
    }
    for (std::size_t j = 0; j < 4; ++j) {
      text += i + j > bytes.size() ? '=' : kDigits[group >> (18 - 6 * j) & 63];
    }
  }
  return text;
}

// S-1-5-21-<number>
std::string Sid(std::uint32_t number) {
  std::string sid("\1\2\0\0\0\0\0\5\25\0\0\0", 12);
  for (int shift = 0; shift < 32; shift += 8) sid += static_cast<char>(number >> shift);
  return sid;
}

// LDIF takes any name as base64; the one in the distinguished name stays plain.
std::string Entry(std::string const& kind, int number, std::string const& account,
                  std::string const& more = {}) {
  std::string const plain = "n" + std::to_string(number);
  std::string const name = "cn=" + plain + ",dc=test";
  return "dn: " + name + "\nobjectClass: " + kind + "\ncn: " + plain +
         "\nobjectCategory: person\nsAMAccountName:: " + Base64(account) +
         "\nobjectSid:: " + Base64(Sid(static_cast<std::uint32_t>(number))) +
         "\ndistinguishedName: " + name + "\n" + more + "\n";
}

std::string Groups(int count) {
  std::string lines;
  for (int i = 0; i < count; ++i) {
    lines += "tokenGroups:: " + Base64(Sid(static_cast<std::uint32_t>(i))) + "\n";
  }
  return lines;
}

class NetworkDirectory : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!DirectoryServer::IsInstalled()) return;
    std::string entries =
        Entry("user", 1, "ann", "displayName: Ann Lee\nuidNumber: 7\n" + Groups(3)) +
        Entry("user", 2, "root", Groups(1)) + Entry("user", 3, "*()\\\xC3\xA4") +
        Entry("user", 4, "many", Groups(10'000)) +
        Entry("user", 5, "short", "tokenGroups:: AQIDBAUG\n") +
        Entry("computer", 6, "WS7$", "dNSHostName: ws7.test\n") + Entry("group", 7, "staff");
    for (int i = 100; i < 1300; ++i) entries += Entry("group", i, "g" + std::to_string(i));
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
    return {.node = machine::DirectoryNode::kSearch,
            .type = std::string(type),
            .attribute = std::string(machine::kRecordName),
            .values = std::move(names),
            .match = machine::DirectoryMatch::kIgnoringCase,
            .requested = {std::move(requested)},
            .limit = 0};
  }
  Records Find(std::string_view type, std::vector<std::string> names, std::string requested) {
    return Find(Named(type, std::move(names), std::move(requested)));
  }
  Records Find(DirectoryQuery const& query) {
    machine::SetDirectorySettings(settings);
    return live->Directory().Find(query);
  }
  static std::vector<std::string> Values(Records const& records, std::string const& attribute) {
    if (!records) return {records.absence().where};
    std::vector<std::string> values;
    for (DirectoryRecord const& record : *records) {
      if (auto const* found = record.Find(attribute)) {
        values.insert(values.end(), found->values.begin(), found->values.end());
      }
    }
    return values;
  }

  static inline std::unique_ptr<DirectoryServer> server;
  machine::DirectorySettings settings;
  std::shared_ptr<machine::Machine const> live;
};

TEST_F(NetworkDirectory, AnswersBehindTheAccounts) {
  Records const ann = Find(machine::kUserRecords, {"ANN"}, "dsAttributesAll");
  EXPECT_THAT(Values(ann, "dsAttrTypeStandard:RealName"), ElementsAre("Ann Lee"));
  EXPECT_THAT(Values(ann, "dsAttrTypeStandard:UniqueID"), ElementsAre("7"));
  EXPECT_THAT(Values(ann, "dsAttrTypeNative:objectSid"), ElementsAre(Sid(1)));
  EXPECT_THAT(Values(ann, std::string(machine::kRecordNode)), ElementsAre("/LDAPv3/127.0.0.1"));
  // The accounts know this one too, but not by names of the directory's own.
  std::string const kName(machine::kRecordNode);
  EXPECT_THAT(Values(Find(machine::kUserRecords, {"root"}, kName), kName),
              ElementsAre("/Local/Default"));
  EXPECT_THAT(Values(Find(machine::kUserRecords, {"root"}, kTokenGroups), kTokenGroups),
              ElementsAre(Sid(0)));
  EXPECT_THAT(
      Values(Find(machine::kComputerRecords, {"ws7"}, kDistinguishedName), kDistinguishedName),
      ElementsAre("cn=n6,dc=test"));
}

TEST_F(NetworkDirectory, FindsOddNamesAndNoOthers) {
  EXPECT_THAT(Values(Find(machine::kUserRecords, {"*()\\\xC3\xA4"}, kDistinguishedName),
                     kDistinguishedName),
              ElementsAre("cn=n3,dc=test"));
  for (std::string const& name : {std::string("*"), std::string("ann)(cn=*"),
                                  std::string("ann\0", 4), std::string(5000, 'x')}) {
    EXPECT_THAT(Values(Find(machine::kUserRecords, {name}, kDistinguishedName), kDistinguishedName),
                IsEmpty())
        << name;
  }
}

TEST_F(NetworkDirectory, FindsGroupsBySecurityIdentifier) {
  DirectoryQuery query = {.node = machine::DirectoryNode::kSearch,
                          .type = std::string(machine::kGroupRecords),
                          .attribute = "dsAttrTypeNative:objectSid",
                          .values = {"S-1-5-21-7"},
                          .match = machine::DirectoryMatch::kIgnoringCase,
                          .requested = {kDistinguishedName},
                          .limit = 1};
  EXPECT_THAT(Values(Find(query), kDistinguishedName), ElementsAre("cn=n7,dc=test"));
}

TEST_F(NetworkDirectory, ReadsManyValuesAndManyRecords) {
  EXPECT_THAT(Values(Find(machine::kUserRecords, {"many"}, kTokenGroups), kTokenGroups),
              SizeIs(10'000));
  EXPECT_THAT(Values(Find(machine::kUserRecords, {"short"}, kTokenGroups), kTokenGroups),
              ElementsAre(std::string("\1\2\3\4\5\6")));
  EXPECT_THAT(Values(Find(machine::kGroupRecords, {}, kDistinguishedName), kDistinguishedName),
              SizeIs(1201));
}

TEST_F(NetworkDirectory, ConnectsAnewWhenTheServerWasStartedAnew) {
  machine::SetDirectorySettings(settings);
  DirectoryQuery const query = Named(machine::kUserRecords, {"ann"}, kDistinguishedName);
  EXPECT_TRUE(live->Directory().Find(query));
  server->Restart();
  EXPECT_THAT(Values(live->Directory().Find(query), kDistinguishedName),
              ElementsAre("cn=n1,dc=test"));
}

TEST_F(NetworkDirectory, RefusesToShowAPassword) {
  settings.allows_clear_loopback = false;
  Records const clear = Find(machine::kUserRecords, {"ann"}, kDistinguishedName);
  ASSERT_FALSE(clear);
  EXPECT_THAT(clear.absence().where,
              AnyOf(HasSubstr("Protocol error"), HasSubstr("TLS"), HasSubstr("unsupported")));
  settings.uri.replace(0, 4, "LDAP");
  EXPECT_FALSE(Find(machine::kUserRecords, {"ann"}, kDistinguishedName));
  settings.allows_clear_loopback = true;
  settings.bind_password.clear();
  EXPECT_EQ(Find(machine::kUserRecords, {"ann"}, kDistinguishedName).outcome(),
            Outcome::kPermissionRefused);
  settings.bind_password = "wrong";
  EXPECT_EQ(Find(machine::kUserRecords, {"ann"}, kDistinguishedName).outcome(),
            Outcome::kPermissionRefused);
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
    Records const records = Find(machine::kUserRecords, {"many"}, kTokenGroups);
    EXPECT_EQ(records.outcome(), test.outcome) << test.name;
    EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(2000)) << test.name;
  }
  settings.uri = "ldap://127.0.0.1:1";
  EXPECT_EQ(Find(machine::kUserRecords, {"ann"}, kTokenGroups).outcome(), Outcome::kAbsent);
}

// Each connection goes silent in the middle of a long answer, so that short ones still come.
TEST_F(NetworkDirectory, LeavesASilentServerAloneForAWhile) {
  FaultyServer const faulty(server->port(), FaultyServer::Fault::kSilence, 5000);
  settings.uri = faulty.uri();
  settings.time_limit = milliseconds(500);
  DirectoryQuery const ann = Named(machine::kUserRecords, {"ann"}, kDistinguishedName);
  EXPECT_EQ(Find(machine::kUserRecords, {"many"}, kTokenGroups).outcome(), Outcome::kTimedOut);
  auto const start = std::chrono::steady_clock::now();
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(live->Directory().Find(ann).outcome(), Outcome::kTimedOut);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(400));
  std::this_thread::sleep_until(start + settings.time_limit);
  EXPECT_TRUE(live->Directory().Find(ann)) << "after a while";

  EXPECT_EQ(Find(machine::kUserRecords, {"many"}, kTokenGroups).outcome(), Outcome::kTimedOut);
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
    Records const ann = Find(machine::kUserRecords, {"ann"}, kDistinguishedName);
    bool const took_time = std::chrono::steady_clock::now() - start >= milliseconds(500);
    EXPECT_THAT(Values(ann, kDistinguishedName), ElementsAre(row.found)) << row.name;
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
  EXPECT_EQ(Find(machine::kUserRecords, {"ann"}, kTokenGroups).outcome(), Outcome::kTimedOut);
  EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(1000));
  AwaitAbandonedCalls();
}

}  // namespace
