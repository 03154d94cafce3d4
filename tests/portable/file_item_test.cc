#include "portable/file_item.h"

#include <functional>
#include <set>

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
  FileItem item(folder.At());
  EXPECT_FALSE(item.TryToGet(missing));
  EXPECT_FALSE(item.IsValid());
  EXPECT_FALSE(FileItem().TryToGet());
  EXPECT_FALSE(MacFileInfo(missing.Platform()).IsValid());
  std::function<void()> const asking[] = {
      [&] { item.IsDirectory(); },    [&] { item.IsLocked(); },   [&] { item.Length(); },
      [&] { item.ResourceLength(); }, [&] { item.IsAlias(); },    [&] { item.IsInvisible(); },
      [&] { item.IsStationery(); },   [&] { item.Get(missing); }, [&] { FileItem{missing}; }};
  for (auto const& ask : asking) EXPECT_EQ(ThrownBy(ask), Named<FileItemError>());
}

std::set<std::string> NamesIn(FileLocation const& folder, char const* pattern) {
  std::set<std::string> names;
  FileLoop loop;
  for (loop.Start(folder.Platform(), pattern); !loop.IsDone(); ++loop) {
    EXPECT_TRUE(names.insert(loop->Name().MakeUTF8String()).second);
  }
  return names;
}

TEST(FileLoop, VisitsWhatMatches) {
  using Names = std::set<std::string>;
  TemporaryFolder folder;
  for (int i = 0; i < 11; ++i) folder.Write("files/" + std::to_string(i) + ".txt");
  folder.MakeFolder("files/sub");
  folder.Link("files/link", "nowhere");
  FileLocation const files = folder.At("files");
  EXPECT_EQ(NamesIn(files, nullptr).size(), 13u);
  EXPECT_EQ(NamesIn(files, "").size(), 13u);
  EXPECT_EQ(NamesIn(files, "*.txt").size(), 11u);
  EXPECT_EQ(NamesIn(files, "1?.txt"), Names{"10.txt"});
  EXPECT_EQ(NamesIn(files, "l*"), Names{"link"});
  EXPECT_EQ(NamesIn(folder.At("none"), nullptr), Names());
  EXPECT_EQ(NamesIn(FileLocation(), nullptr), Names());
  EXPECT_EQ(ThrownBy([&] { NamesIn(folder.At("files/1.txt"), nullptr); }), kNoFolder);
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
  EXPECT_EQ(ThrownBy([] { FileWriter::ThrowError(-34); }), Named<DiskFullError>(-34));
  EXPECT_EQ(ThrownBy([] { FileWriter::ThrowError(-39); }), Named<EndOfFileError>(-39));
}

}  // namespace
