// Files and folders of the machine at hand: finding them, listing them, what is said of them, and
// how other rooms use them.
#include <fcntl.h>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "evaluator/plugin/exceptions.h"
#include "portable_inspectors/descendant_iterator.h"
#include "portable_inspectors/filesystem_object.h"
#include "portable_inspectors/filesystem_object_iterator.h"
#include "program_output.h"
#include "temporary_folder.h"

namespace {

using MacintoshPlatform::posix_folder_of_world;

class Files : public testing::Test {
 protected:
  Files() {
    folder_.Write("a.txt", "alpha\n");
    folder_.MakeFolder("sub/deep");
    folder_.Write("sub/b.txt");
    folder_.Write("sub/deep/c.conf");
    folder_.Link("to file", "sub/../a.txt");
    folder_.Link("to folder", "sub");
    folder_.Link("sub/up", "..");
    folder_.Link("broken", "a.txt/");
    folder_.Link("loop", "loop");
  }

  using Table = std::vector<std::pair<char const*, std::string>>;
  void ExpectAnswers(Table const& table) const {
    for (auto const& [expression, answer] : table) {
      EXPECT_EQ(folder_.Ask(expression), answer) << expression;
    }
  }

  TemporaryFolder folder_;
};

TEST_F(Files, AreFoundByPathAndByName) {
  for (std::string const path : {"%/none", "a.txt", "", "%/a.txt\\x00", "%/sub", "%/a.txt/",
                                 "%/a.txt/.", "%/to folder", "%/broken"}) {
    EXPECT_EQ(folder_.Ask("exists file \"" + path + '"'), "false") << path;
  }
  ExpectAnswers(
      {{R"(exists file "%/a.txt", exists folder "%/a.txt", exists folder "%/loop")",
        "true, false, false"},
       {R"(name of folder "%/sub/", name of folder "%/to folder")", "sub, sub"},
       {R"(names of (filesystem object "%/to folder/"; filesystem object "%/to folder"))",
        "sub\nto folder"},
       {R"(name of file "%/to file", name of filesystem object "%/loop")", "a.txt, loop"},
       {R"(name of folder "%/sub/deep/../../to folder/..//./sub")", "sub"},
       {R"(name of file "%/to folder/up/a.txt")", "a.txt"},
       {R"(name of folder "/", name of folder "/..")", "/, /"},
       {R"(name of file "b.txt" of folder "sub" of folder "%")", "b.txt"},
       {R"(link target of filesystem object "to file" of folder "%")", "sub/../a.txt"},
       {R"(exists link target of file "%/a.txt")", "false"},
       {R"((exists file "sub/b.txt" of it, exists folder ".." of it) of folder "%")",
        "false, false"},
       {R"(name of parent folder of file "%/sub/b.txt")", "sub"},
       {R"(exists parent folder of folder "/", exists location of folder "/")", "false, false"},
       {R"((location of file "%/sub/b.txt" = "%/sub", location of folder "/usr"))", "true, /"}});
}

TEST_F(Files, AreListed) {
  // What other systems leave beside a file belongs to that file.
  folder_.Write("._a.txt", std::string("\0\5\26\7\0\2\0\0", 8));
  folder_.Write("sub/._none", std::string("\0\5\26\7\0\2\0\0", 8));
  folder_.Write("._sub", "plain text");
  folder_.Write("sub/deep/._");
  std::pair<std::string, std::string> const rows[] = {
      {"files", "._sub\na.txt\nbroken\nloop\nto file\nto folder"},
      {"folders", "sub"},
      {"descendants",
       "._\n._none\n._sub\na.txt\nb.txt\nbroken\nc.conf\ndeep\nloop\nsub\nto file\nto folder\nup"},
      {R"(find files "?.txt")", "a.txt"},
      {R"(find items "*o*")", "broken\nloop\nto file\nto folder"},
      {R"(find folders "S*")", ""},
      {R"(find descendants "*.*")", "._\n._none\n._sub\na.txt\nb.txt\nc.conf"}};
  for (auto const& [listed, names] : rows) {
    EXPECT_EQ(folder_.Ask("unique values of names of " + listed + R"( of folder "%")"), names)
        << listed;
  }
  ExpectAnswers(
      {{R"(number of items of folder "%", number of files of folder "%/sub/deep")", "7, 2"},
       {R"(number of folders of folder "%/sub/deep")", "0"}});
}

TEST_F(Files, SayWhatTheStatProgramSays) {
  chmod(folder_.Path("a.txt").c_str(), 06751);
  chmod(folder_.Path("sub").c_str(), 01776);
  folder_.MakeFifo("fifo");
  std::string const facts =
      "(symbolic mode of it, mode of it, owner of it, group of it, owner id of it, "
      "group id of it, modification time of it as string, change time of it as string, "
      "access time of it as string, birth time of it = creation time of it) of filesystem object ";
  for (char const* name : {"a.txt", "sub", "loop", "fifo"}) {
    std::string const path = folder_.Path(name);
    EXPECT_EQ(
        folder_.Ask(facts + '"' + path + '"'),
        FirstLineOf("TZ=UTC stat -c '%A, '$((0$(stat -c %a '" + path +
                    "')))', %U, %G, %u, %g, %y, %z, %x, true' '" + path +
                    "' | sed -E 's/ ([0-9:]+\\.[0-9]{6})[0-9]{3} ([+-]..)(..)/T\\1\\2:\\3/g'"))
        << name;
  }
}

TEST_F(Files, MayHaveAnyName) {
  std::string const longest(255, 'n');
  folder_.Write("sub/" + longest);
  folder_.Write("sub/\xff\xfe\x80 x");
  folder_.MakeFolder("sub/line\nfeed");
  EXPECT_EQ(folder_.Ask("exists file \"" + longest + R"(" of folder "%/sub")"), "true");
  EXPECT_EQ(folder_.Ask("exists file \"" + longest + R"(n" of folder "%/sub")"), "false");
  EXPECT_EQ(folder_.Ask(R"(name of file "\xff\xfe\x80 x" of folder "%/sub")"), "\xff\xfe\x80 x");
  EXPECT_EQ(folder_.Ask(R"(number of find items "*x" of folder "%/sub")"), "1");
  EXPECT_EQ(folder_.Ask(R"(number of descendants of folder "%/sub")"), "7");
}

// The most that is allocated at any item of a walk beyond what was before.
std::size_t HeapOfWalk(std::string const& path) {
  std::size_t const before = mallinfo2().uordblks;
  std::size_t most = before;
  folder const start = posix_folder_of_world(path);
  descendant_iterator walk;
  try {
    for (walk.First(start);; walk.Next(start)) most = std::max(most, mallinfo2().uordblks);
  } catch (NoSuchObject const&) {
  }
  return most - before;
}

// Deeper than files may be open at once and than the kernel takes as one path.
TEST(DeepFolders, AreWalkedToTheEnd) {
  constexpr int kDepth = 600;
  std::string const name(200, 'd');
  TemporaryFolder folder;
  folder.MakeChain("", name, kDepth,
                   [](int at) { close(openat(at, "x", O_CREAT | O_WRONLY, 0600)); });
  EXPECT_EQ(folder.Ask(R"(number of descendants of folder "%")"), std::to_string(2 * kDepth));
  EXPECT_EQ(folder.Ask(R"(number of descendants whose (name of it = "x") of folder "%")"),
            std::to_string(kDepth));
  EXPECT_LT(HeapOfWalk(folder.Path()), 8u << 20);
  rlimit files;
  getrlimit(RLIMIT_NOFILE, &files);
  rlimit const few = {40, files.rlim_max};
  setrlimit(RLIMIT_NOFILE, &few);
  EXPECT_EQ(folder.Ask(R"(number of descendants of folder "%")"), std::to_string(2 * kDepth));
  setrlimit(RLIMIT_NOFILE, &files);
  FirstLineOf("rm -rf '" + folder.Path() + "'");
}

TEST(Descendants, AreThoseThatFindFinds) {
  EXPECT_EQ(Answer(R"(number of descendants of folder "/usr/lib")"),
            FirstLineOf("find /usr/lib -mindepth 1 -printf 'x\\n' | wc -l"));
}

TEST(UnreadableFolders, DoNotPassForEmptyOnes) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser may read everything";
  TemporaryFolder folder;
  folder.MakeFolder("closed/inside");
  chmod(folder.Path("closed").c_str(), 0);
  EXPECT_THAT(folder.Ask(R"(number of items of folder "%/closed")"),
              testing::HasSubstr("FileLoopFailed"));
  EXPECT_EQ(folder.Ask(R"(names of descendants of folder "%")"), "closed");
  chmod(folder.Path("closed").c_str(), 0700);
}

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
