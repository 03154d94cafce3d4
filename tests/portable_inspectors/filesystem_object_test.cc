// Files and folders as other rooms use them.
#include "portable_inspectors/filesystem_object.h"

#include <filesystem>
#include <set>
#include <string>

#include "evaluator/plugin/exceptions.h"
#include "portable_inspectors/descendant_iterator.h"
#include "portable_inspectors/filesystem_object_iterator.h"
#include "temporary_folder.h"

namespace {

using MacintoshPlatform::posix_folder_of_world;

FileLocation LocationOf(std::string const& path) { return MakeFileLocation(ConstData(path)); }

TEST(FilesystemObject, TakesItsItemWhenFirstAsked) {
  TemporaryFolder folder;
  folder.Write("a", "12345");
  file const a = file_of({reinterpret_cast<unsigned char const*>("a"), 1},
                         posix_folder_of_world(folder.Path()));
  folder.Write("a", "123");
  EXPECT_EQ(a.Item().Length(), 3u);
  folder.Write("a", "1");
  EXPECT_EQ(a.Item().Length(), 3u);
  EXPECT_EQ(a.Location().POSIXPath(), folder.Path("a"));

  file const b(folder.Path("b"));
  EXPECT_THROW(b.Item(), NoSuchObject);
  EXPECT_THROW(filesystem_object().Item(), NoSuchObject);

  filesystem_object object;
  object.Get(LocationOf(folder.Path()));
  EXPECT_TRUE(object.Item().IsDirectory());
  EXPECT_EQ(object.Path(), folder.Path());
  EXPECT_THROW(object.Get(LocationOf(folder.Path("b"))), FileItemError);
  EXPECT_EQ(object.Path(), "");
  EXPECT_EQ(filesystem_object(FileItem(LocationOf(folder.Path("a")))).Path(), folder.Path("a"));
}

descendant_iterator::DescendAndAddFlags ApplicationsOnly(FileItem const& item) {
  if (!item.IsDirectory()) throw FileIOError();
  return item.Name().HasExtension(".app", false) ? descendant_iterator::kAdd
                                                 : descendant_iterator::kDescend;
}

TEST(DescendantIterator, WalksEveryStartAsTheFilterDecides) {
  TemporaryFolder folder;
  for (char const* name : {"one/A.app/Inner.app", "one/more/B.app", "two/C.app", "two/empty"}) {
    folder.MakeFolder(name);
  }
  folder.Write("two/file.app");
  folder.Link("two/back", "../one");

  descendant_iterator walk;
  walk.Init();
  for (char const* name : {"one", "missing", "two/file.app", "two"}) {
    walk.AddLocation(LocationOf(folder.Path(name)));
  }
  std::set<std::string> found;
  try {
    for (;;) found.insert(walk.NextWithFilter(ApplicationsOnly).Name().MakeUTF8String());
  } catch (NoSuchObject const&) {
  }
  EXPECT_EQ(found, (std::set<std::string>{"A.app", "B.app", "C.app"}));
  EXPECT_THROW(walk.NextWithFilter(ApplicationsOnly), NoSuchObject);
}

TEST(FilesystemObjectIterator, BeginsAnewWithAnotherFolder) {
  TemporaryFolder folder;
  folder.Write("one/a");
  folder.Write("two/b");
  filesystem_object_iterator contents;
  ::folder const one = posix_folder_of_world(folder.Path("one"));
  ::folder const two = posix_folder_of_world(folder.Path("two"));
  EXPECT_EQ(contents.FirstFile(Of(), one).Path(), folder.Path("one/a"));
  EXPECT_EQ(contents.FirstFile(Of(), two).Path(), folder.Path("two/b"));
  EXPECT_THROW(contents.NextFile(Of(), two), NoSuchObject);
  EXPECT_THROW(contents.NextFile(Of(), two), NoSuchObject);
  std::filesystem::remove_all(folder.Path("two"));
  EXPECT_THROW(contents.FirstFile(Of(), two), NoSuchObject);
  EXPECT_THROW(contents.FirstFile(Of(), ::folder()), NoSuchObject);
}

}  // namespace
