#include <BSD/BSD.h>
#include <CoreServices/CoreServices.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "frameworks/CoreFoundation/file_system_text.h"
#include "frameworks/CoreServices/file_names.h"
#include "tests/machine/apple_double_text.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/on_scripted_machine.h"

namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

// A folder of the running machine, and the calls in short.
class FilesTest : public testing::Test {
 protected:
  FSRef Ref(std::string const& path) { return RefOf(tree_.At(path)); }
  static FSRef RefOf(std::string const& path) {
    FSRef ref = {};
    EXPECT_EQ(PathCode(path, &ref), noErr) << path;
    return ref;
  }
  static OSStatus PathCode(std::string const& path, FSRef* ref) {
    return FSPathMakeRef(reinterpret_cast<UInt8 const*>(path.c_str()), ref, nullptr);
  }
  static std::string PathOf(FSRef const& ref) {
    UInt8 path[4096] = "";
    FSRefMakePath(&ref, path, sizeof path);
    return reinterpret_cast<char*>(path);
  }
  static FSCatalogInfo Info(FSRef const& ref) {
    FSCatalogInfo info = {};
    EXPECT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoGettableInfo, &info, nullptr, nullptr, nullptr),
              noErr);
    return info;
  }
  static OSErr CodeOf(FSRef const& ref) {
    return FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr);
  }
  static OSErr Copy(FSRef const& ref, FSRef const& to, char const* name, FSRef* made = nullptr) {
    HFSUniStr255 const text = UnicodeName(name);
    return FSCopyObject(&ref, &to, text.length, text.unicode, made);
  }
  static OSErr Move(FSRef const& ref, FSRef const& to, char const* name, FSRef* moved = nullptr) {
    HFSUniStr255 const text = UnicodeName(name);
    return FSMoveRenameObjectUnicode(&ref, &to, text.length, text.unicode, 0, moved);
  }
  static OSErr Child(FSRef const& parent, char const* name, FSRef* child) {
    HFSUniStr255 const text = UnicodeName(name);
    return FSMakeFSRefUnicode(&parent, text.length, text.unicode, 0, child);
  }
  static OSErr CreateFile(FSRef const& parent, char const* name, FSRef* made = nullptr) {
    HFSUniStr255 const text = UnicodeName(name);
    return FSCreateFileUnicode(&parent, text.length, text.unicode, 0, nullptr, made, nullptr);
  }
  static OSErr Open(FSRef const& ref, SInt8 permission, FSIORefNum* fork, bool resource = false) {
    HFSUniStr255 name;
    (resource ? FSGetResourceForkName : FSGetDataForkName)(&name);
    return FSOpenFork(&ref, name.length, name.unicode, permission, fork);
  }
  static std::string Content(FSRef const& ref, bool resource = false) {
    FSIORefNum fork = 0;
    char text[64];
    ByteCount count = 0;
    EXPECT_EQ(Open(ref, fsRdPerm, &fork, resource), noErr);
    EXPECT_EQ(FSReadFork(fork, fsAtMark, 0, sizeof text, text, &count), eofErr);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    return std::string(text, count);
  }
  static std::vector<std::string> Names(FSRef const& folder) {
    FSIterator iterator = nullptr;
    EXPECT_EQ(FSOpenIterator(&folder, kFSIterateFlat, &iterator), noErr);
    std::vector<std::string> names;
    FSRef refs[2];
    ItemCount count = 0;
    while (FSGetCatalogInfoBulk(iterator, 2, &count, nullptr, 0, nullptr, refs, nullptr, nullptr) ==
           noErr) {
      for (ItemCount i = 0; i < count; ++i) names.emplace_back(refs[i].name);
    }
    EXPECT_EQ(FSCloseIterator(iterator), noErr);
    EXPECT_EQ(FSCloseIterator(iterator), errFSIteratorNotFound);
    return names;
  }

  RecordedTree tree_;
  MachineInUse use_{machine::MakeLiveMachine()};
};

TEST(FileNames, SurviveTheRoundTripWhateverTheirBytes) {
  std::pair<std::string, std::u16string> const cases[] = {
      {"a:b", u"a:b"},
      {"é€😀", u"é€😀"},
      {"\x80z", u"\xDC80z"},
      {"\xe2\x82", u"\xDCE2\xDC82"},
      {"\xc0\xaf", u"\xDCC0\xDCAF"},
      {"\xed\xb3\xbf", u"\xDCED\xDCB3\xDCBF"},
      {"\xf0\x8f\xbf\xbf", u"\xDCF0\xDC8F\xDCBF\xDCBF"},
      {"\xf0\x9f\x98\x80\x80", u"😀\xDC80"},
      {"\xf4\x90\x80\x80", u"\xDCF4\xDC90\xDC80\xDC80"},
      {std::string(255, 'n'), std::u16string(255, u'n')},
  };
  for (auto const& [bytes, units] : cases) {
    HFSUniStr255 const name = UnicodeName(bytes);
    EXPECT_EQ(std::u16string(name.unicode, name.unicode + name.length), units);
    EXPECT_EQ(NameOnDisk(name.unicode, name.length), bytes);
  }
  using Units = std::vector<UniChar>;
  for (Units const& units :
       {Units{}, Units{'.'}, Units{'.', '.'}, Units{'a', '/', 'b'}, Units{0}, Units{0xD83D},
        Units{0xD83D, 'x'}, Units{0xDC41}, Units(128, 0xE9), Units(256, 'n')}) {
    EXPECT_EQ(NameOnDisk(units.data(), units.size()), std::nullopt);
  }
  UniChar const half = 0xD800;
  EXPECT_EQ(file_system_text::BytesOf(&half, 1), "\xED\xA0\x80");
}

TEST_F(FilesTest, ReferencesLeadBackToPathsWithoutLinks) {
  tree_.Write("/folder/\xff", "12");
  tree_.Link("/link", "folder");
  tree_.Link("/folder/to-file", tree_.At("/link/\xff"));
  FSRef const file = Ref("/folder/\xff");
  for (char const* spelling :
       {"/link/\xff", "/folder/../link/./\xff", "/link/to-file", "//folder//\xff"}) {
    FSRef const same = Ref(spelling);
    EXPECT_EQ(FSCompareFSRefs(&file, &same), noErr) << spelling;
    EXPECT_EQ(PathOf(same), tree_.At("/folder/\xff")) << spelling;
  }
  FSRef child, parent, root_parent;
  EXPECT_EQ(Child(Ref("/folder"), "\xff", &child), noErr);
  EXPECT_EQ(FSCompareFSRefs(&file, &child), noErr);
  FSSpec fs_spec;
  ASSERT_EQ(FSGetCatalogInfo(&file, 0, nullptr, nullptr, &fs_spec, &parent), noErr);
  EXPECT_EQ(PathOf(parent), tree_.At("/folder"));
  EXPECT_EQ(fs_spec.parID, Info(parent).nodeID);
  FSRef const root = RefOf("/");
  EXPECT_EQ(PathOf(root), "/");
  ASSERT_EQ(FSGetCatalogInfo(&root, 0, nullptr, nullptr, nullptr, &root_parent), noErr);
  EXPECT_EQ(CodeOf(root_parent), fnfErr);
  UInt8 small[4];
  EXPECT_EQ(FSRefMakePath(&file, small, sizeof small), bdNamErr);
}

TEST_F(FilesTest, CatalogInformationIsTheKernels) {
  tree_.Write("/file", "12345");
  struct stat status;
  ASSERT_EQ(::chmod(tree_.At("/file").c_str(), 0444), 0);
  timespec const times[] = {{86400, 0}, {-2'082'844'800 + 5, 500'000'000}};
  ASSERT_EQ(::utimensat(AT_FDCWD, tree_.At("/file").c_str(), times, 0), 0);
  ASSERT_EQ(::stat(tree_.At("/file").c_str(), &status), 0);
  FSCatalogInfo const info = Info(Ref("/file"));
  EXPECT_EQ(info.nodeFlags, kFSNodeLockedMask);
  EXPECT_EQ(info.dataLogicalSize, 5u);
  EXPECT_EQ(info.dataPhysicalSize, static_cast<UInt64>(status.st_blocks) * 512);
  EXPECT_EQ(info.permissions.mode, status.st_mode);
  EXPECT_EQ(info.accessDate.lowSeconds, 2'082'844'800u + 86400);
  EXPECT_EQ(info.contentModDate.lowSeconds, 5u);
  EXPECT_EQ(info.contentModDate.fraction, 0x8000);
  EXPECT_EQ(info.parentDirID, Info(Ref("/")).nodeID);
  FSCatalogInfo const folder = Info(Ref("/"));
  EXPECT_EQ(folder.nodeFlags, kFSNodeIsDirectoryMask);
  EXPECT_EQ(folder.valence, 1u);
  EXPECT_EQ(folder.dataLogicalSize, 0u);
  EXPECT_EQ(Info(RefOf("/")).volume, -100);
  EXPECT_NE(Info(RefOf("/proc")).volume, -100);
}

TEST_F(FilesTest, FinderInformationGoesWithItsItem) {
  std::string const disk = std::string("APPLMACS\x40\x00\0\0\0\0\0\0", 16) + std::string(16, '\0');
  tree_.Write("/from/item", "data");
  tree_.Write("/from/._item", AppleDoubleText({{9, disk}, {2, "resource"}}));
  auto const check = [&](FSRef const& ref, char const* what) {
    FSCatalogInfo const info = Info(ref);
    FileInfo finder;
    std::memcpy(&finder, info.finderInfo, sizeof finder);
    EXPECT_EQ(finder.fileType, 0x4150504Cu) << what;
    EXPECT_EQ(finder.finderFlags, kIsInvisible) << what;
    EXPECT_EQ(info.rsrcLogicalSize, 8u) << what;
    EXPECT_EQ(Content(ref, true), "resource") << what;
  };
  check(Ref("/from/item"), "companion");
  EXPECT_THAT(Names(Ref("/from")), ElementsAre("item"));
  ASSERT_EQ(Copy(Ref("/from"), Ref("/"), "to"), noErr);
  check(Ref("/to/item"), "copied");
  FSRef moved;
  ASSERT_EQ(Move(Ref("/to/item"), Ref("/"), "new", &moved), noErr);
  check(moved, "moved");
  EXPECT_THAT(Names(Ref("/to")), ElementsAre());
  ASSERT_EQ(FSDeleteObject(&moved), noErr);
  EXPECT_FALSE(std::filesystem::exists(tree_.At("/._new")));

  FSRef item = Ref("/from/item");
  FSCatalogInfo info = Info(item);
  FileInfo finder = {0x54455854, 0x74747874, kIsStationery, {3, 4}, 0};
  std::memcpy(info.finderInfo, &finder, sizeof finder);
  if (FSSetCatalogInfo(&item, kFSCatInfoFinderInfo, &info) != noErr) GTEST_SKIP();
  tree_.Write("/from/fresh", "fresh");
  FSRef const fresh = Ref("/from/fresh");
  ASSERT_EQ(FSReplaceObject(&item, &fresh, nullptr, nullptr, nullptr, 0, &moved), noErr);
  EXPECT_EQ(std::memcmp(Info(moved).finderInfo, &finder, sizeof finder), 0);
  EXPECT_EQ(Content(moved), "fresh");
  EXPECT_EQ(Content(moved, true), "resource");
  EXPECT_EQ(CodeOf(item), fnfErr);
}

TEST_F(FilesTest, LockingTakesTheRightToWrite) {
  tree_.Write("/file", "data");
  FSRef const file = Ref("/file"), folder = Ref("/");
  FSCatalogInfo info = {};
  info.nodeFlags = kFSNodeLockedMask;
  ASSERT_EQ(FSSetCatalogInfo(&file, kFSCatInfoNodeFlags, &info), noErr);
  EXPECT_EQ(Info(file).permissions.mode & 0777, 0444);
  FSIORefNum fork;
  EXPECT_EQ(Open(file, fsRdWrPerm, &fork), permErr);
  if (FSSetCatalogInfo(&folder, kFSCatInfoNodeFlags, &info) != noErr) return;  // not our right
  EXPECT_EQ(Info(folder).nodeFlags, kFSNodeLockedMask | kFSNodeIsDirectoryMask);
  EXPECT_NE(FSDeleteObject(&file), noErr);
  info.nodeFlags = 0;
  EXPECT_EQ(FSSetCatalogInfo(&folder, kFSCatInfoNodeFlags, &info), noErr);
  EXPECT_EQ(FSDeleteObject(&file), noErr);
}

TEST_F(FilesTest, WholeFoldersAreCopiedAndMoved) {
  tree_.Write("/a/b/file", "data");
  tree_.Link("/a/b/link", "../../outside");
  ASSERT_EQ(::chmod(tree_.At("/a/b").c_str(), 0555), 0);
  FSRef const inner = Ref("/a/b/file");
  FSRef copy;
  ASSERT_EQ(Copy(Ref("/a"), Ref("/"), "copy", &copy), noErr);
  EXPECT_EQ(Info(Ref("/copy/b")).permissions.mode & 0777, 0555);
  EXPECT_THAT(Names(Ref("/copy/b")), UnorderedElementsAre("file", "link"));
  EXPECT_EQ(Move(Ref("/a"), Ref("/a/b"), "x"), badMovErr);
  EXPECT_EQ(Copy(Ref("/a"), Ref("/a"), "x"), badMovErr);
  EXPECT_EQ(Move(Ref("/a"), copy, "moved"), noErr);
  EXPECT_EQ(PathOf(inner), tree_.At("/copy/moved/b/file"));
  EXPECT_EQ(Content(inner), "data");
}

TEST_F(FilesTest, EachFailureHasItsCode) {
  tree_.Write("/file", "data");
  tree_.Write("/full/item", "");
  FSRef const top = Ref("/"), file = Ref("/file"), full = Ref("/full"), item = Ref("/full/item");
  FSRef ref;
  FSIORefNum fork;
  FSIterator iterator;
  EXPECT_EQ(PathCode(tree_.At("/none"), &ref), fnfErr);
  for (auto path : {"/none/x", "/file/x"}) EXPECT_EQ(PathCode(tree_.At(path), &ref), dirNFErr);
  EXPECT_EQ(PathCode(tree_.At("/" + std::string(256, 'n')), &ref), bdNamErr);
  EXPECT_EQ(PathCode("relative", &ref), paramErr);
  EXPECT_EQ(Child(top, "none", &ref), fnfErr);
  EXPECT_EQ(Child(top, "..", &ref), bdNamErr);
  EXPECT_EQ(Child(file, "x", &ref), errFSNotAFolder);
  EXPECT_EQ(FSOpenIterator(&file, kFSIterateFlat, &iterator), errFSNotAFolder);
  EXPECT_EQ(Open(top, fsRdPerm, &fork), notAFileErr);
  EXPECT_EQ(FSOpenFork(&file, 1, UnicodeName("x").unicode, fsRdPerm, &fork), errFSBadForkName);
  EXPECT_EQ(Copy(item, full, "item"), dupFNErr);
  EXPECT_EQ(Move(file, RefOf("/proc"), "x"), diffVolErr);
  std::filesystem::rename(tree_.At("/full/item"), tree_.At("/file"));
  for (FSRef const& gone : {file, item, FSRef{}}) EXPECT_EQ(CodeOf(gone), fnfErr);
  EXPECT_EQ(FSDeleteObject(&full), noErr);
  EXPECT_EQ(CodeOf(item), dirNFErr);
  EXPECT_EQ(FSCloseFork(1234), rfNumErr);
}

TEST_F(FilesTest, ForksAreReadAndWritten) {
  FSRef file;
  ASSERT_EQ(CreateFile(Ref("/"), "file", &file), noErr);
  FSIORefNum fork = 0;
  ASSERT_EQ(Open(file, fsCurPerm, &fork), noErr);
  ByteCount count = 0;
  SInt64 number = 0;
  char text[8];
  EXPECT_EQ(FSWriteFork(fork, fsAtMark, 0, 6, "012345", &count), noErr);
  EXPECT_EQ(FSReadFork(fork, fsFromLEOF, -2, 2, text, &count), noErr);
  EXPECT_EQ(std::string(text, count), "45");
  EXPECT_EQ(FSReadFork(fork, fsFromMark, -99, 1, text, &count), posErr);
  EXPECT_EQ(FSSetForkSize(fork, fsFromStart, 3), noErr);
  EXPECT_EQ(FSGetForkPosition(fork, &number), noErr);
  EXPECT_EQ(number, 3);
  EXPECT_EQ(FSCloseFork(fork), noErr);
  ASSERT_EQ(Open(file, fsRdPerm, &fork), noErr);
  EXPECT_EQ(FSWriteFork(fork, fsAtMark, 0, 1, "x", &count), wrPermErr);
  EXPECT_EQ(FSCloseFork(fork), noErr);
  EXPECT_EQ(Content(file), "012");
  EXPECT_EQ(Content(file, true), "");
  EXPECT_EQ(Open(file, fsWrPerm, &fork, true), permErr);
}

TEST_F(FilesTest, ARecordedMachineIsNotChanged) {
  tree_.Write("/tmp/file", "data");
  tree_.Link("/escape", "/etc");
  MachineInUse use(tree_.Machine());
  FSRef const file = RefOf("/tmp/file"), folder = RefOf("/tmp");
  EXPECT_EQ(PathOf(file), "/tmp/file");
  FSCatalogInfo const info = Info(file);
  EXPECT_EQ(info.volume, -100);
  FSRef ref;
  EXPECT_EQ(PathCode("/escape/passwd", &ref), dirNFErr);
  FSIORefNum fork;
  OSErr const refused[] = {CreateFile(folder, "x"),
                           FSCreateDirectoryUnicode(&folder, 1, UnicodeName("x").unicode, 0,
                                                    nullptr, nullptr, nullptr, nullptr),
                           FSDeleteObject(&file),
                           Move(file, folder, "x"),
                           Copy(file, folder, "x"),
                           FSSetCatalogInfo(&file, kFSCatInfoNodeFlags, &info),
                           Open(file, fsWrPerm, &fork)};
  EXPECT_THAT(refused, testing::Each(vLckdErr));
  EXPECT_EQ(Open(file, fsCurPerm, &fork), noErr);
  EXPECT_EQ(FSCloseFork(fork), noErr);
  char path[] = "/tmp/aXXXXXX";
  EXPECT_EQ(BSD::mkstemp(path), -1);
  EXPECT_EQ(errno, EROFS);
  EXPECT_EQ(BSD::mkdtemp(path), nullptr);
}

// Every call fails with one error number.
class FailingFiles final : public machine::FileSource {
 public:
  int error = 0;
  machine::Fact<machine::ItemStatus> Status(std::string const& path,
                                            machine::Links) const override {
    return machine::Absence{machine::Outcome::kAbsent, path, {}, error};
  }
};

using FileCodes = OnScriptedMachine;

TEST_F(FileCodes, FollowTheSystemsNumbers) {
  auto const files = std::make_shared<FailingFiles>();
  machine_->files = files;
  std::pair<int, OSErr> const rows[] = {
      {0, fnfErr},       {ENOENT, dirNFErr},        {ENOTDIR, dirNFErr}, {ELOOP, fnfErr},
      {EIO, ioErr},      {EACCES, afpAccessDenied}, {ENOSPC, dskFulErr}, {ETXTBSY, opWrErr},
      {EROFS, vLckdErr}, {ENAMETOOLONG, bdNamErr},  {EMFILE, tmfoErr},   {ENOMEM, memFullErr}};
  FSRef const root = {0, 0, fsRtParID, {}};
  for (auto const& [error, code] : rows) {
    files->error = error;
    EXPECT_EQ(FSGetCatalogInfo(&root, 0, nullptr, nullptr, nullptr, nullptr), code) << error;
  }
}

}  // namespace
