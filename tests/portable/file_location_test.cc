#include "portable/file_location.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "portable/core_foundation/errors.h"
#include "portable/macintosh/file_info.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/scripted_machine.h"

namespace {

namespace fs = std::filesystem;
using Platform = MacintoshPlatform::FileLocation;

Platform At(char const* path) { return MakeFileLocation(path).Platform(); }

TEST(FileLocation, IsMadeFromPathsAndNames) {
  FileLocation const a = MakeFileLocation("/a");
  struct {
    FileLocation location;
    char const *path, *name;
  } const rows[] = {{a, "/a", "a"},
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
                    {a.Parent(), "/", "/"}};
  for (auto const& row : rows) {
    EXPECT_EQ(row.location.POSIXPath(), row.path);
    EXPECT_EQ(row.location.Name().MakeUTF8String(), row.name);
  }
  Platform const by_volume = MacintoshPlatform::MakeFileLocation(
      "System:\x8E", 8, kCFStringEncodingMacRoman, kCFURLHFSPathStyle);
  EXPECT_EQ(by_volume.POSIXPath(), "/é");
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
  } const rows[] = {{"/folder", true, false, false},   {"/link", true, true, false},
                    {"/dangling", true, true, false},  {"/gone", false, false, false},
                    {"/", true, false, true},          {"//", true, false, true},
                    {"/folder/..", true, false, true}, {"/folder/../..", true, false, true},
                    {"/way/.", true, false, false},    {"/folder/file/x", false, false, false}};
  for (auto const& row : rows) {
    SCOPED_TRACE(row.path);
    FileLocation const location = MakeFileLocation(row.path);
    EXPECT_EQ(location.Exists(), row.exists);
    EXPECT_EQ(location.IsLink(), row.is_link);
    EXPECT_EQ(location.IsRoot(), row.is_root);
    if (!row.is_root) continue;
    EXPECT_THROW(location.Parent(), RootHasNoParent);
  }
  EXPECT_THROW(At("/").ParentURL(), MacintoshPlatform::InvalidParentURL);
  EXPECT_EQ(At("/folder/..").ParentURL().Get() != nullptr, true);
}

TEST_F(Locations, LeadToItemsAndLinksToTargets) {
  Platform const file = At("/way/file");
  EXPECT_EQ(Platform(file.Ref()).POSIXPath(), "/folder/file");
  EXPECT_EQ(Platform(At("/way/new").ParentRef()).POSIXPath(), "/folder");
  EXPECT_THROW(At("/gone/x").Ref(), FileIOError);
  EXPECT_THROW(At("/gone").Ref(), FileNotFoundError);
  EXPECT_THROW((void)(MakeFileLocation("/gone") == MakeFileLocation("/")), FileNotFoundError);

  bool is_folder = true, was_aliased = false;
  EXPECT_EQ(At("/link").ResolveAliasFile(&is_folder, &was_aliased).POSIXPath(), "/folder/file");
  EXPECT_FALSE(is_folder);
  EXPECT_TRUE(was_aliased);
  At("/folder").ResolveAliasFile(&is_folder, &was_aliased);
  EXPECT_TRUE(is_folder);
  EXPECT_FALSE(was_aliased);
  EXPECT_THROW(At("/dangling").ResolveAliasFile(), FileNotFoundError);
}

TEST_F(Locations, MakeAndLockItems) {
  Platform const file = At("/folder/new");
  Platform const folder = At("/made");
  file.CreateFile({.mode = 0640, .finder_info = {}});
  folder.CreateDirectory({.mode = 0750, .finder_info = {}});
  EXPECT_TRUE(fs::status(tree_.At("/folder/new")) ==
              fs::file_status(fs::file_type::regular, fs::perms(0640)));
  EXPECT_TRUE(fs::status(tree_.At("/made")) ==
              fs::file_status(fs::file_type::directory, fs::perms(0750)));
  EXPECT_THROW(file.CreateFile({}), FileExists);
  EXPECT_THROW(folder.CreateDirectory({}), DirectoryExists);
  EXPECT_THROW(At("/gone/x").CreateFile({}), FileNotFoundError);
  EXPECT_THROW(At("/folder/file/x").CreateDirectory({}), FileIOError);

  MacintoshPlatform::MacFileInfo info(file);
  for (bool const is_locked : {true, false}) {
    is_locked ? file.Lock(info) : file.Unlock(info);
    for (auto const& seen : {info, MacintoshPlatform::MacFileInfo(file)}) {
      EXPECT_EQ((seen.Catalog().nodeFlags & kFSNodeLockedMask) != 0, is_locked);
    }
  }
  EXPECT_THROW(At("/gone").Lock(info), FileNotFoundError);
}

TEST_F(Locations, ChangeNothingOnAReadOnlyMachine) {
  MachineInUse const use(tree_.Machine());
  EXPECT_THROW(At("/x").CreateFile({}), FileCreateFailed);
  EXPECT_THROW(At("/x").CreateDirectory({}), DirectoryCreateFailed);
  MacintoshPlatform::MacFileInfo info;
  EXPECT_THROW(At("/link").Lock(info), SoftwareVolumeLockError);
}

}  // namespace
