// Refreshes against a domain controller.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspectors/activedirectory/directory/active_directory_local_computer.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"
#include "tests/directory/folder_context.h"
#include "tests/support/domain_controller.h"

namespace {

using testing::Contains;
using testing::EndsWith;
using testing::UnorderedElementsAre;

std::vector<std::string> NamesOf(ActiveDirectoryAccount const& account) {
  std::vector<std::string> names;
  for (ActiveDirectoryGroup const& group : account.GetGroups()) names.push_back(group.GetName());
  return names;
}

using DomainRefresh = DomainControllerTest;

TEST_P(DomainRefresh, FillsRecords) {
  TemporaryFolder const folder;
  FolderContext const context(folder);
  ActiveDirectoryLocalUser ann("ann"), nobody("a*"), odd("odd (x)");
  for (ActiveDirectoryLocalUser* const user : {&ann, &nobody, &odd}) user->Refresh(&context);
  EXPECT_EQ(ann.GetErrorMessage() + ann.GetGroupsErrorMessage(), "");
  EXPECT_EQ(ann.GetDistinguishedName(), "CN=ann,CN=Users,DC=gatotu,DC=test");
  EXPECT_THAT(NamesOf(ann), UnorderedElementsAre("engineers", "staff", "Domain Users", "Users"));
  EXPECT_EQ(odd.GetDistinguishedName(), "CN=odd (x),CN=Users,DC=gatotu,DC=test");
  EXPECT_EQ(nobody.GetErrorMessage(), "No distinguishedName found");

  ActiveDirectoryLocalComputer computer;
  computer.SetCacheState(kRequestPending);
  computer.Refresh(&context);
  EXPECT_THAT(computer.GetDistinguishedName(), EndsWith(",CN=Computers,DC=gatotu,DC=test"));
  EXPECT_THAT(NamesOf(computer), Contains("staff"));
}

INSTANTIATE_TEST_SUITE_P(Encryption, DomainRefresh, testing::Values("ldap", "ldaps"),
                         [](auto const& info) { return std::string(info.param); });

}  // namespace
