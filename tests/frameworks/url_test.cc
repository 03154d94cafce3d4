#include <CoreServices/CoreServices.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "frameworks/CoreFoundation/file_system_text.h"
#include "tests/frameworks/cf_text.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/scripted_machine.h"

namespace {

OwnedString FromBytes(std::string_view bytes) {
  return OwnedString(file_system_text::CreateString(bytes));
}

// Takes the string over; "null" for none.
std::string Text(CFStringRef string) {
  OwnedString const owned(string);
  return string == nullptr ? "null" : file_system_text::BytesOf(string);
}

OwnedURL OfPath(std::string_view path, CFURLPathStyle style = kCFURLPOSIXPathStyle,
                bool is_folder = false, CFURLRef base = nullptr) {
  return OwnedURL(CFURLCreateWithFileSystemPathRelativeToBase(nullptr, FromBytes(path).get(), style,
                                                              is_folder, base));
}

OwnedURL OfText(std::string_view text, CFURLRef base = nullptr) {
  return OwnedURL(CFURLCreateWithString(nullptr, FromBytes(text).get(), base));
}

std::string Spelt(OwnedURL const& url) {
  return url == nullptr ? "null" : file_system_text::BytesOf(CFURLGetString(url.get()));
}

std::string PathOf(OwnedURL const& url, CFURLPathStyle style = kCFURLPOSIXPathStyle) {
  return url == nullptr ? "null" : Text(CFURLCopyFileSystemPath(url.get(), style));
}

// Name and path as a file system would have them.
std::string Representation(OwnedURL const& url) {
  UInt8 buffer[64];
  if (!CFURLGetFileSystemRepresentation(url.get(), true, buffer, sizeof buffer)) return "none";
  return reinterpret_cast<char const*>(buffer);
}

TEST(FileSystemText, BringsEveryByteBack) {
  for (std::string_view const bytes :
       {"plain", "Zoë 😀", "\xFF\xFE", "a\xC3", "\xC0\xAF", "\xED\xA0\x80\xED\xB0\x80", "\xE2\x82",
        "\xF4\x90\x80\x80", "\xF0\x8F\xBF\xBF", "\x80z"}) {
    std::vector<UniChar> const units = file_system_text::UnitsOf(bytes);
    EXPECT_EQ(file_system_text::BytesOf(units.data(), units.size()), bytes);
    EXPECT_EQ(file_system_text::BytesOf(FromBytes(bytes).get()), bytes);
  }
  EXPECT_EQ(file_system_text::UnitsOf("\xE9"), std::vector<UniChar>{0xDCE9});
  EXPECT_EQ(file_system_text::UnitsOf("é"), std::vector<UniChar>{0xE9});
  UniChar const lone = 0xD800;
  EXPECT_EQ(file_system_text::BytesOf(&lone, 1), "\xED\xA0\x80");
}

TEST(URL, IsMadeOfAPath) {
  struct {
    char const* path;
    bool is_folder;
    char const *text, *name;
    bool has_folder_path;
  } const rows[] = {
      {"/", false, "file:///", "/", true},
      {"/a b/c", false, "file:///a%20b/c", "c", false},
      {"/a/b", true, "file:///a/b/", "b", true},
      {"/a/b//", false, "file:///a/b", "b", false},
      {"/a/..", false, "file:///a/..", "..", true},
      {"/a/.b", false, "file:///a/.b", ".b", false},
      {"/50%?#;é:[]", false, "file:///50%25%3F%23%3B%C3%A9:%5B%5D", "50%?#;é:[]", false},
      {"/x\xFFy", false, "file:///x%FFy", "x\xFFy", false},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.path);
    OwnedURL const url = OfPath(row.path, kCFURLPOSIXPathStyle, row.is_folder);
    EXPECT_EQ(Spelt(url), row.text);
    EXPECT_EQ(Text(CFURLCopyLastPathComponent(url.get())), row.name);
    EXPECT_EQ(CFURLHasDirectoryPath(url.get()), row.has_folder_path);
    OwnedURL const read = OfText(row.text);
    ASSERT_NE(read, nullptr);
    EXPECT_TRUE(CFEqual(url.get(), read.get()));
    EXPECT_EQ(CFHash(url.get()), CFHash(read.get()));
    EXPECT_EQ(PathOf(read), PathOf(url));
    EXPECT_EQ(Representation(read), PathOf(url));
  }
  EXPECT_EQ(OfPath(""), nullptr);
  EXPECT_EQ(OfPath(std::string_view("/a\0b", 4)), nullptr);
  EXPECT_EQ(CFGetTypeID(OfPath("/").get()), CFURLGetTypeID());
  EXPECT_EQ(Spelt(OfPath("here")), "here");
  EXPECT_EQ(Representation(OfPath("./x")), std::filesystem::current_path().string() + "/./x");
  {
    MachineInUse const recorded(RecordedTree().Machine());
    EXPECT_EQ(Representation(OfPath("./x")), "/./x");
  }
  UInt8 buffer[4];
  EXPECT_TRUE(CFURLGetFileSystemRepresentation(OfPath("/ab").get(), true, buffer, 4));
  EXPECT_FALSE(CFURLGetFileSystemRepresentation(OfPath("/abc").get(), true, buffer, 4));
}

TEST(URL, IsReadFromText) {
  OwnedURL const folder = OfText("file:///base/folder/"), file = OfText("file:///base/file");
  struct {
    char const* text;
    CFURLRef base;
    char const *absolute, *path;
  } const rows[] = {
      {"file://localhost/a", nullptr, "file://localhost/a", "/a"},
      {"FILE:/a%2Fb", nullptr, "FILE:/a/b", "/a/b"},
      {"file:///a?q#f", nullptr, "file:///a?q#f", "/a"},
      {"x%20y", folder.get(), "file:///base/folder/x%20y", "x y"},
      {"x", file.get(), "file:///base/x", "x"},
      {"/x", file.get(), "file:///x", "/x"},
      {"a%3Ab", folder.get(), "file:///base/folder/a:b", "a:b"},
      {"http://host:80/a%20b?q", file.get(), "http://host:80/a%20b?q", "null"},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.text);
    OwnedURL const url = OfText(row.text, row.base);
    ASSERT_NE(url, nullptr);
    EXPECT_EQ(PathOf(url), row.path);
    EXPECT_EQ(Spelt(OwnedURL(CFURLCopyAbsoluteURL(url.get()))), row.absolute);
  }
  for (char const* text : {"x", "file:a", "file://", "file:///a b", "file:///a%2", "file:///a%zz",
                           "file:///a%00", "file:///é"}) {
    EXPECT_EQ(OfText(text), nullptr) << text;
  }
  EXPECT_EQ(OfText("", folder.get()), nullptr);
  EXPECT_EQ(OfText("//host/x", folder.get()), nullptr);
  EXPECT_EQ(CFURLGetBaseURL(OfText("x", folder.get()).get()), folder.get());
  EXPECT_EQ(Text(CFURLCopyScheme(OfText("x", folder.get()).get())), "file");
  EXPECT_EQ(Text(CFURLCopyLastPathComponent(OfText("http://h/a/b%20c/").get())), "b c");
}

TEST(URL, GainsAndLosesComponents) {
  struct {
    char const *path, *component, *below, *above;
  } const rows[] = {
      {"/", "a", "file:///a", "file:///../"},
      {"/a", "b c", "file:///a/b%20c", "file:///"},
      {"/a/b", "c/d/", "file:///a/b/c/d", "file:///a/"},
      {"/a/..", "x", "file:///a/../x", "file:///a/../../"},
      {"/a/b/.", "x", "file:///a/b/./x", "file:///a/"},
      {"/a", "\xFF", "file:///a/%FF", "file:///"},
      {"/a", "", "null", "file:///"},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.path);
    OwnedURL const url = OfPath(row.path);
    OwnedString const component = FromBytes(row.component);
    EXPECT_EQ(Spelt(OwnedURL(CFURLCreateCopyAppendingPathComponent(nullptr, url.get(),
                                                                   component.get(), false))),
              row.below);
    EXPECT_EQ(Spelt(OwnedURL(CFURLCreateCopyDeletingLastPathComponent(nullptr, url.get()))),
              row.above);
  }
  OwnedURL const base = OfPath("/base", kCFURLPOSIXPathStyle, true);
  OwnedURL const relative = OfPath("a", kCFURLPOSIXPathStyle, false, base.get());
  OwnedURL const above(CFURLCreateCopyDeletingLastPathComponent(nullptr, relative.get()));
  EXPECT_EQ(Representation(above), "/base/.");
  OwnedURL const folder(
      CFURLCreateCopyAppendingPathComponent(nullptr, base.get(), CFSTR("a"), true));
  EXPECT_EQ(Spelt(folder), "file:///base/a/");
  OwnedURL const host = OfText("http://h/a");
  EXPECT_EQ(Spelt(OwnedURL(
                CFURLCreateCopyAppendingPathComponent(nullptr, host.get(), CFSTR("b ?"), false))),
            "http://h/a/b%20%3F");
}

TEST(URL, SpeaksHfsPathsOfTheMountedVolumes) {
  RecordedTree const tree;
  tree.Write("/proc/self/mountinfo",
             "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n"
             "2 1 0:5 / /proc rw shared:1 - proc proc rw\n"
             "3 1 8:2 / /media/My\\040Disk rw shared:2 - ext4 /dev/sdb1 rw\n"
             "4 3 8:3 / /media/My\\040Disk/in:side rw - vfat /dev/sdc1 rw\n"
             "5 1 8:2 / /again rw - ext4 /dev/sdb1 rw\n"
             "6 1 8:4 /sub /bound rw - ext4 /dev/sdd1 rw\n"
             "broken\n");
  MachineInUse const use(tree.Machine());
  std::pair<char const*, char const*> const rows[] = {
      {"/", "System"},
      {"/etc/a:b", "System:etc:a/b"},
      {"/proc/1", "System:proc:1"},
      {"/media/My DiskX/f", "System:media:My DiskX:f"},
      {"/media/My Disk", "My Disk"},
      {"/media/My Disk/x\xFF", "My Disk:x\xFF"},
      {"/media/My Disk/in:side/f", "in/side:f"},
      {"/again/f", "System:again:f"},
      {"/bound/f", "System:bound:f"},
      {"/a/../b", "System:a::b"},
  };
  for (auto const& [posix, hfs] : rows) {
    SCOPED_TRACE(posix);
    EXPECT_EQ(PathOf(OfPath(posix), kCFURLHFSPathStyle), hfs);
    EXPECT_EQ(PathOf(OfPath(hfs, kCFURLHFSPathStyle)), posix);
  }
  EXPECT_EQ(PathOf(OfPath("System:etc:", kCFURLHFSPathStyle)), "/etc");
  EXPECT_EQ(OfPath("Nowhere:f", kCFURLHFSPathStyle), nullptr);
  EXPECT_EQ(OfPath("/a", static_cast<CFURLPathStyle>(2)), nullptr);
  OwnedURL const base = OfPath("/base", kCFURLPOSIXPathStyle, true);
  OwnedURL const relative = OfPath(":a/b::c", kCFURLHFSPathStyle, false, base.get());
  EXPECT_EQ(Representation(relative), "/base/a:b/../c");
  EXPECT_EQ(PathOf(relative, kCFURLHFSPathStyle), ":a/b::c");
}

TEST(URL, ReadsTheFileOfTheMachineInUse) {
  RecordedTree const tree;
  tree.Write("/dir/file", std::string("a\0b", 3));
  tree.MakeFifo("/pipe");
  MachineInUse const use(tree.Machine());
  struct {
    OwnedURL url;
    SInt32 code;
  } const rows[] = {
      {OfPath("/dir/file"), 0},
      {OfPath("/gone"), kCFURLResourceNotFoundError},
      {OfPath("/dir"), kCFURLUnknownError},
      {OfPath("/pipe"), kCFURLUnknownError},
      {OfText("http://host/dir/file"), kCFURLUnknownSchemeError},
      {nullptr, kCFURLImproperArgumentsError},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(Spelt(row.url));
    CFDataRef data = nullptr;
    CFDictionaryRef properties = nullptr;
    SInt32 code = 99;
    bool const is_read = CFURLCreateDataAndPropertiesFromResource(nullptr, row.url.get(), &data,
                                                                  &properties, nullptr, &code);
    EXPECT_EQ(code, row.code);
    EXPECT_EQ(is_read, row.code == 0);
    ASSERT_EQ(data != nullptr, row.code == 0);
    EXPECT_EQ(properties, nullptr);
    if (data == nullptr) continue;
    EXPECT_EQ(std::string(reinterpret_cast<char const*>(CFDataGetBytePtr(data)), 3),
              std::string("a\0b", 3));
    EXPECT_EQ(CFDataGetLength(data), 3);
    CFRelease(data);
  }
}

TEST(URL, LeadsToAnItemAndBack) {
  RecordedTree const tree;
  tree.Write("/folder/fi\xFFle", "");
  tree.Link("/link", "folder");
  MachineInUse const use(tree.Machine());
  std::pair<char const*, char const*> const rows[] = {
      {"/folder/fi\xFFle", "file:///folder/fi%FFle"},
      {"/link/fi\xFFle", "file:///folder/fi%FFle"},
      {"/folder", "file:///folder/"},
      {"/link", "file:///link"},
      {"/", "file:///"}};
  for (auto const& [path, text] : rows) {
    FSRef ref;
    ASSERT_TRUE(CFURLGetFSRef(OfPath(path).get(), &ref)) << path;
    EXPECT_EQ(Spelt(OwnedURL(CFURLCreateFromFSRef(nullptr, &ref))), text);
  }
  FSRef ref = {};
  EXPECT_FALSE(CFURLGetFSRef(OfPath("/gone").get(), &ref));
  EXPECT_FALSE(CFURLGetFSRef(OfText("http://host/folder").get(), &ref));
  EXPECT_EQ(CFURLCreateFromFSRef(nullptr, &ref), nullptr);
}

}  // namespace
