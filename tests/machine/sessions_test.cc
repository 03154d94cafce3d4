#include "machine/sessions.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <optional>

#include "tests/machine/machine_text.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/scripted_machine.h"

namespace {

// The answer, and on a line of its own what was announced, in the order of the names.
std::string ConsoleText(machine::Machine const& machine) {
  AnnouncementLog log;
  auto const user = machine.Sessions().ConsoleUser();
  std::string text =
      user ? TextOf(*user) : std::string(NameOf(user.outcome())) + ": " + user.absence().where;
  text += '\n';
  std::sort(log.entries.begin(), log.entries.end());
  for (auto const& [source, outcome] : log.entries) {
    text += source + " " + std::string(NameOf(outcome)) + "; ";
  }
  return text;
}

using Files = std::map<std::string, std::string>;

constexpr int kNotPermitted = 77;

// What the running machine says where only these files of a login service are below /run; nothing
// where the system does not let us try.
std::optional<std::string> AskWith(Files const& files) {
  RecordedTree const tree;
  tree.MakeFolder("/run");
  for (auto const& [name, content] : files) tree.Write("/run/systemd/" + name, content);
  pid_t const child = ::fork();
  if (child == 0) {
    bool const is_apart =
        (::unshare(CLONE_NEWNS) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0) &&
        ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
        ::mount(tree.At("/run").c_str(), "/run", nullptr, MS_BIND, nullptr) == 0;
    if (!is_apart) ::_exit(kNotPermitted);
    tree.Write("/text", ConsoleText(*machine::MakeLiveMachine()));
    ::_exit(0);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  if (WIFEXITED(status) && WEXITSTATUS(status) == kNotPermitted) return {};
  EXPECT_EQ(status, 0);
  return tree.Read("/text");
}

constexpr char kRoot[] = "UID=0\nCLASS=user\nSTATE=active\n";
constexpr char kDaemon[] = "UID=1\nCLASS=user\nSTATE=online\n";

TEST(Sessions, AreThoseOfTheLoginService) {
  struct {
    char const* name;
    Files files;
    std::string answer, announced;
  } const cases[] = {
      {"no service", {{"sessions/5", kRoot}}, "absent: sd_get_seats", "login service absent; "},
      {"nobody", {{"seats/seat0", "IS_SEAT0=1\n"}}, "{SessionInfo=[]}", "login service answered; "},
      {"two users",
       {{"seats/seat0", "ACTIVE=5\nACTIVE_UID=0\n"},
        {"sessions/5", kRoot},
        {"sessions/c3", kDaemon}},
       "{GID=0 Name='root' SessionInfo=["
       "{kCGSSessionGroupIDKey=0 kCGSSessionIDKey=5 kCGSSessionOnConsoleKey=yes"
       " kCGSSessionUserIDKey=0 kCGSSessionUserNameKey='root' kCGSessionLoginDoneKey=yes}"
       "{kCGSSessionGroupIDKey=1 kCGSSessionIDKey=4294967299 kCGSSessionOnConsoleKey=no"
       " kCGSSessionUserIDKey=1 kCGSSessionUserNameKey='daemon' kCGSessionLoginDoneKey=yes}]"
       " UID=0}",
       "getpwuid answered; getpwuid answered; login service answered; "},
      {"login screen",
       {{"seats/seat0", "ACTIVE=c1\n"}, {"sessions/c1", "UID=0\nCLASS=greeter\nSTATE=active\n"}},
       "{SessionInfo=[]}",
       "login service answered; "},
      {"a stranger who logs in",
       {{"seats/seat0", "ACTIVE=7\n"},
        {"sessions/7", "UID=4000000000\nCLASS=user\nSTATE=opening\n"}},
       "{SessionInfo=["
       "{kCGSSessionIDKey=7 kCGSSessionOnConsoleKey=yes kCGSSessionUserIDKey=4000000000"
       " kCGSessionLoginDoneKey=no}] UID=4000000000}",
       "getpwuid absent; login service answered; "},
      {"odd ones",
       {{"seats/seat0", "ACTIVE=gone\n"},
        {"sessions/x7", kRoot},
        {"sessions/c4294967296", kRoot},
        {"sessions/99999999999999999999", kRoot},
        {"sessions/c", kRoot},
        {"sessions/8", "UID=many\nCLASS=user\n"},
        {"sessions/9", ""},
        {"sessions/10.ref", kRoot}},
       "{SessionInfo=[]}",
       "login service answered; session 99999999999999999999 not supported;"
       " session c not supported; session c4294967296 not supported; session x7 not supported; "},
  };
  for (auto const& row : cases) {
    auto const text = AskWith(row.files);
    if (!text) GTEST_SKIP() << "mounting is not permitted here";
    EXPECT_EQ(*text, row.answer + "\n" + row.announced) << row.name;
  }
}

TEST(Sessions, NobodyIsLoggedOnToARecordedTree) {
  RecordedTree tree;
  tree.Write("/run/systemd/sessions/5", kRoot);
  tree.Write("/run/systemd/seats/seat0", "ACTIVE=5\n");
  EXPECT_EQ(ConsoleText(*tree.Machine()),
            "not supported: nobody is logged on to a recorded tree\nlogin service not supported; ");
}

}  // namespace
