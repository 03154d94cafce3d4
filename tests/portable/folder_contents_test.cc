#include <unistd.h>

#include "portable/file_operations.h"
#include "tests/portable/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

// A folder "tree" of all sorts, with links that lead out of it and around in it.
void MakeTree(TemporaryFolder const& folder) {
  for (int i = 0; i < 200; ++i) folder.Write("tree/wide/" + std::to_string(i));
  folder.Write("tree/a/b/c/file", "deep");
  folder.Write("kept/file", "kept");
  fs::create_directory_symlink(folder.Path("kept"), folder.Path("tree/a/out"));
  fs::create_directory_symlink(folder.Path("tree"), folder.Path("tree/a/b/around"));
  fs::create_symlink("nowhere", folder.Path("tree/dangling"));
  folder.MakeFifo("tree/pipe");
  folder.Write("tree/\xFF\xFE", "no text");
}

TEST(FolderContents, AreDeletedWithoutFollowingLinks) {
  struct {
    char const* name;
    void (*remove)(FileLocation const&);
    bool keeps_folder;
    std::string missing, of_file;
  } const rows[] = {{"contents", DeleteContents, true, kNotFound, kNoFolder},
                    {"recursive", DeleteRecursive, false, kNotFound, ""},
                    {"force contents", ForceDeleteContents, true, "", kNoFolder},
                    {"force recursive", ForceDeleteRecursive, false, "", ""}};
  for (auto const& row : rows) {
    TemporaryFolder folder;
    MakeTree(folder);
    row.remove(folder.At("tree"));
    EXPECT_EQ(folder.Has("tree"), row.keeps_folder) << row.name;
    EXPECT_TRUE(!folder.Has("tree") || fs::is_empty(folder.Path("tree"))) << row.name;
    EXPECT_EQ(folder.Read("kept/file"), "kept") << row.name;

    fs::create_directory_symlink("kept", folder.Path("link"));
    folder.Write("plain");
    EXPECT_EQ(ThrownBy([&] { row.remove(folder.At("none")); }), row.missing) << row.name;
    EXPECT_EQ(ThrownBy([&] { row.remove(folder.At("link")); }), row.of_file) << row.name;
    EXPECT_EQ(ThrownBy([&] { row.remove(folder.At("plain")); }), row.of_file) << row.name;
    EXPECT_EQ(folder.Read("kept/file"), "kept") << row.name;
    EXPECT_EQ(folder.Has("plain"), row.keeps_folder) << row.name;
  }
}

TEST(FolderContents, OfDeepTreesAreDeletedAndCopied) {
  TemporaryFolder folder;
  folder.MakeChain("deep", std::string(10, 'd'), 600, [](int) {});
  fs::create_directory(folder.Path("copy"));
  CopyDirectoryContents(folder.At("deep"), folder.At("copy"));
  for (char const* tree : {"deep", "copy"}) {
    DeleteRecursive(folder.At(tree));
    EXPECT_FALSE(folder.Has(tree));
  }
}

TEST(FolderContents, AreCopiedInto) {
  TemporaryFolder folder;
  MakeTree(folder);
  folder.Write("target/a/other", "other");
  CopyDirectoryContents(folder.At("tree/a"), folder.At("target/a"));
  EXPECT_EQ(folder.Read("target/a/b/c/file"), "deep");
  EXPECT_EQ(folder.Read("target/a/other"), "other");
  EXPECT_EQ(fs::read_symlink(folder.Path("target/a/out")), folder.Path("kept"));
  EXPECT_EQ(fs::read_symlink(folder.Path("target/a/b/around")), folder.Path("tree"));

  std::string const into_itself = Named<FileCopyFailed>(-122), exists = Named<FileExists>(-48);
  struct {
    char const *from, *to;
    std::string error;
  } const rows[] = {{"kept", "kept", into_itself},      {"tree", "tree/a", into_itself},
                    {"none", "kept", kNotFound},        {"kept", "none", kNotFound},
                    {"kept/file", "target", kNoFolder}, {"tree/a/b", "target/a/b", exists}};
  for (auto const& row : rows) {
    EXPECT_EQ(ThrownBy([&] { CopyDirectoryContents(folder.At(row.from), folder.At(row.to)); }),
              row.error)
        << row.from;
  }
}

// As a user for whom permissions count.
TEST(FolderContents, ThatMayNotBeDeletedSaySo) {
  TemporaryFolder folder;
  folder.Write("unreadable/file");
  folder.Write("unwritable/file");
  folder.MakeFolder("parent/unwritable/sub");
  for (auto const& [name, mode] :
       {std::pair("", 0777), std::pair("parent", 0777), std::pair("unreadable", 0),
        std::pair("unwritable", 0555), std::pair("parent/unwritable", 0555)}) {
    fs::permissions(folder.Path(name), fs::perms(mode));
  }
  bool const is_root = geteuid() == 0;
  if (is_root && seteuid(65534) != 0) GTEST_SKIP();
  std::string const unreadable = ThrownBy([&] { DeleteRecursive(folder.At("unreadable")); });
  std::string const unwritable = ThrownBy([&] { ForceDeleteRecursive(folder.At("unwritable")); });
  std::string const sub = ThrownBy([&] { DeleteContents(folder.At("parent")); });
  ASSERT_TRUE(!is_root || seteuid(0) == 0);
  EXPECT_EQ(unreadable, Named<MacintoshPlatform::FileLoopFailed>(-5000));
  EXPECT_EQ(unwritable, Named<FileDeleteFailed>(-5000));
  EXPECT_EQ(sub, Named<DirectoryDeleteFailed>(-5000));
  fs::permissions(folder.Path("unreadable"), fs::perms::all);
}

}  // namespace
