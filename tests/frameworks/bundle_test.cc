#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <thread>
#include <vector>

#include "tests/frameworks/cf_text.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/scripted_machine.h"

namespace {

using OwnedBundle = std::unique_ptr<__CFBundle, Releaser>;
using OwnedURL = std::unique_ptr<std::remove_pointer_t<CFURLRef>, Releaser>;

constexpr CFStringEncoding kUtf8 = kCFStringEncodingUTF8;

OwnedURL UrlOf(std::string const& path) {
  return OwnedURL(
      CFURLCreateFromFileSystemRepresentation(nullptr, reinterpret_cast<UInt8 const*>(path.data()),
                                              static_cast<CFIndex>(path.size()), true));
}

OwnedBundle Open(std::string const& path) {
  return OwnedBundle(CFBundleCreate(nullptr, UrlOf(path).get()));
}

// In the old text form, which is the shortest to write.
std::string Info(std::string const& version, std::string const& identifier = "org.example") {
  return "{CFBundleVersion = \"" + version + "\"; CFBundleIdentifier = \"" + identifier + "\";}";
}

std::string TextOf(void const* value) {
  if (value == nullptr) return "none";
  if (CFGetTypeID(value) != CFStringGetTypeID()) return "no text";
  return BytesOf(static_cast<CFStringRef>(value), kUtf8);
}

std::string Value(OwnedBundle const& bundle, char const* key) {
  return TextOf(CFBundleGetValueForInfoDictionaryKey(bundle.get(), Make(key, kUtf8).get()));
}

std::string Code(UInt32 code) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(code >> shift);
  return text;
}

std::string Package(OwnedBundle const& bundle) {
  UInt32 type = 0, creator = 0;
  CFBundleGetPackageInfo(bundle.get(), &type, &creator);
  return Code(type) + Code(creator);
}

CFBundleRef WithIdentifier(char const* identifier) {
  return CFBundleGetBundleWithIdentifier(Make(identifier, kUtf8).get());
}

class BundleTest : public testing::Test {
 protected:
  // As `environment` of a machine that has the tree's files.
  void Use(std::map<std::string, std::string> environment) {
    auto const scripted = std::make_shared<ScriptedMachine>();
    scripted->files = {machine_, &machine_->Files()};
    scripted->environment = std::move(environment);
    machine::SetCurrentMachine(scripted);
  }
  // Until the stamps of what was written tell every change.
  static void Settle() { std::this_thread::sleep_for(std::chrono::milliseconds(60)); }

  RecordedTree tree_;
  std::shared_ptr<machine::Machine const> machine_ = tree_.Machine();
  MachineInUse use_{machine_};
};

TEST_F(BundleTest, IsAFolderOfOneOfTheLayouts) {
  tree_.Write("/application/Contents/Info.plist", Info("1"));
  tree_.Write("/application/Info.plist", Info("9"));
  tree_.Write("/support/Support Files/Info.plist", Info("2"));
  tree_.Write("/flat/Info.plist", Info("3"));
  tree_.Write("/tool.framework/Versions/A/Resources/Info.plist", Info("4"));
  tree_.Link("/tool.framework/Versions/Current", "A");
  tree_.Link("/tool.framework/Resources", "Versions/Current/Resources");
  tree_.Link("/absolute.framework/Versions/Current", "/tool.framework/Versions/A");
  tree_.Write("/package/Contents/PkgInfo", "APPLmine");
  tree_.Link("/outside/Contents/Info.plist", "../../../../../../../../../etc/passwd");
  tree_.Write("/plain/Contents/Resources/file", "");
  tree_.Link("/linked", "application");
  struct {
    char const* path;
    char const* version;  // null for no bundle
  } const rows[] = {
      {"/application", "1"},
      {"/application/", "1"},
      {"/application/Contents/", "1"},
      {"/linked", "1"},
      {"/support", "2"},
      {"/flat", "3"},
      {"/tool.framework", "4"},
      {"/tool.framework/Versions/A", "4"},
      {"/absolute.framework", "4"},
      {"/package", "none"},
      {"/outside", nullptr},
      {"/plain", nullptr},
      {"/gone", nullptr},
      {"/flat/Info.plist", nullptr},
      {"/", nullptr},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.path);
    OwnedBundle const bundle = Open(row.path);
    EXPECT_EQ(CFBundleGetPackageInfoInDirectory(UrlOf(row.path).get(), nullptr, nullptr),
              row.version != nullptr);
    ASSERT_EQ(bundle != nullptr, row.version != nullptr);
    if (bundle == nullptr) continue;
    EXPECT_EQ(Value(bundle, "CFBundleVersion"), row.version);
    EXPECT_EQ(CFGetTypeID(bundle.get()), CFBundleGetTypeID());
  }
  tree_.Write("/Contents/Info.plist", Info("5"));
  EXPECT_EQ(Value(Open("/"), "CFBundleVersion"), "5");
  EXPECT_EQ(Open("/linked").get(), Open("/application").get());
  OwnedURL const folder(CFBundleCopyBundleURL(Open("/linked").get()));
  EXPECT_TRUE(CFEqual(folder.get(), UrlOf("/application").get()));
  EXPECT_EQ(CFBundleCreate(nullptr, nullptr), nullptr);
  EXPECT_FALSE(CFBundleGetPackageInfoInDirectory(nullptr, nullptr, nullptr));
}

TEST_F(BundleTest, HasNoDictionaryWhenThatCannotBeRead) {
  std::string const deep(100'000, '(');
  struct {
    char const* name;
    std::string content;
  } const rows[] = {
      {"empty", ""},
      {"cut", "<plist><dict><key>CFBundle"},
      {"an array", "(a, b)"},
      {"text", "bundle"},
      {"deep", "{a = " + deep},
      {"binary", "bplist00\xff\xff"},
  };
  for (auto const& row : rows) {
    tree_.Write(std::string("/") + row.name + "/Contents/Info.plist", row.content);
  }
  std::vector<std::string> names = {"folder", "pipe", "large"};
  for (auto const& row : rows) names.emplace_back(row.name);
  std::filesystem::create_directories(tree_.At("/folder/Contents/Info.plist"));
  std::filesystem::create_directories(tree_.At("/pipe/Contents"));
  ASSERT_EQ(::mkfifo(tree_.At("/pipe/Contents/Info.plist").c_str(), 0666), 0);
  tree_.Write("/large/Contents/Info.plist", "{}");
  std::filesystem::resize_file(tree_.At("/large/Contents/Info.plist"), std::uintmax_t{1} << 40);
  for (std::string const& name : names) {
    SCOPED_TRACE(name);
    OwnedBundle const bundle = Open("/" + name);
    ASSERT_NE(bundle, nullptr);
    EXPECT_EQ(CFBundleGetInfoDictionary(bundle.get()), nullptr);
    EXPECT_EQ(CFBundleGetLocalInfoDictionary(bundle.get()), nullptr);
    EXPECT_EQ(CFBundleGetIdentifier(bundle.get()), nullptr);
    EXPECT_EQ(CFBundleGetVersionNumber(bundle.get()), 0u);
    EXPECT_EQ(Package(bundle), "BNDL????");
  }
}

TEST_F(BundleTest, TellsTypeAndCreator) {
  struct {
    char const* name;
    char const* info;  // null for none
    char const* package;
    char const* codes;
  } const rows[] = {
      {"both", "{CFBundlePackageType=AAAA;CFBundleSignature=BBBB;}", "APPLTEXT\n", "APPLTEXT"},
      {"keys", "{CFBundlePackageType=FMWK;CFBundleSignature=\"t\\U00e9xt\";}", nullptr,
       "FMWKt\x8Ext"},
      {"short file", "{CFBundlePackageType=AAAA;}", "APPLTEX", "AAAA????"},
      {"odd keys", "{CFBundlePackageType=(AAAA);CFBundleSignature=LONGER;}", nullptr, "BNDL????"},
      {"file alone", nullptr, "KEXT\x01\x02\xFF\x7F", "KEXT\x01\x02\xFF\x7F"},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.name);
    std::string const path = std::string("/") + row.name;
    if (row.info != nullptr) tree_.Write(path + "/Contents/Info.plist", row.info);
    if (row.package != nullptr) tree_.Write(path + "/Contents/PkgInfo", row.package);
    EXPECT_EQ(Package(Open(path)), row.codes);
    UInt32 type = 0, creator = 0;
    EXPECT_TRUE(CFBundleGetPackageInfoInDirectory(UrlOf(path).get(), &type, &creator));
    EXPECT_EQ(Code(type) + Code(creator), row.codes);
  }
}

TEST_F(BundleTest, PacksVersionsOfTheClassicForm) {
  struct {
    char const* text;
    UInt32 word;
  } const rows[] = {
      {"1.2.3b4", 0x01236004},
      {"10.4.9", 0x10498000},
      {"7", 0x07008000},
      {"1.2", 0x01208000},
      {"1.0d1", 0x01002001},
      {"2.5a255", 0x025040FF},
      {"3.0f2", 0x03008002},
      {"99.9.9fc255", 0x999980FF},
      {"0.0.1", 0x00018000},
      {"1.2b", 0x01206000},
      {"", 0},
      {"1.10", 0},
      {"100", 0},
      {"1.2.3.4", 0},
      {"1.", 0},
      {".1", 0},
      {"1.2b256", 0},
      {"1.2b0001", 0},
      {"1.2c3", 0},
      {"1.2fcc", 0},
      {" 1.2", 0},
      {"1.2 ", 0},
      {"1.2b-1", 0},
      {"\xC2\xB9", 0},
      {"1.2.3f0000000000000", 0},
  };
  int number = 0;
  for (auto const& row : rows) {
    std::string const path = "/" + std::to_string(number++);
    tree_.Write(path + "/Info.plist", Info(row.text));
    EXPECT_EQ(CFBundleGetVersionNumber(Open(path).get()), row.word) << row.text;
  }
  tree_.Write("/number/Info.plist",
              "<plist><dict><key>CFBundleVersion</key><integer>2</integer></dict></plist>");
  EXPECT_EQ(CFBundleGetVersionNumber(Open("/number").get()), 0u);
  EXPECT_EQ(Value(Open("/number"), "CFBundleVersion"), "no text");
}

TEST_F(BundleTest, LaysTheTextsOfThePreferredLanguageOverItsDictionary) {
  struct {
    char const* folders;  // each says its own name
    char const* environment;
    char const* found;
  } const rows[] = {
      {"en de", "LANG=de_AT.UTF-8", "de"},
      {"en de de_AT", "LANG=de_AT.UTF-8", "de_AT"},
      {"en German", "LANG=de_AT@euro", "German"},
      {"de-AT German", "LANG=de_AT", "de-AT"},
      {"en zh-Hant zh", "LANG=zh_TW.UTF-8", "zh-Hant"},
      {"de fr", "LANG=de LC_MESSAGES=fr", "fr"},
      {"de fr", "LC_ALL=de LC_MESSAGES=fr", "de"},
      {"de fr", "LANG=de LANGUAGE=pt:fr", "fr"},
      {"de fr en", "LANG=C LANGUAGE=fr", "en"},
      {"de English nl", "", "English"},
      {"de nl en", "LANG=sv", "nl"},  // the bundle's own
      {"de Base en", "LANG=sv", "Base"},
      {"de en", "LANG=sv", "en"},
      {"de en", "LANG=../de", "en"},
      {"de", "LANG=sv", "none"},
  };
  int number = 0;
  for (auto const& row : rows) {
    SCOPED_TRACE(row.folders + std::string(" for ") + row.environment);
    std::string const path = "/" + std::to_string(number++),
                      resources = path + "/Contents/Resources/";
    tree_.Write(path + "/Contents/Info.plist", "{Kept=kept; CFBundleDevelopmentRegion=nl;}");
    std::istringstream folders(row.folders), variables(row.environment);
    for (std::string name; folders >> name;) {
      tree_.Write(resources + name + ".lproj/InfoPlist.strings", "Text = \"" + name + "\";");
    }
    std::map<std::string, std::string> environment;
    for (std::string text; variables >> text;) {
      environment[text.substr(0, text.find('='))] = text.substr(text.find('=') + 1);
    }
    Use(environment);
    OwnedBundle const bundle = Open(path);
    EXPECT_EQ(Value(bundle, "Text"), row.found);
    EXPECT_EQ(Value(bundle, "Kept"), "kept");
    EXPECT_EQ(CFDictionaryGetCount(CFBundleGetInfoDictionary(bundle.get())), 2);
    tree_.Write(resources + "InfoPlist.strings", "Text = all;");
    EXPECT_EQ(Value(bundle, "Text"), row.found);  // as it was for whoever holds it
  }
}

TEST_F(BundleTest, ReadsTextsInEveryForm) {
  OwnedString const text = Make("/* Å */ Text = \"Zoë\";", kUtf8);
  struct {
    char const* name;
    std::string content;
    char const* found;
  } const rows[] = {
      {"UTF-8", BytesOf(text.get(), kUtf8), "Zoë"},
      {"UTF-16 with mark", BytesOf(text.get(), kCFStringEncodingUTF16, '?', true), "Zoë"},
      {"UTF-16BE", BytesOf(text.get(), kCFStringEncodingUTF16BE), "Zoë"},
      {"XML", "<plist><dict><key>Text</key><string>Zoë</string></dict></plist>", "Zoë"},
      {"damaged", "Text = ", "plain"},
      {"array", "(Text)", "plain"},
  };
  for (auto const& row : rows) {
    std::string const path = std::string("/") + row.name;
    tree_.Write(path + "/Info.plist", "{Text = plain;}");
    tree_.Write(path + "/en.lproj/InfoPlist.strings", row.content);
    EXPECT_EQ(Value(Open(path), "Text"), row.found) << row.name;
  }
}

TEST_F(BundleTest, IsKeptWhileItStaysAsItIs) {
  tree_.Write("/a/Contents/Info.plist", Info("1.10"));
  tree_.Write("/a/Contents/Resources/en.lproj/InfoPlist.strings", "Text = first;");
  tree_.Write("/flat/Info.plist", Info("1.10"));
  Settle();
  CFBundleRef const a = Open("/a").get();
  EXPECT_EQ(Value(Open("/a"), "Text"), "first");
  EXPECT_EQ(Value(Open("/flat"), "CFBundleVersion"), "1.10");
  AnnouncementLog const log;
  EXPECT_EQ(Open("/a").get(), a);
  EXPECT_EQ(Value(Open("/a"), "Text"), "first");
  EXPECT_EQ(Value(Open("/flat"), "CFBundleVersion"), "1.10");
  EXPECT_EQ(log.bytes, 0u);
}

TEST_F(BundleTest, ShowsEveryChangeToWhoeverOpensItAgain) {
  struct {
    char const* name;
    char const* changed;  // a file below the folder; null content removes it
    char const* content;
    char const* version;
    char const* text;
  } const rows[] = {
      {"dictionary", "Contents/Info.plist", "{CFBundleVersion=2;}", "2", "first"},
      {"no dictionary", "Contents/Info.plist", nullptr, "none", "none"},
      {"texts", "Contents/Resources/en.lproj/InfoPlist.strings", "Text=other;", "1", "other"},
      {"no texts", "Contents/Resources/en.lproj/InfoPlist.strings", nullptr, "1", "none"},
      {"texts before", "Contents/Resources/InfoPlist.strings", "Text=all;", "1", "all"},
  };
  for (bool const is_settled : {false, true}) {
    for (auto const& row : rows) {
      SCOPED_TRACE(row.name);
      std::string const path = std::string("/") + row.name;
      tree_.Write(path + "/Contents/Info.plist", "{CFBundleVersion=1;}");
      tree_.Write(path + "/Contents/PkgInfo", "APPLtext");
      tree_.Write(path + "/Contents/Resources/en.lproj/InfoPlist.strings", "Text=first;");
      std::filesystem::remove(tree_.At(path + "/Contents/Resources/InfoPlist.strings"));
      if (is_settled) Settle();
      EXPECT_EQ(Value(Open(path), "Text"), "first");
      if (row.content != nullptr) {
        tree_.Write(path + '/' + row.changed, row.content);
      } else {
        std::filesystem::remove(tree_.At(path + '/' + row.changed));
      }
      EXPECT_EQ(Value(Open(path), "CFBundleVersion"), row.version);
      EXPECT_EQ(Value(Open(path), "Text"), row.text);
    }
  }
  tree_.Write("/flat/Info.plist", Info("1"));
  tree_.Link("/flat/Support Files", "/later");
  EXPECT_EQ(Value(Open("/flat"), "CFBundleVersion"), "1");
  tree_.Write("/later/Info.plist", Info("2"));
  EXPECT_EQ(Value(Open("/flat"), "CFBundleVersion"), "2");
  tree_.Write("/flat/Contents/Info.plist", Info("3"));
  EXPECT_EQ(Value(Open("/flat"), "CFBundleVersion"), "3");
  std::filesystem::remove_all(tree_.At("/flat"));
  EXPECT_EQ(Open("/flat"), nullptr);
}

TEST_F(BundleTest, IsFoundByItsIdentifier) {
  constexpr char kOdd[] = "org.example/ü \xF0\x9F\x98\x80 %s\x7F";
  for (char const* name : {"/a", "/b"})
    tree_.Write(name + std::string("/Info.plist"), Info("1", kOdd));
  tree_.Write("/number/Info.plist",
              "<plist><dict><key>CFBundleIdentifier</key><real>1</real></dict></plist>");
  EXPECT_EQ(WithIdentifier(kOdd), nullptr);
  EXPECT_EQ(CFBundleGetIdentifier(Open("/number").get()), nullptr);
  OwnedBundle const a = Open("/a"), b = Open("/b");
  EXPECT_EQ(TextOf(CFBundleGetIdentifier(a.get())), kOdd);
  EXPECT_EQ(WithIdentifier(kOdd), a.get());
  EXPECT_EQ(WithIdentifier("org.example"), nullptr);
  EXPECT_EQ(CFBundleGetBundleWithIdentifier(nullptr), nullptr);
  tree_.Write("/a/Info.plist", Info("1.5", kOdd));
  for (int i = 0; i < 2; ++i) {  // it still comes before the other one
    EXPECT_EQ(CFBundleGetVersionNumber(WithIdentifier(kOdd)), 0x01508000u);
  }
  EXPECT_EQ(CFBundleGetVersionNumber(a.get()), 0x01008000u);
  tree_.Write("/a/Info.plist", Info("1", "org.other"));
  EXPECT_EQ(WithIdentifier(kOdd), b.get());
  std::filesystem::remove_all(tree_.At("/b"));
  EXPECT_EQ(WithIdentifier(kOdd), nullptr);
}

TEST_F(BundleTest, StaysWithItsMachine) {
  RecordedTree const other;
  for (RecordedTree const* const tree : std::vector<RecordedTree const*>{&tree_, &other}) {
    tree->Write("/a/Info.plist", Info(tree == &other ? "2" : "1"));
    tree->Write("/a/PkgInfo", tree == &other ? "APPLnext" : "APPLfrst");
    tree->Write("/a/InfoPlist.strings", "Text = text;");
  }
  OwnedBundle const before = Open("/a");
  MachineInUse const use(other.Machine());
  EXPECT_EQ(WithIdentifier("org.example"), nullptr);
  OwnedBundle const now = Open("/a");
  EXPECT_NE(now, before);
  EXPECT_EQ(WithIdentifier("org.example"), now.get());
  EXPECT_EQ(Value(now, "CFBundleVersion"), "2");
  EXPECT_EQ(Package(now), "APPLnext");
  EXPECT_EQ(Value(before, "CFBundleVersion"), "1");
  EXPECT_EQ(Value(before, "Text"), "none");
  EXPECT_EQ(Package(before), "BNDL????");
}

TEST_F(BundleTest, IsForgottenAfterHundredsOfOthersUnlessSomeoneHoldsIt) {
  auto const open = [&](int number) {
    std::string const name = std::to_string(number);
    tree_.Write("/" + name + "/Info.plist", Info("1", name));
    return Open("/" + name);
  };
  OwnedBundle const held = open(0);
  for (int i = 1; i < 300; ++i) open(i);
  EXPECT_EQ(Open("/0"), held);
  EXPECT_EQ(WithIdentifier("0"), held.get());
  EXPECT_EQ(CFGetRetainCount(held.get()), 2);
  EXPECT_EQ(WithIdentifier("1"), nullptr);
  EXPECT_NE(WithIdentifier("299"), nullptr);
  // Large ones take the place of many.
  for (char const* name : {"large", "larger"}) {
    tree_.Write(std::string("/") + name + "/Info.plist",
                Info("1", name) + std::string(5'000'000, ' '));
    EXPECT_NE(Open(std::string("/") + name), nullptr);
  }
  EXPECT_EQ(WithIdentifier("299"), nullptr);
  EXPECT_EQ(WithIdentifier("large"), nullptr);
  EXPECT_NE(WithIdentifier("larger"), nullptr);
  EXPECT_EQ(WithIdentifier("0"), held.get());
}

// What python's plistlib writes, in both forms.
TEST_F(BundleTest, HasTheDictionaryThatAnotherProgramWrote) {
  tree_.Write("/write.py", R"(
import os, plistlib
for form in plistlib.FMT_XML, plistlib.FMT_BINARY:
    folder = form.name + '/Contents/Resources/ja.lproj'
    os.makedirs(folder)
    info = {'CFBundleIdentifier': 'org.例.' + form.name, 'CFBundleVersion': '1.2.3b4',
            'CFBundleShortVersionString': '1.2 β', 'CFBundleSignature': '????',
            'CFBundlePackageType': 'APPL', 'NSServices': [{'n': i} for i in range(50)]}
    plistlib.dump(info, open(form.name + '/Contents/Info.plist', 'wb'), fmt=form)
    plistlib.dump({'CFBundleName': '計算機'}, open(folder + '/InfoPlist.strings', 'wb'), fmt=form)
)");
  if (std::system(("cd " + tree_.At("") + " && python3 write.py").c_str()) != 0) GTEST_SKIP();
  Use({{"LANG", "ja_JP.UTF-8"}});
  for (char const* form : {"FMT_XML", "FMT_BINARY"}) {
    OwnedBundle const bundle = Open(std::string("/") + form);
    ASSERT_NE(bundle, nullptr);
    EXPECT_EQ(WithIdentifier((std::string("org.例.") + form).c_str()), bundle.get());
    EXPECT_EQ(CFBundleGetVersionNumber(bundle.get()), 0x01236004u);
    EXPECT_EQ(Value(bundle, "CFBundleShortVersionString"), "1.2 β");
    EXPECT_EQ(Value(bundle, "CFBundleName"), "計算機");
    EXPECT_EQ(Package(bundle), "APPL????");
    EXPECT_EQ(CFDictionaryGetCount(CFBundleGetLocalInfoDictionary(bundle.get())), 7);
  }
}

}  // namespace
