#include <CoreServices/CoreServices.h>

#include <cstring>

#include "tests/support/on_scripted_machine.h"
#include "tests/support/scripted_volumes.h"

namespace {

using machine::Absence;
using machine::ItemStatus;
using machine::Outcome;
using machine::VolumeFacts;

// Folders by path, each with its mount and device.
class ScriptedFiles final : public machine::FileSource {
 public:
  machine::Fact<ItemStatus> Status(std::string const& path, machine::Links) const override {
    auto const found = items.find(path);
    if (found == items.end()) return Absence{Outcome::kAbsent, path, {}, ENOENT};
    return found->second;
  }
  machine::Fact<std::string> CanonicalFolder(std::string const& path) const override {
    return path;
  }
  void Put(std::string const& path, std::uint64_t mount, std::uint64_t device) {
    ItemStatus& status = items[path];
    status.kind = machine::ItemKind::kFolder;
    status.mount = mount;
    status.device = device;
    status.inode = items.size();
  }
  std::map<std::string, ItemStatus> items;
};

class VolumesTest : public OnScriptedMachine {
 protected:
  VolumesTest() {
    machine_->files = files_;
    machine_->volumes = volumes_;
  }

  // The name and the number of a volume, or the code.
  static std::string Find(FSVolumeRefNum volume, ItemCount index) {
    HFSUniStr255 name;
    FSVolumeRefNum number = 0;
    OSErr const code = FSGetVolumeInfo(volume, index, &number, 0, nullptr, &name, nullptr);
    if (code != noErr) return std::to_string(code);
    return std::string(name.unicode, name.unicode + name.length) + " " + std::to_string(number);
  }
  static std::string At(ItemCount index) { return Find(0, index); }
  static std::string WithNumber(FSVolumeRefNum number) { return Find(number, 0); }
  void AddTwo() {
    volumes_->Add({"Root", "/", 7, 1, {20}}, VolumeFacts());
    volumes_->Add({"B", "/b", 8, 2, {}}, VolumeFacts());
  }

  // Where the File Manager says that an item is.
  static FSVolumeRefNum NumberOf(std::string const& path) {
    FSRef ref;
    FSCatalogInfo info = {};
    auto const* bytes = reinterpret_cast<UInt8 const*>(path.c_str());
    EXPECT_EQ(FSPathMakeRef(bytes, &ref, nullptr), noErr) << path;
    EXPECT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoVolume, &info, nullptr, nullptr, nullptr), noErr);
    return info.volume;
  }

  std::shared_ptr<ScriptedFiles> files_ = std::make_shared<ScriptedFiles>();
  std::shared_ptr<ScriptedVolumes> volumes_ = std::make_shared<ScriptedVolumes>();
};

TEST_F(VolumesTest, AreFoundByPlaceAndByNumber) {
  AddTwo();
  EXPECT_EQ(At(1), "Root -100");
  EXPECT_EQ(At(2), "B -101");
  for (ItemCount const index : {SIZE_MAX, 0ul, 3ul}) EXPECT_EQ(At(index), "-35") << index;
  EXPECT_EQ(Find(-101, 1), "Root -100");
  EXPECT_EQ(WithNumber(-101), "B -101");
  for (FSVolumeRefNum const number : {0, 1, -99, -102, -32768, 32767}) {
    EXPECT_EQ(WithNumber(number), "-35") << number;
  }
}

TEST_F(VolumesTest, ThatTellNothingAreListedAllTheSame) {
  std::tuple<char const*, Outcome, int, char const*, char const*> const rows[] = {
      {"silent", Outcome::kTimedOut, 0, "A -100", "A -100"},
      {"closed", Outcome::kPermissionRefused, EACCES, "A -100", "A -100"},
      {"without server", Outcome::kAbsent, ENOTCONN, "A -100", "A -100"},
      {"stale", Outcome::kAbsent, ESTALE, "A -100", "A -100"},
      {"broken", Outcome::kMalformed, EIO, "A -100", "A -100"},
      {"just gone", Outcome::kAbsent, ENOENT, "A -100", "-35"},
      {"covered", Outcome::kAbsent, 0, "A -100", "-35"},
      {"nonsense", Outcome::kMalformed, 0, "-36", "-36"},
      {"too many files", Outcome::kAbsent, EMFILE, "-42", "-42"},
  };
  volumes_->Add({"A", "/", 7, 1, {}}, VolumeFacts());
  for (auto const& [what, reason, error, at, with_number] : rows) {
    volumes_->facts.at("/") = Absence{reason, "/", {}, error};
    EXPECT_EQ(At(1), at) << what;
    EXPECT_EQ(WithNumber(-100), with_number) << what;
  }
}

TEST_F(VolumesTest, NumbersStayWithTheirMounts) {
  AddTwo();
  EXPECT_EQ(At(2), "B -101");
  auto const away = volumes_->volumes.back();
  volumes_->volumes.back() = {"C", "/c", 8, 3, {}};
  volumes_->facts.emplace("/c", VolumeFacts());
  EXPECT_EQ(At(2), "C -102");
  EXPECT_EQ(WithNumber(-101), "-35");
  volumes_->volumes.push_back(away);
  EXPECT_EQ(At(3), "B -101");
  EXPECT_EQ(WithNumber(-101), "B -101");
  // Moved elsewhere, a mount is still the same.
  volumes_->volumes.back().mount_point = "/moved";
  volumes_->facts.emplace("/moved", VolumeFacts());
  EXPECT_EQ(At(3), "B -101");
}

TEST_F(VolumesTest, OfItemsAreFoundByMountOrDevice) {
  AddTwo();
  volumes_->facts.emplace("/proc", VolumeFacts());
  // With mount and device.
  std::tuple<char const*, int, int, FSVolumeRefNum> const rows[] = {
      {"/", 7, 1, -100},        {"/b", 8, 2, -101},       {"/b/in", 8, 2, -101},
      {"/b/part", 8, 50, -101}, {"/again", 20, 9, -100},  {"/bound", 21, 2, -101},
      {"/proc", 22, 5, -102},   {"/proc/1", 22, 5, -102},
  };
  for (auto const& [path, mount, device, number] : rows) files_->Put(path, mount, device);
  for (auto const& [path, mount, device, number] : rows) EXPECT_EQ(NumberOf(path), number) << path;
  EXPECT_EQ(WithNumber(-102), "proc -102");
  EXPECT_EQ(At(3), "-35");
  volumes_->facts.erase("/proc");
  EXPECT_EQ(WithNumber(-102), "-35");
}

TEST_F(VolumesTest, OfItemsAreFoundByPathWhereMountsAreNotTold) {
  volumes_->Add({"Root", "/", 0, 0, {}}, VolumeFacts());
  volumes_->Add({"B", "/b", 0, 0, {}}, VolumeFacts());
  for (char const* path : {"/", "/b", "/b/in", "/bc"}) files_->Put(path, 3, 4);
  for (char const* path : {"/", "/bc"}) EXPECT_EQ(NumberOf(path), -100) << path;
  for (char const* path : {"/b", "/b/in"}) EXPECT_EQ(NumberOf(path), -101) << path;
}

TEST_F(VolumesTest, WithoutAListItemsLieOnTheRootAllTheSame) {
  machine_->volumes = nullptr;
  for (char const* path : {"/", "/b"}) files_->Put(path, 3, 4);
  EXPECT_EQ(NumberOf("/b"), -100);
  EXPECT_EQ(At(1), "-35");
  EXPECT_EQ(WithNumber(-100), "-35");
}

TEST_F(VolumesTest, TellWhatTheBitmapNames) {
  VolumeFacts facts;
  facts.total_bytes = 10'000;
  facts.free_bytes = 4'999;
  facts.block_bytes = 1000;
  facts.files = std::uint64_t{1} << 40;
  facts.folders = 3;
  facts.created = machine::FileTime{-2'082'844'800 + 5, 500'000'000};
  facts.modified = machine::FileTime{std::int64_t{1} << 32, 0};
  facts.flags = machine::kVolumeIsReadOnly;
  volumes_->Add({"caf\xC3\xA9\xFF", "/", 7, 1, {}}, facts);
  auto const ask = [](FSVolumeInfoBitmap fields) {
    FSVolumeInfo info;
    std::memset(static_cast<void*>(&info), 0xA5, sizeof info);
    EXPECT_EQ(FSGetVolumeInfo(0, 1, nullptr, fields, &info, nullptr, nullptr), noErr);
    return info;
  };
  FSVolumeInfo const all = ask(kFSVolInfoGettableInfo);
  EXPECT_THAT((std::vector<UInt64>{all.totalBytes, all.freeBytes, all.totalBlocks, all.freeBlocks,
                                   all.fileCount, all.folderCount, all.createDate.lowSeconds,
                                   all.createDate.fraction, all.modifiedDate.highSeconds}),
              testing::ElementsAre(10'000, 4'999, 10, 4, 0xFFFFFFFF, 3, 5, 0x8000, 1));
  EXPECT_EQ(all.flags, kFSVolFlagHardwareLockedMask);
  EXPECT_EQ(ask(kFSVolInfoSizes).freeBytes, 4'999u);
  EXPECT_EQ(ask(kFSVolInfoGettableInfo & ~kFSVolInfoSizes).freeBytes, 0u);
  EXPECT_EQ(ask(kFSVolInfoGettableInfo & ~kFSVolInfoFlags).flags, 0u);

  HFSUniStr255 name;
  ASSERT_EQ(FSGetVolumeInfo(0, 1, nullptr, 0, nullptr, &name, nullptr), noErr);
  EXPECT_EQ(std::u16string(name.unicode, name.unicode + name.length), u"caf\u00E9\xDCFF");
}

TEST_F(VolumesTest, HaveTheirFolderAsItWasSeen) {
  VolumeFacts seen;
  files_->Put("/", 7, 1);
  files_->Put("/a/b", 8, 2);
  seen.root = files_->items.at("/a/b");
  volumes_->Add({"Root", "/", 7, 1, {}}, VolumeFacts());
  volumes_->Add({"B", "/a/b", 8, 2, {}}, seen);
  volumes_->Add({"Gone", "/gone", 9, 3, {}}, VolumeFacts());
  FSRef roots[4], looked_up;
  for (ItemCount const index : {1, 2, 3}) {
    ASSERT_EQ(FSGetVolumeInfo(0, index, nullptr, 0, nullptr, nullptr, &roots[index]), noErr);
  }
  EXPECT_EQ(roots[1].folder, fsRtParID);
  FSPathMakeRef(reinterpret_cast<UInt8 const*>("/a/b"), &looked_up, nullptr);
  EXPECT_EQ(std::memcmp(&roots[2], &looked_up, sizeof looked_up), 0);
  EXPECT_EQ(FSGetCatalogInfo(&roots[3], 0, nullptr, nullptr, nullptr, nullptr), fnfErr);
}

TEST_F(VolumesTest, FillNoMoreOfABufferThanWasAskedFor) {
  volumes_->Add({"Root", "/", 7, 1, {}}, VolumeFacts());
  GetVolParmsInfoBuffer buffer;
  auto const ask = [&buffer](FSVolumeRefNum volume, ByteCount size) {
    std::memset(&buffer, 0xFF, sizeof buffer);
    HParamBlockRec block = {};
    block.ioParam = {0, nullptr, volume, reinterpret_cast<char*>(&buffer), size, 99};
    OSErr const code = PBHGetVolParmsSync(&block);
    EXPECT_EQ(code, block.ioParam.ioResult);
    return std::pair(code, block.ioParam.ioActCount);
  };
  EXPECT_EQ(ask(-100, sizeof buffer), std::pair(OSErr{noErr}, ByteCount{20}));
  EXPECT_EQ(buffer.vMVersion, 2);
  EXPECT_EQ(buffer.vMForeignPrivID, 0);
  EXPECT_EQ(SInt32{buffer.vMExtendedAttributes}, -1);
  EXPECT_EQ(ask(-100, 2).second, 2u);
  EXPECT_EQ(SInt32{buffer.vMAttrib}, -1);
  EXPECT_EQ(ask(-200, sizeof buffer), std::pair(OSErr{nsvErr}, ByteCount{0}));
  EXPECT_EQ(buffer.vMVersion, -1);
  EXPECT_EQ(PBHGetVolParmsSync(nullptr), paramErr);
}

}  // namespace
