// The command waits for directory records only as long as it is told to.

#include "tests/host/child_process.h"
#include "tests/support/directory_server.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

using std::chrono::milliseconds;

constexpr char kWait[] = "--wait-for-directory";
constexpr char kAnn[] = R"(dn: cn=ann,dc=test
objectClass: user
cn: ann
sAMAccountName: ann
objectCategory: person
distinguishedName: cn=ann,dc=test
tokenGroups:: AQEAAAAAAAUHAAAA

dn: cn=staff,dc=test
objectClass: group
cn: staff
sAMAccountName: staff
objectSid:: AQEAAAAAAAUHAAAA
distinguishedName: cn=staff,dc=test

)";

TEST(DirectoryCommand, WaitsAsLongAsItIsToldAndNotForACapture) {
  if (!DirectoryServer::IsInstalled()) GTEST_SKIP() << "slapd is missing";
  DirectoryServer const server(kAnn);
  ASSERT_TRUE(server.is_running());
  FaultyServer const silent(0, FaultyServer::Fault::kSilence, 0);
  TemporaryFolder const folder;
  folder.Write("password", std::string(DirectoryServer::kPassword) + "\n");
  std::string const capture = folder.Path("capture");
  std::string const captured = "captured " + capture + "; expressions: 1, answered: 1\n";
  constexpr char kMessage[] = "distinguished name error message", kGroups[] = "names of groups";
  constexpr char kPending[] = "Data pending request from server\n";
  struct {
    char const* name;
    std::string uri;
    std::vector<std::string> arguments;
    char const* what;
    int status;
    std::string output;
    milliseconds interrupt_after = milliseconds(0);
  } const rows[] = {
      {"does not wait", server.uri(), {}, kMessage, 0, kPending},
      {"not long enough", silent.uri(), {kWait, "300ms"}, kMessage, 0, kPending},
      {"interrupted", silent.uri(), {kWait, "1h"}, kMessage, 3, "", milliseconds(500)},
      {"captured", server.uri(), {"capture", capture, "--for"}, kGroups, 0, captured},
      {"of the capture", silent.uri(), {"--machine", capture}, kGroups, 0, "staff\n"},
      {"nothing was kept", silent.uri(), {}, kMessage, 0, kPending},
      {"waits", server.uri(), {kWait, "1m"}, kGroups, 0, "staff\n"},
      {"was kept", silent.uri(), {}, kGroups, 0, "staff\n"},
  };
  for (auto const& row : rows) {
    Launch launch = {.interrupt_after = row.interrupt_after};
    for (std::string const& setting :
         {"URI=" + row.uri, std::string("Base=dc=test"),
          std::string("BindName=") + DirectoryServer::kBindName,
          "BindPasswordFile=" + folder.Path("password"), "CacheFolder=" + folder.Path("cache"),
          std::string("AllowClearLoopback=yes"), std::string("Users=ann")}) {
      launch.arguments.insert(launch.arguments.end(), {"--setting", "Directory:" + setting});
    }
    launch.arguments.insert(launch.arguments.end(), row.arguments.begin(), row.arguments.end());
    launch.arguments.push_back(std::string(row.what) +
                               " of local user \"ann\" of active directory");
    ProcessResult const run = RunCommand(launch);
    EXPECT_THAT(run, Ends(row.status, row.output)) << row.name;
    EXPECT_LT(run.took, milliseconds(5000)) << row.name;
  }
}

}  // namespace
}  // namespace gatotu::tests
