#include <algorithm>
#include <cstring>
#include <utility>

#include "inspectors/files/volume.h"
#include "tests/inspectors/asking.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/on_scripted_machine.h"
#include "tests/support/real_function.h"
#include "tests/support/scripted_volumes.h"

namespace {

// What the calls below answer in place of the real ones.
struct Reply {
  OSErr code = noErr;
  SInt16 version = 0;
};
std::optional<Reply> scripted;
int volumes_read = 0;
bool is_holding_urls = false;
std::vector<CFURLRef> urls;  // that were handed out meanwhile, each held once more

}  // namespace

// In front of the real ones for the whole program.
OSErr FSGetVolumeInfo(FSVolumeRefNum volume, ItemCount index, FSVolumeRefNum* actual,
                      FSVolumeInfoBitmap fields, FSVolumeInfo* info, HFSUniStr255* name,
                      FSRef* root) {
  ++volumes_read;
  EXPECT_EQ(fields, kFSVolInfoGettableInfo);
  EXPECT_TRUE(volume == 0 || index == 0);
  if (scripted) return scripted->code;
  return RealFunction<decltype(FSGetVolumeInfo)>("FSGetVolumeInfo")(volume, index, actual, fields,
                                                                    info, name, root);
}

OSErr PBHGetVolParmsSync(HParmBlkPtr block) {
  char* const buffer = block->ioParam.ioBuffer;
  EXPECT_EQ(block->ioParam.ioReqCount, 32u);
  EXPECT_TRUE(std::all_of(buffer, buffer + 32, [](char byte) { return byte == 0; }));
  if (!scripted) return RealFunction<OSErr(HParmBlkPtr)>("PBHGetVolParmsSync")(block);
  std::memcpy(buffer, &scripted->version, sizeof scripted->version);
  return scripted->code;
}

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, FSRef const* ref) {
  CFURLRef const url =
      RealFunction<decltype(CFURLCreateFromFSRef)>("CFURLCreateFromFSRef")(allocator, ref);
  if (url != nullptr && is_holding_urls) urls.push_back(static_cast<CFURLRef>(CFRetain(url)));
  return url;
}

namespace {

using machine::VolumeFacts;

class Volumes : public OnScriptedMachine {
 protected:
  Volumes() { machine_->volumes = volumes_; }

  void Add(std::string const& name, VolumeFacts const& facts = {}) {
    std::uint64_t const number = volumes_->volumes.size() + 1;
    std::string const point = number == 1 ? "/" : "/" + std::to_string(number);
    volumes_->Add({name, point, number, number, {}}, facts);
  }
  // Name and number of each.
  template <typename... Name>
  static std::vector<std::string> Found(Name... name) {
    auto const show = [](VolumeLink const& volume) {
      return Shown(name_of(volume)) + Shown(volume.Info().VolumeRefNum());
    };
    return All(VolumeIterator(), show, name...);
  }
  static std::vector<std::string> Named(std::string const& name) {
    return Found(Bytes(name), name.size());
  }

  std::shared_ptr<ScriptedVolumes> volumes_ = std::make_shared<ScriptedVolumes>();
};

TEST_F(Volumes, ComeInOrderOrByNumberOrExactlyTheirName) {
  EXPECT_THAT(Found(), testing::IsEmpty());
  for (char const* name : {"A", "b", "A", "d\xFF"}) Add(name);
  EXPECT_THAT(Found(), testing::ElementsAre("A-100", "b-101", "A-102", "d\xFF-103"));
  EXPECT_THAT(Named("A"), testing::ElementsAre("A-100", "A-102"));
  EXPECT_THAT(Named("d\xFF"), testing::ElementsAre("d\xFF-103"));
  for (char const* name : {"a", "B", ""}) EXPECT_THAT(Named(name), testing::IsEmpty()) << name;
  EXPECT_EQ(Shown(name_of(volume_of_index(2))), "b");
  for (unsigned long long const index :
       {0ull, 5ull, 32767ull, 32768ull, 65537ull, 0x1'0000'0001ull}) {
    EXPECT_THROW(volume_of_index(index), NoSuchObject) << index;
  }
}

TEST_F(Volumes, RoundPercentagesDown) {
  struct {
    std::optional<std::uint64_t> total, free;
    std::string answers;
  } const rows[] = {{1000, 1, "0, 99, 1000, 999"},
                    {1000, 0, "0, 100, 1000, 1000"},
                    {3, 1, "33, 66, 3, 2"},
                    {0, 0, kNone + ", " + kNone + ", 0, 0"},
                    {{}, {}, kNone + ", " + kNone + ", " + kNone + ", " + kNone}};
  for (auto const& row : rows) {
    VolumeFacts facts;
    facts.total_bytes = row.total;
    facts.free_bytes = row.free;
    Add("A", facts);
    VolumeLink const volume = volume_of_index(volumes_->volumes.size());
    EXPECT_EQ(
        Answers({"free percent", "used percent", "total space", "used space"}, "volume", &volume),
        row.answers);
    EXPECT_EQ(Answer("size", "volume", &volume), Answer("total space", "volume", &volume));
  }
}

TEST_F(Volumes, AreTheSameWhateverIsToldOfThem) {
  VolumeFacts facts;
  facts.free_bytes = 4;
  facts.files = 7;
  facts.folders = 2;
  facts.flags = 128;
  for (int i = 0; i < 2; ++i) Add("A", facts);
  VolumeLink const before = volume_of_index(1);
  volumes_->facts.at("/").value().free_bytes = 1;
  VolumeLink const after = volume_of_index(1);
  EXPECT_TRUE(before == after);
  EXPECT_FALSE(before == volume_of_index(2));
  EXPECT_EQ(Answer("free space", "volume", &before), "4");
  EXPECT_EQ(
      Answers({"free space", "file count", "allocation block count", "directory count", "flag"},
              "volume", &after),
      "1, 7, 7, 2, 128");
}

TEST_F(Volumes, PlaceTheirSecondsOnTheLocalEpoch) {
  machine_->microseconds = 0;
  machine_->SetZone("TST", "TST-2");
  VolumeFacts facts;
  facts.created = machine::FileTime{1'000'000'000, 999'999'999};
  facts.modified = machine::FileTime{(std::int64_t{1} << 32) - 2'082'844'800, 0};
  Add("A", facts);
  VolumeLink const volume = volume_of_index(1);
  EXPECT_EQ(Answers({"init date", "modification time"}, "volume", &volume),
            "999992800000000, " + kNone);
  EXPECT_EQ(VolInfo::DateToSeconds({0, 0xFFFFFFFF, 0xFFFF}), 0xFFFFFFFF);
  EXPECT_THROW(VolInfo::DateToSeconds({1, 0, 0}), NoSuchObject);
  volumes_->facts.at("/").value().created = {};
  VolumeLink const undated = volume_of_index(1);
  EXPECT_EQ(Answer("init date", "volume", &undated), kNone);
}

TEST_F(Volumes, TellWhatTheCallsAnswer) {
  Add("A");
  VolumeLink const volume = volume_of_index(1);
  struct {
    Reply reply;
    std::string read, type;
  } const rows[] = {{{nsvErr, 2}, kNone, "DRIVE_FIXED"},
                    {{ioErr, 3}, "error -36", kNone},
                    {{ioErr, -1}, "error -36", "DRIVE_FIXED"},
                    {{memFullErr, 4}, "memory full -108", kNone},
                    {{noErr, 5}, "0", "DRIVE_FIXED"}};
  for (auto const& row : rows) {
    SCOPED_TRACE(row.reply.code);
    scripted = row.reply;
    EXPECT_EQ(Told([] { return VolInfo(ByRefNum, -100).VolumeRefNum(); }), row.read);
    EXPECT_EQ(Answer("type", "volume", &volume), row.type);
  }
  scripted.reset();
  volumes_->volumes.clear();
  EXPECT_EQ(Answer("type", "volume", &volume), "DRIVE_FIXED") << "though it is gone";
}

TEST(VolumesOfATree, AreThoseOfTheirFilesAndFolders) {
  RecordedTree const tree;
  tree.Write("/proc/self/mountinfo",
             "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n2 1 8:2 / /media/disk rw - vfat /dev/sdb1 rw\n");
  tree.Write("/etc/file", "");
  tree.Write("/media/disk/in/file", "");
  MachineInUse const use(tree.Machine());
  auto const folder_at = [](char const* path) {
    return MacintoshPlatform::posix_folder_of_world(path);
  };
  VolumeLink const root = volume_of_folder(folder_at("/etc")), disk = volume_of_index(2);
  EXPECT_EQ(Shown(name_of(root)), "System");
  EXPECT_TRUE(volume_of_folder(folder_at("/media/disk")) == disk);
  EXPECT_TRUE(volume_of_file(file_of(Name("file"), folder_at("/media/disk/in"))) == disk);
  EXPECT_EQ(disk.Path(), "/media/disk");
  EXPECT_TRUE(disk.Item().IsDirectory());
  // Nothing fills the cache, before or after it is cleared.
  for (int i = 0; i < 2; ++i) {
    volumes_read = 0;
    EXPECT_TRUE(volume_of_folder(root) == root);
    EXPECT_TRUE(volume_of_folder(disk) == disk);
    EXPECT_EQ(volumes_read, 2);
    Instant now;
    ClearVolCache(now, nullptr);
  }
}

TEST(VolumesOfATree, GiveBackTheURLsOfTheirFolders) {
  RecordedTree const tree;
  tree.Write("/proc/self/mountinfo",
             "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n2 1 8:2 / /gone rw - vfat /dev/sdb1 rw\n");
  MachineInUse const use(tree.Machine());
  is_holding_urls = true;
  {
    VolumeLink const first = volume_of_index(1), copy = first, gone = volume_of_index(2);
    EXPECT_TRUE(volume_of_folder(copy) == first);
    EXPECT_THROW(volume_of_folder(gone), NoSuchObject);
  }
  is_holding_urls = false;
  EXPECT_EQ(urls.size(), 2u);
  for (CFURLRef const url : std::exchange(urls, {})) {
    EXPECT_EQ(CFGetRetainCount(url), 1);
    CFRelease(url);
  }
}

}  // namespace
