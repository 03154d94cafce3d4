// Refreshes against a domain controller.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspectors/activedirectory/directory/active_directory_local_computer.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"
#include "tests/directory/folder_context.h"
#include "tests/support/domain_controller.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::StartsWith;
using testing::UnorderedElementsAre;

class DomainRefresh : public DomainControllerTest {
 protected:
  static std::vector<std::string> NamesOf(ActiveDirectoryAccount const& account) {
    std::vector<std::string> names;
    for (ActiveDirectoryGroup const& group : account.GetGroups()) names.push_back(group.GetName());
    return names;
  }

  TemporaryFolder folder;
  FolderContext context{folder};
};

TEST_P(DomainRefresh, FillsAUser) {
  ActiveDirectoryLocalUser user("ann"), odd("odd (x)");
  user.Refresh(&context);
  odd.Refresh(&context);
  EXPECT_EQ(user.GetErrorMessage() + user.GetGroupsErrorMessage(), "");
  EXPECT_EQ(user.GetDistinguishedName(), "CN=ann,CN=Users,DC=gatotu,DC=test");
  EXPECT_THAT(NamesOf(user), UnorderedElementsAre("engineers", "staff", "Domain Users", "Users"));
  EXPECT_EQ(odd.GetDistinguishedName(), "CN=odd (x),CN=Users,DC=gatotu,DC=test");
  ActiveDirectoryLocalUser kept("ann");
  EXPECT_TRUE(kept.LoadFromCache(&context));
  EXPECT_EQ(kept.ToXml(), user.ToXml());
}

TEST_P(DomainRefresh, FillsTheComputer) {
  ActiveDirectoryLocalComputer computer;
  computer.SetCacheState(kRequestPending);
  computer.Refresh(&context);
  EXPECT_EQ(computer.GetErrorMessage() + computer.GetGroupsErrorMessage(), "");
  EXPECT_THAT(computer.GetDistinguishedName(),
              AllOf(StartsWith("CN="), EndsWith(",CN=Computers,DC=gatotu,DC=test")));
  EXPECT_THAT(NamesOf(computer), Contains("staff"));
}

TEST_P(DomainRefresh, TellsOfWhomNobodyKnows) {
  ActiveDirectoryLocalUser user("nobody-knows*");
  user.Refresh(&context);
  EXPECT_EQ(user.GetErrorMessage(), "No distinguishedName found");
  EXPECT_EQ(user.GetGroupsErrorMessage(), "No tokenGroups found");
}

INSTANTIATE_TEST_SUITE_P(Encryption, DomainRefresh, testing::Values("ldap", "ldaps"));

}  // namespace
