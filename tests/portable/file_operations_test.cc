#include "portable/file_operations.h"

#include <sstream>
#include <utility>
#include <vector>

#include "portable/file_item.h"
#include "tests/portable/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

// "source" is a file, "taken" another, "full" a folder with a file, "empty" one without, "to-full"
// leads to "full", "link" nowhere.
class FileOperations : public testing::Test {
 protected:
  FileOperations() {
    folder.Write("source", "source");
    folder.Write("taken", "taken");
    folder.Write("full/inner", "inner");
    folder.MakeFolder("empty");
    folder.Link("link", "nowhere");
    folder.Link("to-full", "full");
  }

  TemporaryFolder folder;
};

TEST_F(FileOperations, TransferOrSayWhyNot) {
  struct {
    char const* name;
    void (*transfer)(FileLocation const&, FileLocation const&);
    char const *from, *to;
    std::string error, content;
  } const rows[] = {
      {"copy", CopyFile, "source", "copy", "", "source"},
      {"copy onto", CopyFile, "source", "taken", Named<FileExists>(-48), "taken"},
      {"copy nothing", CopyFile, "none", "copy2", kNotFound, ""},
      {"copy nowhere", CopyFile, "source", "none/x", kNotFound, ""},
      {"copy folder", CopyFile, "full", "full2", "", ""},
      {"copy into itself", CopyFile, "full", "full/again", Named<FileCopyFailed>(-122), ""},
      {"copy link", CopyFile, "link", "link2", "", ""},
      {"force copy", ForceCopyFile, "source", "taken", "", "source"},
      {"force copy onto itself", ForceCopyFile, "source", "source", "", "source"},
      {"force copy nothing", ForceCopyFile, "none", "taken", kNotFound, "source"},
      {"force copy onto full", ForceCopyFile, "source", "full", Named<DirectoryNotEmpty>(-47), ""},
      {"move", MoveFile, "copy", "empty/moved", "", "source"},
      {"move onto", MoveFile, "source", "taken", Named<FileExists>(-48), "source"},
      {"move nothing", MoveFile, "none", "copy2", kNotFound, ""},
      {"move into itself", MoveFile, "full", "full/again", Named<FileMoveFailed>(-122), ""},
      {"force move", ForceMoveFile, "empty/moved", "taken", "", "source"},
      {"force move nothing", ForceMoveFile, "none", "taken", kNotFound, "source"},
      {"force move onto itself", ForceMoveFile, "source", "source", "", "source"}};
  for (auto const& row : rows) {
    EXPECT_EQ(ThrownBy([&] { row.transfer(folder.At(row.from), folder.At(row.to)); }), row.error)
        << row.name;
    EXPECT_EQ(folder.Read(row.to), row.content) << row.name;
  }
  EXPECT_EQ(folder.Read("full2/inner"), "inner");
  EXPECT_EQ(fs::read_symlink(folder.Path("link2")), "nowhere");
  EXPECT_FALSE(folder.Has("copy"));
}

TEST_F(FileOperations, DeleteOneItem) {
  std::string const not_empty = Named<DirectoryNotEmpty>(-47);
  struct {
    char const* name;
    std::string deleted, forced;
  } const rows[] = {{"source", "", ""},
                    {"empty", "", ""},
                    {"link", "", ""},
                    {"none", kNotFound, ""},
                    {"full", not_empty, not_empty}};
  for (auto const& row : rows) {
    EXPECT_EQ(ThrownBy([&] { DeleteFile(folder.At(row.name)); }), row.deleted) << row.name;
    EXPECT_EQ(ThrownBy([&] { DeleteDirectory(folder.At(row.name)); }),
              row.deleted.empty() ? kNotFound : row.deleted);
    EXPECT_EQ(ThrownBy([&] { ForceNonexistence(folder.At(row.name)); }), row.forced) << row.name;
    EXPECT_EQ(folder.Has(row.name), !row.forced.empty()) << row.name;
  }
  EXPECT_EQ(ThrownBy([&] { DeleteFile(FileLocation()); }), kEmpty);
}

TEST_F(FileOperations, CreateItems) {
  std::string const exists = Named<DirectoryExists>(-48), found = Named<FileFoundError>();
  struct {
    void (*create)(FileLocation const&);
    std::vector<std::pair<char const*, std::string>> items;
  } const rows[] = {
      {[](FileLocation const& at) { CreateDirectory(at); },
       {{"new", ""}, {"new", exists}, {"source", exists}, {"none/new", kNotFound}}},
      {[](FileLocation const& at) { ForceDirectoryExistence(at); },
       {{"new", ""}, {"new2", ""}, {"to-full", ""}, {"source", exists}, {"link", exists}}},
      {[](FileLocation const& at) { CreateFile(at); },
       {{"file", ""}, {"file", Named<FileExists>(-48)}, {"full", Named<FileExists>(-48)}}},
      {CreateDirectoryTree,
       {{"a/b/c/d", ""},
        {"a/b/c/d", ""},
        {"to-full/b/c", ""},
        {"source/b", found},
        {"source", found}}},
      {CreateDirectoryForUserAppAccess, {{"mine", ""}}}};
  for (auto const& row : rows) {
    for (auto const& item : row.items) {
      EXPECT_EQ(ThrownBy([&] { row.create(folder.At(item.first)); }), item.second) << item.first;
    }
  }
  for (char const* name : {"new", "new2", "a/b/c/d", "full/b/c", "mine"}) {
    EXPECT_TRUE(fs::is_directory(folder.Path(name))) << name;
  }
  EXPECT_EQ(fs::status(folder.Path("mine")).permissions(), fs::perms::owner_all);
  EXPECT_TRUE(fs::is_regular_file(folder.Path("file")));
}

TEST_F(FileOperations, LockAndMeasure) {
  FileLocation const file = folder.At("source");
  SetFileReadOnly(file, true);
  EXPECT_TRUE(FileItem(file).IsLocked());
  SetFileReadOnly(file, false);
  EXPECT_FALSE(FileItem(file).IsLocked());
  EXPECT_EQ(ThrownBy([&] { SetFileReadOnly(folder.At("none"), true); }), kNotFound);

  double const space = static_cast<double>(fs::space(folder.Path()).available);
  EXPECT_NEAR(static_cast<double>(CalculateFreeSpace(file)), space, 64e6);
  EXPECT_EQ(ThrownBy([&] { CalculateFreeSpace(folder.At("none")); }), kNotFound);
}

TEST_F(FileOperations, KnowDescendants) {
  struct {
    char const *ancestor, *location;
    bool equal_or_descendant, descendant;
  } const rows[] = {{"full", "full/inner", true, true},    {"full", "full", true, false},
                    {"full", "to-full/inner", true, true}, {"full", "empty", false, false},
                    {"full/inner", "full", false, false},  {"to-full", "full/inner", false, false}};
  for (auto const& row : rows) {
    FileLocation const ancestor = folder.At(row.ancestor), location = folder.At(row.location);
    EXPECT_EQ(EqualOrDescendant(ancestor, location), row.equal_or_descendant) << row.location;
    EXPECT_EQ(IsDescendant(ancestor, location), row.descendant) << row.location;
  }
  EXPECT_TRUE(IsDescendant(MakeFileLocation("/"), folder.At("full/inner")));
  EXPECT_EQ(ThrownBy([&] { EqualOrDescendant(FileLocation(), folder.At()); }), kEmpty);
  EXPECT_EQ(ThrownBy([&] { EqualOrDescendant(folder.At(), FileLocation()); }), kEmpty);
  EXPECT_EQ(ThrownBy([&] { IsDescendant(FileLocation(), FileLocation()); }), kEmpty);
}

TEST(DateFromName, IsReadFromEightBytes) {
  std::string const illegal = Named<IllegalFileName>() + " ";
  std::pair<std::string, std::string> const rows[] = {{"20090131.log", " 2009 1 31"},
                                                      {"99999999x", " 9999 99 99"},
                                                      {"0000000:x", " 0 0 10"},
                                                      {"20090131", illegal + "0 0 0"},
                                                      {"a", illegal + "0 0 0"}};
  for (auto const& [name, told] : rows) {
    FileLocation const at = MakeFileLocation(("/none/" + name).c_str());
    long year = 0, month = 0, day = 0;
    std::ostringstream text;
    text << ThrownBy([&] { GetDateFromNameInFileLocation(at, year, month, day); });
    text << ' ' << year << ' ' << month << ' ' << day;
    EXPECT_EQ(text.str(), told) << name;
  }
}

TEST(UniqueLocation, IsNewAndNamedByItsHint) {
  TemporaryFolder folder;
  folder.Write("file");
  auto const is_form = [&](FileLocation const& at, std::string const& hint) {
    std::string const name = at.Name().MakeUTF8String();
    return name.starts_with(hint) && name.size() == hint.size() + 6 && at.Parent() == folder.At();
  };
  FileLocation const first = CreateUniqueFileLocation(folder.At(), "hint\xC3\xA4");
  FileLocation const second = CreateUniqueFileLocation(folder.At(), nullptr);
  FileLocation const directory = CreateUniqueDirLocation(folder.At(), "dir.");
  FileLocation const beside = CreateUniqueFileLocationWithHint(folder.At("file"), "b");
  EXPECT_TRUE(is_form(first, "hint\xC3\xA4") && FileItem(first).Length() == 0);
  EXPECT_TRUE(is_form(second, "") && is_form(beside, "b") && is_form(directory, "dir."));
  EXPECT_TRUE(FileItem(directory).IsDirectory());
  EXPECT_EQ(folder.Count(), 5);

  for (char const* place : {"", "file", "none"}) {
    FileLocation const free = LocationForTemporaryFile(folder.At(place));
    EXPECT_TRUE(is_form(free, "temp")) << place;
    EXPECT_FALSE(free.Exists()) << place;
  }
  EXPECT_EQ(folder.Count(), 5);
}

TEST(UniqueLocation, SaysWhyThereIsNone) {
  TemporaryFolder folder;
  std::string const failed = Named<CreateUniqueFileLocationFailed>();
  std::string const too_long = Named<MacintoshPlatform::FullPathFailed>();
  // What a path may have before "/", six characters and the NUL.
  std::string const fits(1024 - 8 - folder.Path().size(), 'x');
  std::pair<std::string, std::string> const rows[] = {
      {"../x", failed}, {fits, failed}, {fits + "x", too_long}, {std::string(2000, 'x'), too_long}};
  for (auto const& [hint, error] : rows) {
    auto const create = [&, text = hint.c_str()] { CreateUniqueFileLocation(folder.At(), text); };
    EXPECT_EQ(ThrownBy(create), error) << hint.size();
  }
  EXPECT_EQ(ThrownBy([&] { CreateUniqueDirLocation(folder.At("none"), "x"); }), failed);
  EXPECT_EQ(ThrownBy([&] { LocationForTemporaryFile(FileLocation()); }), kEmpty);
  EXPECT_EQ(ThrownBy([&] { CreateUniqueFileLocationWithHint(FileLocation(), "x"); }), kEmpty);
}

TEST(TemporaryFolders, AreThePlatforms) {
  EXPECT_TRUE(FileItem(TemporaryFileDirLocation()).IsDirectory());
  EXPECT_EQ(LocationForTemporaryFile().Parent(), TemporaryFileDirLocation());
  FileLocation made;
  MakeTemporaryFileLocation(made, "portable");
  EXPECT_EQ(FileItem(made).Length(), 0u);
  DeleteFile(made);
  EXPECT_EQ(ThrownBy([] { MacintoshPlatform::MakeFileLocation(0x3F3F3F3F, kOnSystemDisk, 0); }),
            Named<MacintoshPlatform::CannotCreateSpecialFolder>(-43));
}

}  // namespace
