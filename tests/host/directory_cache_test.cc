#include "host/directory_cache.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "host/directory_options.h"
#include "host/known_users.h"
#include "host/refresh_context.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

using namespace std::string_literals;
using host::DirectoryCache;

class Cache : public testing::Test {
 protected:
  static constexpr char kFile[] = "directory/user-ann.xml";

  // With so many groups of one name.
  static ActiveDirectoryLocalUser User(std::string name, std::size_t groups = 1,
                                       std::string const& group = "staff") {
    ActiveDirectoryLocalUser user(std::move(name));
    user.SetCacheState(kFilledFromDirectory);
    user.SetDistinguishedName("CN=" + group);
    user.SetLastSampleTime({1'700'000'000'000'000});
    user.SetGroups(std::vector<ActiveDirectoryGroup>(groups, ActiveDirectoryGroup(group)));
    return user;
  }
  host::RefreshContext Context() const {
    host::DirectoryOptions options;
    options.cache_folder = folder_.Path("directory");
    return {options, [] { return false; }};
  }

  TemporaryFolder folder_;
  DirectoryCache cache_{folder_.Path("directory")};
};

TEST_F(Cache, KeepsUsersApartWhateverTheyAreCalled) {
  std::vector<std::string> names = {"ann", "Ann",   "..",       "../../etc/passwd",
                                    "a/b", "a%2fb", "a",        "\xFF\xFE",
                                    "-",   "\n",    "CORP\\ann"};
  std::string const long_name(299, 'x');
  names.insert(names.end(), {"a\0b"s, long_name + "x", long_name + "y", std::string(300, '/')});
  std::set<std::string> files;
  for (std::string const& name : names) {
    std::string const file = host::CacheFileName(name);
    EXPECT_LE(file.size(), 255u);
    EXPECT_EQ(file.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-._%~"), file.npos);
    EXPECT_TRUE(files.insert(file).second) << file;
    host::RefreshContext const context = Context();
    EXPECT_TRUE(User(name, 2).SaveToCache(&context)) << file;
  }
  auto const in_folder = std::filesystem::directory_iterator(folder_.Path("directory"));
  EXPECT_EQ(static_cast<std::size_t>(std::distance(begin(in_folder), end(in_folder))),
            names.size());
  for (std::string const& name : names) {
    ActiveDirectoryLocalUser user(name);
    EXPECT_TRUE(cache_.Load(user)) << host::CacheFileName(name);
    EXPECT_EQ(user.GetGroups().size(), 2u);
  }
  EXPECT_EQ(cache_.LoadUsers().size(), names.size());
  EXPECT_EQ(cache_.UserFile(""), "");
}

TEST_F(Cache, BelievesNoFileThatARunDidNotWrite) {
  std::string const whole = User("ann").ToXml();
  auto const with = [&whole](std::string const& part, std::string const& other) {
    return std::string(whole).replace(whole.find(part), part.size(), other);
  };
  folder_.MakeFolder("directory");
  ASSERT_EQ(::chmod(folder_.Path("directory").c_str(), 0700), 0);
  struct {
    char const* name;
    std::string content;
    bool is_believed;
  } const rows[] = {
      {"whole", whole, true},
      {"empty", "", false},
      {"another version", with("1.0", "1.1"), false},
      {"no version", with("<Version>1.0</Version>", ""), false},
      {"another user's", with(">ann<", ">bob<"), false},
      {"never filled", with("<CacheState>2", "<CacheState>1"), false},
      {"from the future", with("SampleTime>2", "SampleTime>9"), false},
      {"the computer's", ActiveDirectoryLocalComputer().ToXml(), false},
      {"not XML", std::string(5000, '<'), false},
      {"huge", whole + std::string(kLargestRecordFile, ' '), false},
      {"sign in a group's name", with(">staff<", ">R&D<"), false},
      {"bracket in a group's name", with(">staff<", ">a<b<"), false},
  };
  for (auto const& row : rows) {
    folder_.Write(kFile, row.content);
    ActiveDirectoryLocalUser user("ann");
    EXPECT_EQ(cache_.Load(user), row.is_believed) << row.name;
    EXPECT_EQ(cache_.LoadUsers().size(), row.is_believed) << row.name;
    EXPECT_EQ(user.GetDistinguishedName().empty(), !row.is_believed) << row.name;
    EXPECT_EQ(user.GetName(), "ann") << row.name;
  }
  for (std::size_t length = 0; length < whole.size(); ++length) {
    folder_.Write(kFile, whole.substr(0, length));
    ActiveDirectoryLocalUser user("ann");
    EXPECT_FALSE(cache_.Load(user)) << length;
  }
}

TEST_F(Cache, BelievesNoFolderThatOthersMayWriteTo) {
  folder_.MakeFolder("directory");
  folder_.Write(kFile, User("ann").ToXml());
  for (auto const& [mode, is_believed] : {std::pair<mode_t, bool>{0755, true}, {0777, false}}) {
    ASSERT_EQ(::chmod(folder_.Path("directory").c_str(), mode), 0);
    ActiveDirectoryLocalUser user("ann");
    EXPECT_EQ(cache_.Load(user), is_believed) << mode;
    EXPECT_EQ(cache_.Prepare(cache_.UserFile("bob")), is_believed) << mode;
  }
  ASSERT_EQ(::chmod(folder_.Path("directory").c_str(), 0700), 0);
  std::filesystem::remove(folder_.Path(kFile));
  folder_.MakeFifo(kFile);
  ActiveDirectoryLocalUser user("ann");
  EXPECT_FALSE(cache_.Load(user)) << "a pipe";
}

TEST_F(Cache, IsNeverTornByTwoProcesses) {
  constexpr int kTimes = 150;
  std::vector<pid_t> writers;
  for (char const* group : {"first", "second"}) {
    writers.push_back(::fork());
    if (writers.back() != 0) continue;
    ActiveDirectoryLocalUser const user = User("ann", group[0] == 'f' ? 400 : 20, group);
    host::RefreshContext const context = Context();
    int failures = 0;
    for (int i = 0; i < kTimes; ++i) {
      try {
        failures += user.SaveToCache(&context) ? 0 : 1;
      } catch (...) {
        ++failures;
      }
    }
    // Nobody has to win each time.
    ::_exit(failures < kTimes ? 0 : 1);
  }
  int read = 0, ended = 0;
  for (int status = 0; ended < 2;) {
    ActiveDirectoryLocalUser user("ann");
    if (cache_.Load(user)) {
      ++read;
      EXPECT_EQ(user.GetGroups().size(), user.GetDistinguishedName() == "CN=first" ? 400u : 20u);
    }
    pid_t const child = ::waitpid(-1, &status, WNOHANG);
    if (std::find(writers.begin(), writers.end(), child) == writers.end()) continue;
    ++ended;
    EXPECT_EQ(status, 0);
  }
  EXPECT_GT(read, 0);
}

}  // namespace

TEST(DirectoryOptions, AreUnderstoodOrRefused) {
  struct {
    char const* setting;
    char const* complaint;
  } const rows[] = {
      {"Enabled=maybe", "Directory:Enabled: \"maybe\" is neither yes nor no"},
      {"ComputerInterval=never", "is no duration of a second or more"},
      {"UserInterval=0", "is no duration of a second or more"},
      {"UserInterval=never", ""},
      {"CacheFolder=here", "is no absolute path"},
      {"URI=dc1.example.com", "is no URI such as"},
      {"BindName=cn=x", "Directory:BindName: there is no Directory:BindPasswordFile"},
      {"TimeLimit=1h", "is no duration from 1ms to 10m"},
  };
  for (auto const& row : rows) {
    host::Settings settings;
    ASSERT_EQ(settings.ReadAssignment("Directory:"s + row.setting), std::nullopt);
    auto const read = host::ReadDirectoryOptions(settings);
    auto const* const complaint = std::get_if<std::string>(&read);
    EXPECT_EQ(complaint != nullptr, *row.complaint != '\0') << row.setting;
    EXPECT_THAT(complaint == nullptr ? "" : *complaint, testing::HasSubstr(row.complaint));
  }
}

}  // namespace gatotu::tests
