#include <CoreServices/CoreServices.h>
#include <gtest/gtest.h>

#include "portable/core_foundation/objects.h"
#include "portable/core_foundation/strings.h"
#include "portable/core_foundation/urls.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/scripted_machine.h"

namespace {

constexpr CFStringEncoding kUtf8 = kCFStringEncodingUTF8;

TEST(Handle, GivesBackWhatItHolds) {
  CFStringRef const text = MakeCFString("text", kUtf8).Release();
  CFStringRef const other = MakeCFString("other", kUtf8).Release();
  CFRetain(text);
  CFRetain(other);
  {
    AutoCFString one, another;
    EXPECT_EQ(one.Get(), nullptr);
    one.Seize(text);
    AutoCFString moved(std::move(one));
    another.Seize(other);
    another = std::move(moved);
    EXPECT_EQ(CFGetRetainCount(other), 1);
    AutoCFString& same = another;
    another = std::move(same);
    EXPECT_EQ(another.Get(), text);
    EXPECT_EQ(CFGetRetainCount(text), 2);
    another.Seize(nullptr);
    EXPECT_EQ(CFGetRetainCount(text), 1);
  }
  AutoCFString::DisposeCFStringRef(other);
  AutoCFString::DisposeCFStringRef(nullptr);
  {
    ResourceTransfer<CFStringRef> const dropped(static_cast<CFStringRef>(CFRetain(text)));
    ResourceTransfer<CFStringRef> taken(static_cast<CFStringRef>(CFRetain(text)));
    AutoCFString const owner(std::move(taken));
    EXPECT_EQ(taken.Take(), nullptr);
    AutoCFString const shared = Duplicate(text);
    EXPECT_EQ(shared.Get(), text);
    EXPECT_EQ(CFGetRetainCount(text), 4);
  }
  EXPECT_EQ(CFGetRetainCount(text), 1);
  AutoCFString::DisposeCFStringRef(text);
  EXPECT_EQ(Duplicate(static_cast<CFURLRef>(nullptr)).Get(), nullptr);
}

TEST(Strings, AreMadeAndRead) {
  unsigned short const units[] = {'Z', 'o', 0xEB};
  AutoCFString const made[] = {MakeCFString("Zo\x91", kCFStringEncodingMacRoman),
                               MakeCFString(units, 3), MakeCFString(ConstData("Zoë"), kUtf8),
                               MakeCFString(std::string("Zoë"), kUtf8),
                               MakeCFString(UStringRef<UTF8>(ConstData("Zoë")))};
  for (AutoCFString const& text : made) {
    EXPECT_TRUE(CFEqual(text.Get(), made[0].Get()));
    EXPECT_EQ(MakeString(text.Get(), kUtf8, '?'), "Zoë");
    EXPECT_EQ(MakeString(text.Get(), kCFStringEncodingASCII, '?'), "Zo?");
  }
  EXPECT_THROW(MakeCFString(ConstData("x"), 0x7777), CFStringCreateError);
  EXPECT_THROW(MakeCFString(std::string("\xFF"), kUtf8), CFStringCreateError);
  EXPECT_EQ(MakeString(EmptyCFString().Get(), kUtf8, '?'), "");
  EXPECT_EQ(EmptyCFString().Get(), EmptyCFString().Get());
}

TEST(UnicodeReferences, AreToTextOnly) {
  for (char const* text : {"", "x", "\xC2\x80", "\xE0\xA0\x80", "\xED\x9F\xBF\xEE\x80\x80",
                           "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBFx"}) {
    EXPECT_EQ(MakeString(UStringRef<UTF8>(ConstData(text)).Bytes()), text);
  }
  for (char const* bytes : {"\x80", "\xFF", "\xC1\xBF", "\xC2", "\xC2x", "\xE0\x9F\xBF", "\xE1\x80",
                            "\xE1\x80x", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF", "\xF1\x80\x80",
                            "\xF4\x90\x80\x80", "\xF5\x80\x80\x80"}) {
    EXPECT_THROW(UStringRef<UTF8>{ConstData(bytes)}, CFStringCreateError) << bytes;
    EXPECT_THROW(MakeCFString(bytes, kUtf8), CFStringCreateError) << bytes;
  }
}

TEST(Objects, ComeFromPropertyListsOfTheRightRoot) {
  AutoCFData const array = MakeCFData("<plist><array><string>a</string></array></plist>");
  AutoCFData const dictionary =
      MakeCFData("<plist><dict><key>k</key><string>v</string></dict></plist>");
  AutoCFData const broken = MakeCFData("<plist><array>");
  EXPECT_EQ(CFArrayGetCount(ArrayCreateFromXMLData(array.Get(), 0).Get()), 1);
  AutoCFDictionary const root = DictionaryCreateFromXMLData(dictionary.Get(), 0);
  for (CFDataRef data : {dictionary.Get(), broken.Get()}) {
    EXPECT_THROW(ArrayCreateFromXMLData(data, 0), ArrayCreateFromXMLDataFailed);
  }
  for (CFDataRef data : {array.Get(), broken.Get()}) {
    EXPECT_THROW(DictionaryCreateFromXMLData(data, 0), DictionaryCreateFromXMLDataFailed);
  }
  void const* const value = GetDictionaryValue(root.Get(), CFSTR("k"));
  EXPECT_TRUE(CFEqual(CFCast<CFStringRef>(value), CFSTR("v")));
  EXPECT_THROW(GetDictionaryValue(root.Get(), CFSTR("K")), CFDictionaryGetValueIfPresentFailed);
  EXPECT_EQ(CFCast<CFStringRef>(nullptr), nullptr);
  EXPECT_THROW(CFCast<CFStringRef>(root.Get()), CFCastError<CFStringRef>);
  EXPECT_THROW(CFCast<CFStringRef>(root.Get()), GenericCFCastError);
  EXPECT_EQ(ExtractCFData(broken.Get()).size(), 14u);
  EXPECT_TRUE(ExtractCFData(nullptr).empty());
  unsigned char const bytes[2] = {};
  EXPECT_THROW(MakeCFData(ConstData(bytes + 1, bytes)), CFDataCreateError);
}

TEST(URLs, LeadToItemsAndBack) {
  RecordedTree const tree;
  tree.Write("/folder/file", "content");
  MachineInUse const use(tree.Machine());
  AutoCFURL const file = MakeURL(CFSTR("file:///folder/file"));
  FSRef const ref = MakeFSRef(file.Get());
  EXPECT_TRUE(CFEqual(MakeURL(ref).Get(), file.Get()));
  FSSpec fs_spec = {};
  ASSERT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, &fs_spec, nullptr), noErr);
  EXPECT_TRUE(CFEqual(MakeURL(fs_spec).Get(), file.Get()));
  EXPECT_EQ(ExtractCFData(GetData(file.Get()).Get()).size(), 7u);
}

TEST(URLs, FailWithTheirOwnClass) {
  RecordedTree const tree;
  MachineInUse const use(tree.Machine());
  AutoCFURL const host = MakeURL(CFSTR("http://host"));
  AutoCFURL const gone = MakeURL(CFSTR("file:///gone"));
  CFStringRef const none = CFSTR("");
  constexpr CFURLPathStyle kPosix = kCFURLPOSIXPathStyle;
  EXPECT_THROW(MakeURL(none), CFURLCreateWithStringFailed);
  EXPECT_THROW(MakeURL(FSRef{}), CFURLCreateFromFSRefFailed);
  EXPECT_THROW(MakeURL(FSSpec{}), OSError);
  EXPECT_THROW(MakeURLFromFileSystemPath(none, kPosix, false), CFURLCreateWithFileSystemPathFailed);
  EXPECT_THROW(MakeURLFromFileSystemPathRelativeToBase(none, kPosix, false, gone.Get()),
               CFURLCreateWithFileSystemPathRelativeToBaseFailed);
  EXPECT_THROW(CreateCopyAppendingPathComponent(gone.Get(), none, false),
               CFURLCreateCopyAppendingPathComponentFailed);
  EXPECT_THROW(CreateCopyDeletingLastPathComponent(host.Get()),
               CFURLCreateCopyDeletingLastPathComponentFailed);
  EXPECT_THROW(MakeFSRef(gone.Get()), CFURLGetFSRefFailed);
  EXPECT_THROW(FileSystemPath(host.Get(), kPosix), CFURLCopyFileSystemPathFailed);
  EXPECT_THROW(CopyLastPathComponent(nullptr), CFURLCopyLastPathComponentFailed);
  try {
    GetData(gone.Get());
    FAIL();
  } catch (CFURLErrorCode const& error) {
    EXPECT_EQ(error.Code(), kCFURLResourceNotFoundError);
  }
}

}  // namespace
