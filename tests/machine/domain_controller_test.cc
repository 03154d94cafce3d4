// The live machine's directory against a domain controller that `scripts/test-directory-server`
// started in the folder that GATOTU_TEST_DIRECTORY names.
#include "tests/support/domain_controller.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>

#include "machine/machine.h"
#include "tests/support/temporary_folder.h"

namespace {

using machine::DirectoryRecord;
using machine::Fact;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr char kDistinguishedName[] = "dsAttrTypeNative:distinguishedName";
constexpr char kTokenGroups[] = "dsAttrTypeNative:tokenGroups";
constexpr char kSid[] = "dsAttrTypeNative:objectSid";

class DomainController : public DomainControllerTest {
 protected:
  std::vector<std::string> Values(std::string_view type, std::string value, std::string requested,
                                  std::string attribute = std::string(machine::kRecordName)) {
    auto const records = live->Directory().Find({.node = machine::DirectoryNode::kSearch,
                                                 .type = std::string(type),
                                                 .attribute = std::move(attribute),
                                                 .values = {std::move(value)},
                                                 .match = machine::DirectoryMatch::kIgnoringCase,
                                                 .requested = {requested},
                                                 .limit = 0});
    if (!records) return {records.absence().source, records.absence().where};
    std::vector<std::string> values;
    for (DirectoryRecord const& record : *records) {
      auto const* found = record.Find(requested);
      if (found != nullptr) values.insert(values.end(), found->values.begin(), found->values.end());
    }
    return values;
  }

  std::shared_ptr<machine::Machine const> live = machine::MakeLiveMachine();
};

TEST_P(DomainController, KnowsUsersAndTheirGroups) {
  EXPECT_THAT(Values(machine::kUserRecords, "ANN", kDistinguishedName),
              ElementsAre("CN=ann,CN=Users,DC=gatotu,DC=test"));
  EXPECT_THAT(Values(machine::kUserRecords, "ann", "dsAttrTypeStandard:UniqueID"),
              ElementsAre("3001"));
  EXPECT_THAT(Values(machine::kUserRecords, "odd (x)", "dsAttrTypeStandard:NFSHomeDirectory"),
              ElementsAre("/home/odd"));
  std::vector<std::string> names;
  for (std::string const& sid : Values(machine::kUserRecords, "ann", kTokenGroups)) {
    for (std::string& name : Values(machine::kGroupRecords, sid, kDistinguishedName, kSid)) {
      names.push_back(name.substr(0, name.find(',')));
    }
  }
  EXPECT_THAT(names,
              UnorderedElementsAre("CN=engineers", "CN=staff", "CN=Domain Users", "CN=Users"));
  EXPECT_THAT(Values(machine::kGroupRecords, "S-1-5-32-544", kDistinguishedName, kSid),
              ElementsAre("CN=Administrators,CN=Builtin,DC=gatotu,DC=test"));
}

TEST_P(DomainController, KnowsThisComputer) {
  char host[HOST_NAME_MAX + 1] = {};
  ASSERT_EQ(::gethostname(host, HOST_NAME_MAX), 0);
  std::string const name = std::string(host).substr(0, std::string(host).find('.')).substr(0, 15);
  EXPECT_THAT(Values(machine::kComputerRecords, name, kDistinguishedName), SizeIs(1));
  EXPECT_THAT(Values(machine::kComputerRecords, name, kTokenGroups), SizeIs(testing::Ge(2u)));
}

TEST_P(DomainController, TakesATicket) {
  gatotu::tests::TemporaryFolder const folder;
  ::setenv("KRB5CCNAME", ("FILE:" + folder.Path("tickets")).c_str(), 1);
  FILE* const kinit = ::popen("kinit Administrator >/dev/null 2>&1", "w");
  std::fprintf(kinit, "%s\n", settings.bind_password.c_str());
  ASSERT_EQ(::pclose(kinit), 0) << "no ticket; is krb5-user installed?";
  settings.bind_name.clear();
  settings.bind_password.clear();
  machine::SetDirectorySettings(settings);
  EXPECT_THAT(Values(machine::kUserRecords, "ann", kTokenGroups), SizeIs(4));
  ::setenv("KRB5CCNAME", "FILE:/nowhere", 1);
  machine::SetDirectorySettings(settings);
  EXPECT_THAT(Values(machine::kUserRecords, "ann", kTokenGroups).back(), HasSubstr("GSSAPI"));
}

// The certificate is good for the address, and not for this name of it.
TEST_P(DomainController, IsNotAskedWithoutAGoodCertificate) {
  settings.uri = std::string(GetParam()) + "://localhost";
  machine::SetDirectorySettings(settings);
  auto const answer = Values(machine::kUserRecords, "ann", kDistinguishedName);
  ASSERT_THAT(answer, SizeIs(2)) << answer.front();
  EXPECT_THAT(answer.back(), AnyOf(HasSubstr("Connect error"), HasSubstr("contact LDAP server")));
}

INSTANTIATE_TEST_SUITE_P(Encryption, DomainController, testing::Values("ldap", "ldaps"),
                         [](auto const& info) { return std::string(info.param); });

}  // namespace
