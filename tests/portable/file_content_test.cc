#include "portable/file_content.h"

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "portable/core_foundation/errors.h"
#include "portable/file_reader.h"
#include "tests/portable/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

TEST(FileReader, TakesWhatThereIsAndGoesOnWhereItStopped) {
  TemporaryFolder folder;
  FileReadingPath path(folder.Write("file", "0123456789"));
  EXPECT_EQ(path.Length(), 10);
  std::string const at_end = Named<EndOfFileError>(-39);
  struct {
    long long offset;
    unsigned long room;
    std::string read, error;
  } const rows[] = {{0, 4, "0123", ""}, {8, 4, "89", ""}, {0, 100, "0123456789", ""},
                    {3, 0, "", ""},     {10, 0, "", ""},  {10, 1, "", at_end},
                    {99, 1, "", at_end}};
  for (auto const& row : rows) {
    FileReader reader;
    reader.Start(path, row.offset);
    BufferOfSize<100> room;
    Buffer buffer(Data(room.Cursor().begin, row.room));
    Data const all = buffer;
    EXPECT_EQ(ThrownBy([&] { reader >> buffer; }), row.error) << row.offset;
    EXPECT_EQ(MakeString(ConstData(all.begin, buffer.begin)), row.read) << row.offset;
  }

  FileReader first, second;
  first.Start(path, 0);
  second.Start(path, 5);
  unsigned char bytes[7];
  Data const room(bytes, sizeof bytes);
  EXPECT_TRUE((first >> room).IsEmpty());
  EXPECT_EQ((second >> room).Length(), 2u);
  EXPECT_EQ((first >> room).Length(), 4u);
  EXPECT_EQ(MakeString(ConstData(bytes, 3ul)), "789");
}

TEST(Files, SayWhyTheyAreNotReadOrWritten) {
  TemporaryFolder folder;
  folder.Write("file");
  folder.Write("locked", "old");
  chmod(folder.Path("locked").c_str(), 0444);
  folder.MakeFifo("pipe");
  folder.MakeFolder("folder");
  folder.Link("dangling", "nowhere");
  folder.Link("link", "file");
  std::string const no_file = Named<NotAFileError>(-1302),
                    no_folder = Named<DirectoryNotFoundError>(-120);
  struct {
    char const* name;
    std::string reading, writing, replacing;
  } const rows[] = {{"file", "", "", ""},
                    {"link", "", "", ""},
                    {"folder", no_file, no_file, no_file},
                    {"pipe", no_file, no_file, no_file},
                    {"dangling", kNotFound, kNotFound, kNotFound},
                    {"none/file", no_folder, no_folder, kNotFound},
                    {"none", kNotFound, kNotFound, ""},
                    {"locked", "", Named<FilePermissionError>(-54), Named<FileLockError>(-45)}};
  for (auto const& row : rows) {
    FileLocation const at = folder.At(row.name);
    EXPECT_EQ(ThrownBy([&] { FileReadingPath{at}; }), row.reading) << row.name;
    EXPECT_EQ(ThrownBy([&] { ReadFileIntoString(at); }), row.reading) << row.name;
    EXPECT_EQ(ThrownBy([&] { FileWritingPath{at}; }), row.writing) << row.name;
    EXPECT_EQ(ThrownBy([&] { WriteConstDataToFile({}, at); }), row.replacing) << row.name;
  }
  EXPECT_EQ(folder.Read("locked"), "old");
  EXPECT_EQ(folder.Count(), 7);
  std::string const not_open = Named<FileNotOpenError>();
  EXPECT_EQ(ThrownBy([] { FileReadingPath{FileLocation()}; }), kEmpty);
  EXPECT_EQ(ThrownBy([] { WriteConstDataToFile({}, FileLocation()); }), kEmpty);
  EXPECT_EQ(ThrownBy([] { FileReadingPath().Length(); }), not_open);
  FileReadingPath path(folder.At("file"));
  path.Close();
  EXPECT_EQ(ThrownBy([&] { path.Length(); }), not_open);
}

TEST(FileWriter, WritesInPlace) {
  TemporaryFolder folder;
  FileWritingPath path(folder.Write("file", "0123456789"));
  FileWriter writer;
  writer.Start(path, 2);
  writer << ConstData("ab") << ConstData("cd");
  EXPECT_EQ(folder.Read("file"), "01abcd6789");
  writer.Start(path, 12);
  writer << ConstData("z");
  EXPECT_EQ(folder.Read("file"), std::string("01abcd6789\0\0z", 13));
  path.SetLength(3);
  path.Flush();
  EXPECT_EQ(path.Length(), 3);
  path.Close();
  EXPECT_EQ(ThrownBy([&] { writer << ConstData("z"); }), Named<FileNotOpenError>());
  EXPECT_EQ(folder.Read("file"), "01a");
}

TEST(FileContent, IsReadWhole) {
  TemporaryFolder folder;
  std::string const long_text(300001, 'x');
  for (std::string const& content : {std::string(), std::string("a\0b", 3), long_text}) {
    EXPECT_EQ(ReadFileIntoString(folder.Write("file", content)), content);
  }
  // Such files tell a length of 0.
  EXPECT_FALSE(ReadFileIntoString(MakeFileLocation("/proc/self/status")).empty());
  EXPECT_EQ(ReadFileIntoUString(folder.Write("text", "\xC3\xA4")), "\xC3\xA4");
  EXPECT_THROW(ReadFileIntoUString(folder.Write("text", "\xFF")), CFStringCreateError);
}

TEST(FileContent, IsReplacedAndTheRestOfTheFileKept) {
  TemporaryFolder folder;
  FileLocation const file = folder.Write("file", "old and long");
  chmod(folder.Path("file").c_str(), 0640);
  constexpr char kFinder[] = "user.com.apple.FinderInfo", kInfo[33] = "TEXTttxt";
  bool const has_attributes = setxattr(file.POSIXPath().c_str(), kFinder, kInfo, 32, 0) == 0;
  fs::create_symlink("file", folder.Path("link"));
  WriteConstDataToFile(ConstData("new"), folder.At("link"));
  EXPECT_EQ(folder.Read("file"), "new");
  EXPECT_TRUE(fs::is_symlink(folder.Path("link")));
  EXPECT_EQ(fs::status(file.POSIXPath()).permissions(), fs::perms(0640));
  char info[33] = {};
  getxattr(file.POSIXPath().c_str(), kFinder, info, 32);
  EXPECT_STREQ(info, has_attributes ? kInfo : "");

  FileWritingPath path(file);
  WriteConstDataToFilePath(ConstData("newer"), path);
  EXPECT_EQ(path.Length(), 5);
  WriteUStringToFile(UStringRef<UTF8>(ConstData("newest")), path);
  EXPECT_EQ(folder.Read("file"), "newest");
  path.Close();
  EXPECT_EQ(ThrownBy([&] { WriteConstDataToFilePath({}, path); }), Named<FileNotOpenError>());

  umask(022);
  WriteUStringToFile(UStringRef<UTF8>(ConstData("first")), folder.At("created"));
  EXPECT_EQ(folder.Read("created"), "first");
  EXPECT_EQ(fs::status(folder.Path("created")).permissions(), fs::perms(0644));
  WriteConstDataToFile({}, folder.At("created"));
  EXPECT_EQ(folder.Read("created"), "");
  EXPECT_EQ(folder.Count(), 3);
}

// The writer is killed at a different moment each time, while it puts one content after the other.
TEST(FileContent, IsOldOrNewWhenTheWriterIsKilled) {
  constexpr std::size_t kSize = 3'000'000;
  int was_interrupted = 0;
  for (int round = 0; round < 30; ++round) {
    TemporaryFolder folder;
    FileLocation const file = folder.Write("file", std::string(kSize, 'a'));
    pid_t const writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
      for (char byte = 'b';; byte = byte == 'z' ? 'b' : static_cast<char>(byte + 1)) {
        WriteConstDataToFile(ConstData(std::string(kSize, byte)), file);
      }
    }
    usleep(2000 + 3000 * static_cast<unsigned>(round));
    kill(writer, SIGKILL);
    waitpid(writer, nullptr, 0);
    std::string const content = folder.Read("file");
    ASSERT_EQ(content.size(), kSize) << round;
    EXPECT_EQ(content.find_first_not_of(content[0]), std::string::npos) << round;
    if (folder.Count() > 1) ++was_interrupted;
  }
  // Else the moments were badly chosen.
  EXPECT_GT(was_interrupted, 0);
}

}  // namespace
