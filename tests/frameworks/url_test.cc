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

std::string Spelt(OwnedURL const& url) {
  return url == nullptr ? "null" : file_system_text::BytesOf(CFURLGetString(url.get()));
}

// The URL of a component below another one, spelt.
std::string Below(OwnedURL const& url, std::string_view component, bool is_folder = false) {
  OwnedURL const below(CFURLCreateCopyAppendingPathComponent(
      nullptr, url.get(), FromBytes(component).get(), is_folder));
  return Spelt(below);
}

OwnedURL Above(OwnedURL const& url) {
  return OwnedURL(CFURLCreateCopyDeletingLastPathComponent(nullptr, url.get()));
}

OwnedURL OfText(std::string_view text, CFURLRef base = nullptr) {
  return OwnedURL(CFURLCreateWithString(nullptr, FromBytes(text).get(), base));
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

TEST(URL, IsMadeOfAPath) {
  std::tuple<char const*, bool, char const*, char const*, bool> const rows[] = {
      {"/", false, "file:///", "/", true},
      {"/a b/c", false, "file:///a%20b/c", "c", false},
      {"/a/b", true, "file:///a/b/", "b", true},
      {"/a/b//", false, "file:///a/b", "b", false},
      {"/a/..", false, "file:///a/..", "..", true},
      {"/a/.b", false, "file:///a/.b", ".b", false},
      {"/50%?#;é:[]", false, "file:///50%25%3F%23%3B%C3%A9:%5B%5D", "50%?#;é:[]", false},
      {"/x\xFFy", false, "file:///x%FFy", "x\xFFy", false},
  };
  for (auto const& [path, is_folder, text, name, has_folder_path] : rows) {
    SCOPED_TRACE(path);
    OwnedURL const url = OfPath(path, kCFURLPOSIXPathStyle, is_folder);
    EXPECT_EQ(Spelt(url), text);
    EXPECT_EQ(Text(CFURLCopyLastPathComponent(url.get())), name);
    EXPECT_EQ(CFURLHasDirectoryPath(url.get()), has_folder_path);
    OwnedURL const read = OfText(text);
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
  UInt8 buffer[4];
  EXPECT_TRUE(CFURLGetFileSystemRepresentation(OfPath("/ab").get(), true, buffer, 4));
  EXPECT_FALSE(CFURLGetFileSystemRepresentation(OfPath("/abc").get(), true, buffer, 4));
  MachineInUse const recorded(RecordedTree().Machine());
  EXPECT_EQ(Representation(OfPath("./x")), "/./x");
}

TEST(URL, IsReadFromText) {
  OwnedURL const folder = OfText("file:///base/folder/"), file = OfText("file:///base/file");
  std::tuple<char const*, CFURLRef, char const*, char const*> const rows[] = {
      {"file://localhost/a", nullptr, "file://localhost/a", "/a"},
      {"FILE:/a%2Fb", nullptr, "FILE:/a/b", "/a/b"},
      {"file:///a?q#f", nullptr, "file:///a?q#f", "/a"},
      {"x%20y", folder.get(), "file:///base/folder/x%20y", "x y"},
      {"x", file.get(), "file:///base/x", "x"},
      {"/x", file.get(), "file:///x", "/x"},
      {"a%3Ab", folder.get(), "file:///base/folder/a:b", "a:b"},
      {"http://host:80/a%20b?q", file.get(), "http://host:80/a%20b?q", "null"},
  };
  for (auto const& [text, base, absolute, path] : rows) {
    SCOPED_TRACE(text);
    OwnedURL const url = OfText(text, base);
    ASSERT_NE(url, nullptr);
    EXPECT_EQ(PathOf(url), path);
    EXPECT_EQ(Spelt(OwnedURL(CFURLCopyAbsoluteURL(url.get()))), absolute);
  }
  for (char const* text : {"x", "file:a", "file://", "file:///a b", "file:///a%2", "file:///a%zz",
                           "file:///a%00", "file:///é"}) {
    EXPECT_EQ(OfText(text), nullptr) << text;
  }
  EXPECT_EQ(OfText("", folder.get()), nullptr);
  EXPECT_EQ(OfText("//host/x", folder.get()), nullptr);
  OwnedURL const relative = OfText("x", folder.get());
  EXPECT_EQ(CFURLGetBaseURL(relative.get()), folder.get());
  EXPECT_EQ(Text(CFURLCopyScheme(relative.get())), "file");
  EXPECT_EQ(Text(CFURLCopyLastPathComponent(OfText("http://h/a/b%20c/").get())), "b c");
}

TEST(URL, GainsAndLosesComponents) {
  std::tuple<char const*, char const*, char const*, char const*> const rows[] = {
      {"/", "a", "file:///a", "file:///../"},
      {"/a", "b c", "file:///a/b%20c", "file:///"},
      {"/a/b", "c/d/", "file:///a/b/c/d", "file:///a/"},
      {"/a/..", "x", "file:///a/../x", "file:///a/../../"},
      {"/a/b/.", "x", "file:///a/b/./x", "file:///a/"},
      {"/a", "\xFF", "file:///a/%FF", "file:///"},
      {"/a", "", "null", "file:///"},
  };
  for (auto const& [path, component, below, above] : rows) {
    OwnedURL const url = OfPath(path);
    EXPECT_EQ(Below(url, component), below) << path;
    EXPECT_EQ(Spelt(Above(url)), above) << path;
  }
  OwnedURL const base = OfPath("/base", kCFURLPOSIXPathStyle, true);
  OwnedURL const relative = OfPath("a", kCFURLPOSIXPathStyle, false, base.get());
  EXPECT_EQ(Representation(Above(relative)), "/base/.");
  EXPECT_EQ(Below(base, "a", true), "file:///base/a/");
  EXPECT_EQ(Below(OfText("http://h/a"), "b ?"), "http://h/a/b%20%3F");
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
      {"/a/../b", "System:a::b"}};
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
  std::string const content("a\0b", 3);
  RecordedTree const tree;
  tree.Write("/dir/file", content);
  tree.MakeFifo("/pipe");
  MachineInUse const use(tree.Machine());
  std::pair<OwnedURL, SInt32> const rows[] = {
      {OfPath("/dir/file"), 0},
      {OfPath("/gone"), kCFURLResourceNotFoundError},
      {OfPath("/dir"), kCFURLUnknownError},
      {OfPath("/pipe"), kCFURLUnknownError},
      {OfText("http://host/dir/file"), kCFURLUnknownSchemeError},
      {nullptr, kCFURLImproperArgumentsError},
  };
  for (auto const& [url, expected] : rows) {
    SCOPED_TRACE(Spelt(url));
    CFDataRef data = nullptr;
    CFDictionaryRef properties = nullptr;
    SInt32 code = 99;
    EXPECT_EQ(CFURLCreateDataAndPropertiesFromResource(nullptr, url.get(), &data, &properties,
                                                       nullptr, &code),
              expected == 0);
    EXPECT_EQ(code, expected);
    EXPECT_EQ(properties, nullptr);
    OwnedObject const owned(data);
    EXPECT_EQ(data == nullptr ? "none" : BytesOfData(data), expected == 0 ? content : "none");
  }
}

TEST(URL, LeadsToAnItemAndBack) {
  RecordedTree const tree;
  tree.Write("/folder/fi\xFFle", "");
  tree.Link("/link", "folder");
  MachineInUse const use(tree.Machine());
  for (auto const& [path, text] : {std::pair("/folder/fi\xFFle", "file:///folder/fi%FFle"),
                                   {"/link/fi\xFFle", "file:///folder/fi%FFle"},
                                   {"/folder", "file:///folder/"},
                                   {"/link", "file:///link"},
                                   {"/", "file:///"}}) {
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
