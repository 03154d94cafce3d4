#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>

#include <cerrno>
#include <set>

#include "tests/machine/apple_double_text.h"
#include "tests/machine/on_recorded_tree.h"
#include "tests/support/scripted_machine.h"

namespace {

using machine::Access;
using machine::FileSource;
using machine::Fork;
using machine::ItemKind;
using machine::Links;
using machine::Outcome;
using testing::Pair;

using Files = OnRecordedTree;

std::string ForkOf(FileSource const& files, std::string const& path, Fork fork) {
  auto const file = files.OpenFork(path, fork, Access::kRead);
  if (!file) return "error " + std::to_string(file.absence().error);
  char text[64];
  return std::string(text, (*file)->ReadAt(0, text, sizeof text).value());
}

TEST_F(Files, BelowARootStayThere) {
  FileSource const& files = machine->Files();
  tree.Write("/etc/passwd", "root:x:0:0::/:/bin/sh\nann:x:1000:1000::/:\nbroken\n");
  tree.Write("/folder/file", "inside");
  for (char const* target : {"/etc/passwd", "../../../../../../etc/passwd", "/folder/loop"}) {
    tree.Link("/folder/link", target);
    bool const is_inside = std::string(target) != "/folder/loop";
    if (!is_inside) tree.Link("/folder/loop", "link");
    auto const status = files.Status("/folder/link", Links::kFollow);
    EXPECT_EQ(status.has_value(), is_inside) << target;
    EXPECT_EQ(files.Status("/folder/link", Links::kKeep)->kind, ItemKind::kLink);
    EXPECT_EQ(files.ReadLink("/folder/link").value(), target);
    auto const text = files.ReadFile("/folder/link", 1000);
    EXPECT_EQ(is_inside ? text->substr(0, 4) : "root", "root") << target;
    EXPECT_EQ(is_inside ? 0 : text.absence().error, is_inside ? 0 : ELOOP);
    std::filesystem::remove(tree.At("/folder/link"));
  }
  tree.Link("/out", "/proc/self/root");
  for (char const* path : {"/out/etc", "/usr", "/../../usr", "/folder/../../../../usr"}) {
    EXPECT_FALSE(files.OpenFolder(path)) << path;
    EXPECT_FALSE(files.Status(path, Links::kKeep)) << path;
  }
  EXPECT_EQ(files.Status("/folder/../..", Links::kKeep)->inode,
            files.Status("/", Links::kKeep)->inode);
  EXPECT_EQ(files.CanonicalFolder("/folder/../..//folder/").value(), "/folder");
  EXPECT_EQ(files.UserName(1000).value(), "ann");
  AnnouncementLog log;
  EXPECT_FALSE(files.UserName(0xFFFFFFFF));
  EXPECT_THAT(log.entries.back(), Pair("/etc/passwd", Outcome::kAbsent));
  EXPECT_FALSE(files.ReadFile(std::string("/etc/passwd\0x", 13), 9));
}

TEST_F(Files, OpensNothingButFilesAndFolders) {
  tree.Write("/file", "12345");
  tree.MakeFifo("/pipe");
  bool const has_device = ::mknod(tree.At("/device").c_str(), S_IFCHR | 0600, makedev(1, 5)) == 0;
  std::shared_ptr<machine::Machine const> const machines[] = {
      tree.Machine(), machine::MakeLiveMachine("/", machine::Changes::kRefused)};
  for (auto const& machine : machines) {
    FileSource const& files = machine->Files();
    std::string const base = machine == machines[0] ? "" : tree.At("");
    for (char const* name : {"/pipe", "/device"}) {
      if (!has_device && std::string(name) == "/device") continue;
      EXPECT_EQ(ForkOf(files, base + name, Fork::kData), "error " + std::to_string(EINVAL));
      EXPECT_EQ(ForkOf(files, base + name, Fork::kResource), "error " + std::to_string(EINVAL));
      EXPECT_EQ(files.Describe(base + name, Links::kFollow)->status.kind, ItemKind::kOther);
    }
    EXPECT_EQ(files.OpenFolder(base + "/file").absence().error, ENOTDIR);
    EXPECT_EQ(ForkOf(files, base + "/", Fork::kData), "error " + std::to_string(EISDIR));
    EXPECT_EQ(files.ReadFile(base + "/file", 5).value(), "12345");
    EXPECT_EQ(files.ReadFile(base + "/file", 4).outcome(), Outcome::kMalformed);
    auto const folder = files.OpenFolder(base + "/");
    EXPECT_EQ((*folder)->OpenFolder("..").absence().error, EINVAL);
    EXPECT_EQ(files.Remove(base + "/file").absence().error, EROFS);
    EXPECT_EQ(files.OpenFork(base + "/file", Fork::kData, Access::kReadAndWrite).absence().error,
              EROFS);
    EXPECT_EQ(files.MakeUniqueFile(base + "/aXXXXXX").absence().error, EROFS);
  }
  EXPECT_EQ(machines[1]->Files().ReadFile("/proc/self/comm", 100)->back(), '\n');
}

TEST_F(Files, FoldersAreReadWhateverTheirSize) {
  for (int i = 0; i < 3000; ++i) tree.Write("/many/item" + std::to_string(i), "");
  tree.Write("/many/._item2999", AppleDoubleText({{9, std::string(32, 'F')}}));
  auto const folder = machine->Files().OpenFolder("/many");
  int with_info = 0, companions = 0;
  std::set<std::string> names;
  for (;;) {
    auto const entry = (*folder)->Next(machine::Detail::kAll);
    ASSERT_TRUE(entry);
    if (*entry == nullptr) break;
    names.emplace((*entry)->name);
    with_info += (*entry)->item.has_finder_info;
    companions += (*entry)->is_companion;
    if (names.size() % 500 == 0) (*folder)->Rest();
  }
  EXPECT_EQ(std::tuple(names.size(), with_info, companions), std::tuple(3001u, 1, 1));
}

TEST_F(Files, PathsMayBeLongerThanTheKernelTakes) {
  constexpr int kDepth = 40;  // 10000 bytes of path
  std::string const name(250, 'n');
  std::string path;
  tree.MakeChain("", name, kDepth, [&](int at) {
    path += "/" + name;
    ASSERT_EQ(::symlinkat("../..", at, "up"), 0);
  });
  for (std::string const& root : {tree.At(""), std::string("/")}) {
    auto const machine = machine::MakeLiveMachine(root);
    std::string const base = root == "/" ? tree.At("") : "";
    EXPECT_EQ(machine->Files().ReadLink(base + path + "/up").value(), "../..");
    EXPECT_EQ(machine->Files().Describe(base + path, Links::kKeep)->status.kind, ItemKind::kFolder);
  }
}

TEST_F(Files, BelieveNoOffsetOfACompanion) {
  std::string const info(32, 'F');
  std::string const good = AppleDoubleText({{9, info}, {2, "resource"}});
  auto const with = [&](std::size_t at, std::string const& bytes) {
    return std::string(good).replace(at, bytes.size(), bytes);
  };
  constexpr std::size_t kCount = 24, kInfo = 26, kResource = 38;
  struct {
    char const* name;
    std::string content;
    bool has_info;
    std::string resource;
  } const cases[] = {
      {"good", good, true, "resource"},
      {"not AppleDouble", "text", false, ""},
      {"empty", "", false, ""},
      {"another magic", with(0, "\x01"), false, ""},
      {"header only", good.substr(0, kInfo), false, ""},
      {"many entries", with(kCount, "\xff\xff"), true, "resource"},
      {"resource outside", with(kResource + 4, "\xff\xff\xff\xff"), true, ""},
      {"resource too long", with(kResource + 8, "\xff\xff\xff\xff"), true, ""},
      {"Finder information outside", with(kInfo + 4, "\x7f"), false, "resource"},
      {"Finder information too long", with(kInfo + 8, "\xff\xff\xff\xff"), false, "resource"},
      {"no resource", with(kResource, std::string(4, '\0')), true, ""},
      {"truncated", good.substr(0, good.size() - 1), true, ""},
  };
  tree.Write("/f/item", "data");
  for (auto const& row : cases) {
    tree.Write("/f/._item", row.content);
    auto const item = machine->Files().Describe("/f/item", Links::kKeep);
    EXPECT_EQ(item->has_finder_info, row.has_info) << row.name;
    EXPECT_EQ(item->resource_bytes, row.resource.size()) << row.name;
    EXPECT_EQ(ForkOf(machine->Files(), "/f/item", Fork::kResource), row.resource) << row.name;
  }
  for (std::size_t size = 0; size < good.size(); ++size) {
    tree.Write("/f/._item", good.substr(0, size));
    EXPECT_EQ(ForkOf(machine->Files(), "/f/item", Fork::kResource), "") << size;
  }
  AnnouncementLog log;
  machine->Files().Describe("/f/item", Links::kKeep);
  EXPECT_THAT(log.entries, testing::ElementsAre(Pair("/f/item", Outcome::kAnswered),
                                                Pair("/f/._item", Outcome::kMalformed)));
  ASSERT_EQ(::unlink(tree.At("/f/._item").c_str()), 0);
  tree.MakeFifo("/f/._item");
  EXPECT_EQ(machine->Files().Describe("/f/item", Links::kKeep)->resource_bytes, 0u);
}

TEST_F(Files, AttributesComeBeforeCompanions) {
  tree.Write("/item", "data");
  tree.Write("/._item", AppleDoubleText({{9, std::string(32, 'D')}, {2, "companion"}}));
  if (::setxattr(tree.At("/item").c_str(), "user.com.apple.FinderInfo", "short", 5, 0) != 0) {
    GTEST_SKIP() << "no attributes here";
  }
  auto item = machine->Files().Describe("/item", Links::kKeep);
  EXPECT_EQ(std::string(item->finder_info.begin(), item->finder_info.begin() + 6),
            std::string("short\0", 6));
  EXPECT_EQ(item->resource_bytes, 9u);
  ASSERT_EQ(::setxattr(tree.At("/item").c_str(), "user.com.apple.ResourceFork", "rsrc", 4, 0), 0);
  EXPECT_EQ(ForkOf(machine->Files(), "/item", Fork::kResource), "rsrc");
}

TEST_F(Files, OpenFilesTellWhatWasReadWhenTheyClose) {
  tree.Write("/file", "0123456789");
  AnnouncementLog log;
  {
    auto const file = machine->Files().OpenFork("/file", Fork::kData, Access::kRead);
    char text[4];
    EXPECT_EQ((*file)->ReadAt(8, text, sizeof text).value(), 2u);
    EXPECT_EQ((*file)->ReadAt(0, text, sizeof text).value(), 4u);
    EXPECT_EQ((*file)->WriteAt(0, text, 1).absence().error, EBADF);
  }
  EXPECT_EQ(log.bytes, 6u);
  machine->Files().Status("/none", Links::kKeep);
  EXPECT_THAT(log.entries, testing::Contains(Pair("/none", Outcome::kAbsent)));
}

}  // namespace
