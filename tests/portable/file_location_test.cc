#include "portable/file_location.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "portable/core_foundation/errors.h"
#include "portable/macintosh/file_info.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/scripted_machine.h"

namespace {

using Platform = MacintoshPlatform::FileLocation;

TEST(FileLocation, IsMadeFromPathsAndNames) {
  FileLocation const a = MakeFileLocation("/a");
  struct {
    FileLocation location;
    char const *path, *name;
  } const rows[] = {
      {a, "/a", "a"},
      {MakeFileLocation("/"), "/", "/"},
      {MakeFileLocation("/a/b/"), "/a/b", "b"},
      {MakeFileLocation(ConstData("/x\xFF")), "/x\xFF", "x\xFF"},
      {MakeFileLocation(UStringRef<UTF8>(ConstData("/é"))), "/é", "é"},
      {FileLocation(a, "b c"), "/a/b c", "b c"},
      {FileLocation(a, ConstData("\xFF")), "/a/\xFF", "\xFF"},
      {a.Child(FileName(ConstData("%41"))), "/a/%41", "%41"},
      {a.Sibling(FileName(ConstData("b"))), "/b", "b"},
      {MakeRelativeFileLocation(a, "b/../c"), "/a/b/../c", "c"},
      {MakeRelativeFileLocation(a, "/c"), "/c", "c"},
      {a.Child(FileName(ConstData("b"))).Parent(), "/a", "a"},
      {a.Parent(), "/", "/"},
  };
  for (auto const& row : rows) {
    EXPECT_EQ(row.location.POSIXPath(), row.path);
    EXPECT_EQ(row.location.Name().MakeUTF8String(), row.name);
  }
  EXPECT_EQ(MacintoshPlatform::MakeFileLocation("System:\x8E", 8, kCFStringEncodingMacRoman,
                                                kCFURLHFSPathStyle)
                .POSIXPath(),
            "/é");
  EXPECT_THROW(MakeFileLocation(""), CFURLCreateWithFileSystemPathFailed);
  EXPECT_THROW(MakeFileLocation(ConstData("/a\0b", 4)), CFURLCreateWithFileSystemPathFailed);
  EXPECT_TRUE(IsAbsolutePath("/a"));
  EXPECT_FALSE(IsAbsolutePath("a/"));

  unsigned char buffer[3];
  a.Platform().POSIXPath(buffer, 3);
  EXPECT_STREQ(reinterpret_cast<char*>(buffer), "/a");
  EXPECT_THROW(a.Platform().POSIXPath(buffer, 2), MacintoshPlatform::FullPathFailed);
  std::string const deep = "/" + std::string(5000, 'd');
  EXPECT_EQ(MakeFileLocation(deep.c_str()).POSIXPath(), deep);

  FileLocation out;
  EXPECT_STREQ(MakeFileLocationWithWildcard("/*", out), "*");
  EXPECT_EQ(out.POSIXPath(), "/");
  EXPECT_EQ(MakeFileLocationWithWildcard("/a/b", out), nullptr);
  EXPECT_EQ(out.POSIXPath(), "/a/b");
}

TEST(FileLocation, OfNothingIsRefused) {
  FileLocation const none;
  EXPECT_TRUE(none.IsEmpty());
  EXPECT_FALSE(none.Exists());
  EXPECT_FALSE(none.IsRoot());
  EXPECT_FALSE(none.IsLink());
  EXPECT_THROW(none.RequireNonEmpty(), EmptyFileLocationError);
  EXPECT_THROW(none.Parent(), EmptyFileLocationError);
  EXPECT_THROW(none.Name(), EmptyFileLocationError);
  EXPECT_THROW(none.POSIXPath(), EmptyFileLocationError);
  EXPECT_THROW(none.Child(FileName(ConstData("a"))), EmptyFileLocationError);
  EXPECT_THROW(MakeRelativeFileLocation(none, "a"), EmptyFileLocationError);
  EXPECT_THROW((void)(none == none), EmptyFileLocationError);
  EXPECT_TRUE(none < MakeFileLocation("/"));
  EXPECT_FALSE(none < none);
}

class Locations : public ::testing::Test {
 protected:
  Locations() {
    tree_.Write("/folder/file", "content");
    tree_.Link("/link", "folder/file");
    tree_.Link("/way", "folder");
    tree_.Link("/dangling", "gone");
  }

  RecordedTree tree_;
  MachineInUse use_{machine::MakeLiveMachine(tree_.At(""), machine::Changes::kAllowed)};
};

TEST_F(Locations, TellWhatStandsThere) {
  struct {
    char const* path;
    bool exists, is_link, is_root;
  } const rows[] = {
      {"/folder", true, false, false},   {"/link", true, true, false},
      {"/dangling", true, true, false},  {"/gone", false, false, false},
      {"/", true, false, true},          {"//", true, false, true},
      {"/folder/..", true, false, true}, {"/folder/../..", true, false, true},
      {"/way/.", true, false, false},    {"/folder/file/x", false, false, false},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.path);
    FileLocation const location = MakeFileLocation(row.path);
    EXPECT_EQ(location.Exists(), row.exists);
    EXPECT_EQ(location.IsLink(), row.is_link);
    EXPECT_EQ(location.Platform().IsSymLink(), row.is_link);
    EXPECT_EQ(location.IsRoot(), row.is_root);
    if (!row.is_root) continue;
    EXPECT_THROW(location.Parent(), RootHasNoParent);
  }
  EXPECT_THROW(MakeFileLocation("/").Platform().ParentURL(), MacintoshPlatform::InvalidParentURL);
  EXPECT_EQ(MakeFileLocation("/folder/..").Platform().ParentURL().Get() != nullptr, true);
}

TEST_F(Locations, LeadToItemsAndLinksToTargets) {
  Platform const file = MakeFileLocation("/way/file").Platform();
  EXPECT_EQ(Platform(file.Ref()).POSIXPath(), "/folder/file");
  EXPECT_EQ(Platform(MakeFileLocation("/way/new").Platform().ParentRef()).POSIXPath(), "/folder");
  for (char const* path : {"/gone", "/gone/x"}) {
    EXPECT_THROW(MakeFileLocation(path).Platform().Ref(), FileIOError) << path;
  }
  EXPECT_THROW(MakeFileLocation("/gone").Platform().Ref(), FileNotFoundError);
  EXPECT_THROW((void)(MakeFileLocation("/gone") == MakeFileLocation("/")), FileNotFoundError);

  bool is_folder = true, was_aliased = false;
  EXPECT_EQ(
      MakeFileLocation("/link").Platform().ResolveAliasFile(&is_folder, &was_aliased).POSIXPath(),
      "/folder/file");
  EXPECT_FALSE(is_folder);
  EXPECT_TRUE(was_aliased);
  MakeFileLocation("/folder").Platform().ResolveAliasFile(&is_folder, &was_aliased);
  EXPECT_TRUE(is_folder);
  EXPECT_FALSE(was_aliased);
  EXPECT_THROW(MakeFileLocation("/dangling").Platform().ResolveAliasFile(), FileNotFoundError);
}

TEST_F(Locations, MakeAndLockItems) {
  Platform const file = MakeFileLocation("/folder/new").Platform();
  Platform const folder = MakeFileLocation("/made").Platform();
  file.CreateFile({.mode = 0640, .finder_info = {}});
  folder.CreateDirectory({.mode = 0750, .finder_info = {}});
  struct stat status;
  ASSERT_EQ(::stat(tree_.At("/folder/new").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode, S_IFREG | 0640u);
  ASSERT_EQ(::stat(tree_.At("/made").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode, S_IFDIR | 0750u);
  EXPECT_THROW(file.CreateFile({}), FileExists);
  EXPECT_THROW(folder.CreateDirectory({}), DirectoryExists);
  EXPECT_THROW(MakeFileLocation("/gone/x").Platform().CreateFile({}), FileNotFoundError);
  EXPECT_THROW(MakeFileLocation("/folder/file/x").Platform().CreateDirectory({}), FileIOError);

  MacintoshPlatform::MacFileInfo info(file);
  for (bool const is_locked : {true, false}) {
    is_locked ? file.Lock(info) : file.Unlock(info);
    EXPECT_EQ((info.Catalog().nodeFlags & kFSNodeLockedMask) != 0, is_locked);
    MacintoshPlatform::MacFileInfo const again(file);
    EXPECT_EQ((again.Catalog().nodeFlags & kFSNodeLockedMask) != 0, is_locked);
  }
  EXPECT_THROW(MakeFileLocation("/gone").Platform().Lock(info), FileNotFoundError);
}

TEST_F(Locations, ChangeNothingOnAReadOnlyMachine) {
  MachineInUse const use(tree_.Machine());
  EXPECT_THROW(MakeFileLocation("/x").Platform().CreateFile({}), FileCreateFailed);
  EXPECT_THROW(MakeFileLocation("/x").Platform().CreateDirectory({}), DirectoryCreateFailed);
  MacintoshPlatform::MacFileInfo info;
  EXPECT_THROW(MakeFileLocation("/link").Platform().Lock(info), SoftwareVolumeLockError);
}

}  // namespace
