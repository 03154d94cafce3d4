#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>

#include "inspectors/activedirectory/directory/active_directory_local_computer.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"
#include "tests/directory/folder_context.h"

namespace {

class CacheFiles : public testing::Test {
 protected:
  TemporaryFolder folder_;
  FolderContext context_{folder_};
};

std::string Nested(int depth) {
  std::string text;
  for (int i = 0; i < depth; ++i) text += "<Groups>";
  return text;
}

TEST_F(CacheFiles, KeepARecordBetweenRuns) {
  ActiveDirectoryLocalUser user("ann", "CORP");
  user.SetLastSampleTime({1795244400000001});
  user.SetCacheState(kFilledFromDirectory);
  user.SetGroups({ActiveDirectoryGroup("Staff")});
  EXPECT_TRUE(user.SaveToCache(&context_));
  EXPECT_EQ(folder_.Read("user-ann"), user.ToXml());

  ActiveDirectoryLocalUser again("ann");
  EXPECT_TRUE(again.LoadFromCache(&context_));
  EXPECT_EQ(again.ToXml(), user.ToXml());
  EXPECT_EQ(again.GetLastSampleTime().microseconds, 1795244400000001);
  EXPECT_EQ(ActiveDirectoryLocalUser(folder_.At("user-ann")).ToXml(), user.ToXml());

  ActiveDirectoryLocalComputer computer;
  computer.SetDistinguishedName(std::string(100'000, 'x'));
  EXPECT_TRUE(computer.SaveToCache(&context_));
  computer.ClearData();
  EXPECT_TRUE(computer.SaveToCache(&context_));
  EXPECT_EQ(folder_.Read("computer.xml"), computer.ToXml());
}

TEST_F(CacheFiles, AreNotTouchedWhereNoneIsKept) {
  context_.keeps_computer = false;
  folder_.Write("computer.xml", "<Computer></Computer>");
  ActiveDirectoryLocalComputer computer;
  computer.SetName("old");
  for (FolderContext const* const context : {static_cast<FolderContext*>(nullptr), &context_}) {
    EXPECT_FALSE(computer.SaveToCache(context));
    EXPECT_FALSE(computer.LoadFromCache(context));
  }
  ActiveDirectoryLocalUser absent("bob"), hostile("../computer.xml");
  EXPECT_FALSE(absent.LoadFromCache(&context_));
  EXPECT_FALSE(hostile.SaveToCache(&context_));
  EXPECT_EQ(computer.GetName(), "old");
  EXPECT_EQ(folder_.Read("computer.xml"), "<Computer></Computer>");
  EXPECT_EQ(folder_.Count(), 1);
}

TEST_F(CacheFiles, ThatDoNotServeAreToldApart) {
  constexpr char kPlace[] = "computer.xml";
  std::string const start = "<Computer><Version>1.0</Version><CacheState>2</CacheState>";
  std::string const too_large = typeid(DirectoryRecordTooLarge).name();
  auto const write = [&](std::string const& content, long long size = -1) {
    folder_.Write(kPlace, content);
    if (size >= 0) std::filesystem::resize_file(folder_.Path(kPlace), size);
  };
  struct {
    char const* name;
    std::function<void()> make;
    std::string error;
    std::uint32_t cache_state;
  } const rows[] = {
      {"other version", [&] { write("<Computer></Computer>"); }, "", kNeverFilled},
      {"empty", [&] { write(""); }, "", kRequestPending},
      {"truncated", [&] { write(start + "<Name>x</Na"); }, "", kFilledFromDirectory},
      {"nested", [&] { write(start + Nested(1'000'000)); }, "", kFilledFromDirectory},
      {"largest", [&] { write(start, kLargestRecordFile); }, "", kFilledFromDirectory},
      {"larger", [&] { write(start, kLargestRecordFile + 1); }, too_large, kRequestPending},
      {"huge", [&] { write(start, 1LL << 40); }, too_large, kRequestPending},
      {"folder", [&] { std::filesystem::create_directory(folder_.Path(kPlace)); },
       Named<NotAFileError>(-1302), kRequestPending},
      {"pipe", [&] { mkfifo(folder_.Path(kPlace).c_str(), 0600); }, Named<NotAFileError>(-1302),
       kRequestPending},
      {"endless", [&] { std::filesystem::create_symlink("/dev/zero", folder_.Path(kPlace)); },
       Named<NotAFileError>(-1302), kRequestPending},
  };
  for (auto const& row : rows) {
    std::filesystem::remove(folder_.Path(kPlace));
    row.make();
    ActiveDirectoryLocalComputer computer;
    computer.SetCacheState(kRequestPending);
    EXPECT_EQ(ThrownBy([&] { EXPECT_TRUE(computer.LoadFromCache(&context_)); }), row.error)
        << row.name;
    EXPECT_EQ(computer.GetCacheState(), row.cache_state) << row.name;
  }
  EXPECT_EQ(ThrownBy([&] { ActiveDirectoryLocalComputer{folder_.At("none")}; }),
            Named<FileNotFoundError>(-43));
}

}  // namespace
