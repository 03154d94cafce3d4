#include "portable/file_item.h"

#include "portable/crc32.h"
#include "portable/file_operations.h"
#include "portable/macintosh/file_loop.h"
#include "portable/macintosh/file_reader.h"
#include "portable/macintosh/file_writer.h"
#include "tests/portable/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using MacintoshPlatform::FileLoop;
using MacintoshPlatform::FileReader;
using MacintoshPlatform::FileReadingPath;
using MacintoshPlatform::FileWriter;
using MacintoshPlatform::MacFileInfo;

TEST(Crc32, IsTheCheckOfTheStandardHoweverItIsCut) {
  // The check value of the catalogue of such sums.
  std::string const text = "123456789";
  for (std::size_t cut = 0; cut <= text.size(); ++cut) {
    Crc32 sum;
    sum.Add(ConstData(text.data(), cut));
    sum.Add(ConstData(text.data() + cut, text.size() - cut));
    EXPECT_EQ(sum.Value(), 0xCBF43926u) << cut;
  }
  EXPECT_EQ(Crc32().Value(), 0u);
}

TEST(FileItem, IsASnapshot) {
  TemporaryFolder folder;
  FileLocation const file = folder.Write("a.txt", "hello");
  FileItem item(file);
  EXPECT_FALSE(item.IsDirectory());
  EXPECT_FALSE(item.IsLocked());
  EXPECT_EQ(item.Length(), 5u);
  EXPECT_EQ(item.ResourceLength(), 0u);
  EXPECT_EQ(item.Name().MakeUTF8String(), "a.txt");
  EXPECT_EQ(item.Location().POSIXPath(), folder.Path("a.txt"));
  EXPECT_EQ(item.Checksum(), 0x3610A686u);
  EXPECT_EQ(item.VolumeRefNum(), FileItem(folder.At()).VolumeRefNum());

  folder.Write("a.txt", "hello world");
  EXPECT_EQ(item.Length(), 5u);
  EXPECT_TRUE(item.TryToGet());
  EXPECT_EQ(item.Length(), 11u);
  EXPECT_TRUE(FileItem(folder.At()).IsDirectory());
  fs::create_symlink(folder.Path(), folder.Path("link"));
  EXPECT_FALSE(FileItem(folder.At("link")).IsDirectory());
}

TEST(FileItem, ThrowsOnlyWhereTheItemIsNeeded) {
  TemporaryFolder folder;
  FileLocation const missing = folder.At("none");
  std::string const error = Named<FileItemError>();
  FileItem item(folder.At());
  EXPECT_FALSE(item.TryToGet(missing));
  EXPECT_FALSE(item.IsValid());
  EXPECT_FALSE(FileItem().TryToGet());
  EXPECT_FALSE(MacFileInfo(missing.Platform()).IsValid());
  EXPECT_EQ(ThrownBy([&] { item.IsDirectory(); }), error);
  EXPECT_EQ(ThrownBy([&] { item.IsLocked(); }), error);
  EXPECT_EQ(ThrownBy([&] { item.Length(); }), error);
  EXPECT_EQ(ThrownBy([&] { item.ResourceLength(); }), error);
  EXPECT_EQ(ThrownBy([&] { item.IsAlias(); }), error);
  EXPECT_EQ(ThrownBy([&] { item.IsInvisible(); }), error);
  EXPECT_EQ(ThrownBy([&] { item.IsStationery(); }), error);
  EXPECT_EQ(ThrownBy([&] { item.Get(missing); }), error);
  EXPECT_EQ(ThrownBy([&] { FileItem{missing}; }), error);
}

std::string NamesIn(FileLocation const& folder, char const* pattern) {
  std::string names;
  FileLoop loop;
  for (loop.Start(folder.Platform(), pattern); !loop.IsDone(); ++loop) {
    names += loop->Name().MakeUTF8String() + " ";
  }
  return names;
}

TEST(FileLoop, VisitsWhatMatches) {
  TemporaryFolder folder;
  for (int i = 0; i < 11; ++i) folder.Write("files/" + std::to_string(i) + ".txt");
  fs::create_directory(folder.Path("files/sub"));
  fs::create_symlink("nowhere", folder.Path("files/link"));
  FileLocation const files = folder.At("files");
  auto const count = [&](char const* pattern) {
    std::string const names = NamesIn(files, pattern);
    return std::count(names.begin(), names.end(), ' ');
  };
  EXPECT_EQ(count(nullptr), 13);
  EXPECT_EQ(count(""), 13);
  EXPECT_EQ(count("*.txt"), 11);
  EXPECT_EQ(NamesIn(files, "1?.txt"), "10.txt ");
  EXPECT_EQ(NamesIn(files, "l*"), "link ");
  EXPECT_EQ(NamesIn(folder.At("none"), nullptr), "");
  EXPECT_EQ(NamesIn(FileLocation(), nullptr), "");
  EXPECT_EQ(ThrownBy([&] { NamesIn(folder.At("files/1.txt"), nullptr); }),
            Named<MacintoshPlatform::FileLoopFailed>(-1407));
}

TEST(FileLoop, SkipsWhatVanished) {
  TemporaryFolder folder;
  for (char const* name : {"a", "b", "c"}) folder.Write(name);
  FileLoop loop;
  loop.Start(folder.At().Platform());
  ASSERT_FALSE(loop.IsDone());
  for (char const* name : {"a", "b", "c"}) fs::remove(folder.Path(name));
  EXPECT_TRUE((++loop).IsDone());
}

TEST(FileErrors, AreThoseOfTheirPointOfFailure) {
  EXPECT_EQ(ThrownBy([] { MacFileInfo::ThrowError(-44); }), Named<HardwareVolumeLockError>(-44));
  EXPECT_EQ(ThrownBy([] { FileReadingPath::ThrowError(-49); }), Named<FileBusyError>(-49));
  EXPECT_EQ(ThrownBy([] { FileReader::ThrowError(-34); }), Named<FileIOError>(-34));
  EXPECT_EQ(ThrownBy([] { FileReader::ThrowError(-39); }), Named<EndOfFileError>(-39));
  EXPECT_EQ(ThrownBy([] { FileWriter::ThrowError(-34); }), Named<DiskFullError>(-34));
  EXPECT_EQ(ThrownBy([] { FileWriter::ThrowError(-39); }), Named<EndOfFileError>(-39));
}

}  // namespace
