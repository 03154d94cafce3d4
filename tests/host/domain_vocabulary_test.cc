// Expressions about the directory, answered by a domain controller.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/host/child_process.h"
#include "tests/support/domain_controller.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

using testing::ElementsAre;
using testing::MatchesRegex;
using testing::UnorderedElementsAre;

class DomainVocabulary : public DomainControllerTest {
 protected:
  // As a user who set the directory up and waits for it; nothing is kept from one to the next.
  std::string Answer(std::string const& expression, std::string const& uri) const {
    folder_.Write("password", settings.bind_password + "\n");
    Launch launch;
    launch.arguments = {"--wait-for-directory", "30s", expression};
    for (std::string const& setting :
         {"URI=" + uri, "BindName=" + settings.bind_name,
          "BindPasswordFile=" + folder_.Path("password"), std::string("CacheFolder="),
          std::string("Users=ann, ghost")}) {
      launch.arguments.insert(launch.arguments.begin(), {"--setting", "Directory:" + setting});
    }
    launch.environment = {std::string("LDAPTLS_CACERT=") + std::getenv("LDAPTLS_CACERT")};
    ProcessResult const run = RunCommand(launch);
    EXPECT_EQ(run.status, 0) << expression << '\n' << run.errors;
    return run.output;
  }
  std::vector<std::string> Answers(std::string const& expression) const {
    return Lines(Answer(expression, settings.uri));
  }

 private:
  TemporaryFolder const folder_;
};

constexpr char kComputer[] = " of local computer of active directory";
constexpr char kGhost[] = " of local user \"ghost\" of active directory";

TEST_P(DomainVocabulary, KnowsTheComputer) {
  EXPECT_THAT(Answer(std::string("distinguished name") + kComputer, settings.uri),
              MatchesRegex("CN=[^,]+,CN=Computers,DC=gatotu,DC=test\n"));
  EXPECT_THAT(Answers(std::string("distinguished name of group \"STAFF\"") + kComputer),
              ElementsAre("CN=staff,CN=Users,DC=gatotu,DC=test"));
  EXPECT_THAT(Answers(std::string("exists groups error message") + kComputer),
              ElementsAre("false"));
}

TEST_P(DomainVocabulary, KnowsGroupsOfUsers) {
  std::string const ann = " of active directory user of user \"ann\"";
  EXPECT_THAT(Answers("names of groups" + ann),
              UnorderedElementsAre("engineers", "staff", "Domain Users", "Users"));
  EXPECT_THAT(Answers("(sid of it as string, sid of it = sid of it) of group \"Users\"" + ann),
              ElementsAre("S-1-5-32-545, true"));
  EXPECT_THAT(Answers("component string of sid of group \"staff\"" + ann),
              ElementsAre(MatchesRegex("S-1-5-21(-[0-9]+)+")));
  EXPECT_THAT(Answers("names of local users of active directory"), ElementsAre("ann"));
}

TEST_P(DomainVocabulary, SaysWhyItKnowsNothing) {
  std::string const messages =
      "(distinguished name error message of it, groups error message of it)";
  EXPECT_EQ(Answer(messages + kGhost, settings.uri),
            "No distinguishedName found, No tokenGroups found\n");
  std::string const stopped = settings.uri + ":9";
  EXPECT_EQ(Answer(messages + kComputer, stopped),
            "dsGetRecordList() failed, dsGetRecordList() failed\n");
}

INSTANTIATE_TEST_SUITE_P(Encryption, DomainVocabulary, testing::Values("ldap", "ldaps"),
                         [](auto const& info) { return std::string(info.param); });

}  // namespace
}  // namespace gatotu::tests
