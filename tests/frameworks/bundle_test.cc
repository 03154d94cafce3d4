#include <filesystem>
#include <map>
#include <sstream>
#include <vector>

#include "tests/frameworks/bundle_fixture.h"

namespace {

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
  for (auto const& [path, version] : {std::pair("/application", "1"),
                                      {"/application/", "1"},
                                      {"/application/Contents/", "1"},
                                      {"/linked", "1"},
                                      {"/support", "2"},
                                      {"/flat", "3"},
                                      {"/tool.framework", "4"},
                                      {"/tool.framework/Versions/A", "4"},
                                      {"/absolute.framework", "4"},
                                      {"/package", "none"}}) {
    SCOPED_TRACE(path);
    OwnedBundle const bundle = Open(path);
    EXPECT_TRUE(CFBundleGetPackageInfoInDirectory(UrlOf(path).get(), nullptr, nullptr));
    ASSERT_NE(bundle, nullptr);
    EXPECT_EQ(Value(bundle, "CFBundleVersion"), version);
    EXPECT_EQ(CFGetTypeID(bundle.get()), CFBundleGetTypeID());
  }
  for (char const* path : {"/outside", "/plain", "/gone", "/flat/Info.plist", "/"}) {
    EXPECT_FALSE(CFBundleGetPackageInfoInDirectory(UrlOf(path).get(), nullptr, nullptr)) << path;
    EXPECT_EQ(Open(path), nullptr) << path;
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
  std::pair<std::string, std::string> const contents[] = {
      {"empty", ""},
      {"cut", "<plist><dict><key>CFBundle"},
      {"an array", "(a, b)"},
      {"deep", "{a = " + std::string(100'000, '(')},
      {"binary", "bplist00\xff\xff"},
      {"large", "{}"},
  };
  std::vector<std::string> names = {"folder", "pipe"};
  for (auto const& [name, content] : contents) {
    tree_.Write("/" + name + "/Contents/Info.plist", content);
    names.push_back(name);
  }
  tree_.MakeFolder("/folder/Contents/Info.plist");
  tree_.MakeFifo("/pipe/Contents/Info.plist");
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
  // Null where there is no such file.
  std::tuple<std::string, char const*, char const*, char const*> const rows[] = {
      {"both", "{CFBundlePackageType=AAAA;CFBundleSignature=BBBB;}", "APPLTEXT\n", "APPLTEXT"},
      {"keys", "{CFBundlePackageType=FMWK;CFBundleSignature=\"t\\U00e9xt\";}", nullptr,
       "FMWKt\x8Ext"},
      {"short file", "{CFBundlePackageType=AAAA;}", "APPLTEX", "AAAA????"},
      {"odd keys", "{CFBundlePackageType=(AAAA);CFBundleSignature=LONGER;}", nullptr, "BNDL????"},
      {"file alone", nullptr, "KEXT\x01\x02\xFF\x7F", "KEXT\x01\x02\xFF\x7F"},
  };
  for (auto const& [name, info, package, codes] : rows) {
    SCOPED_TRACE(name);
    if (info != nullptr) tree_.Write("/" + name + "/Contents/Info.plist", info);
    if (package != nullptr) tree_.Write("/" + name + "/Contents/PkgInfo", package);
    EXPECT_EQ(Package(Open("/" + name)), codes);
    UInt32 type = 0, creator = 0;
    EXPECT_TRUE(CFBundleGetPackageInfoInDirectory(UrlOf("/" + name).get(), &type, &creator));
    EXPECT_EQ(BigEndianText(type, 4) + BigEndianText(creator, 4), codes);
  }
}

TEST_F(BundleTest, PacksVersionsOfTheClassicForm) {
  std::pair<char const*, UInt32> const rows[] = {
      {"1.2.3b4", 0x01236004}, {"10.4.9", 0x10498000}, {"7", 0x07008000},
      {"1.0d1", 0x01002001},   {"3.0f2", 0x03008002},  {"99.9.9fc255", 0x999980FF},
      {"0.0.1", 0x00018000},   {"1.2b", 0x01206000},
  };
  int number = 0;
  auto const packed = [&](char const* text) {
    std::string const path = "/" + std::to_string(number++);
    tree_.Write(path + "/Info.plist", Info(text));
    return CFBundleGetVersionNumber(Open(path).get());
  };
  for (auto const& [text, word] : rows) EXPECT_EQ(packed(text), word) << text;
  for (char const* text : {"", "1.10", "1.2.3.4", "1.", "1.2b256", "1.2c3", " 1.2", "1.2 ",
                           "1.2b-1", "\xC2\xB9", "1.2.3f0000000000000", "1.2\\U0000d3"}) {
    EXPECT_EQ(packed(text), 0u) << text;
  }
  tree_.Write("/number/Info.plist",
              "<plist><dict><key>CFBundleVersion</key><integer>2</integer></dict></plist>");
  EXPECT_EQ(CFBundleGetVersionNumber(Open("/number").get()), 0u);
  EXPECT_EQ(Value(Open("/number"), "CFBundleVersion"), "no text");
}

TEST_F(BundleTest, LaysTheTextsOfThePreferredLanguageOverItsDictionary) {
  struct {
    char const* folders;  // each says its own name
    std::map<std::string, std::string> environment;
    char const* found;
  } const rows[] = {
      {"en de", {{"LANG", "de_AT.UTF-8"}}, "de"},
      {"en de de_AT", {{"LANG", "de_AT.UTF-8"}}, "de_AT"},
      {"en German", {{"LANG", "de_AT@euro"}}, "German"},
      {"de-AT German", {{"LANG", "de_AT"}}, "de-AT"},
      {"en zh-Hant zh", {{"LANG", "zh_TW.UTF-8"}}, "zh-Hant"},
      {"de fr", {{"LANG", "de"}, {"LC_MESSAGES", "fr"}}, "fr"},
      {"de fr", {{"LC_ALL", "de"}, {"LC_MESSAGES", "fr"}}, "de"},
      {"de fr", {{"LANG", "de"}, {"LANGUAGE", "pt:fr"}}, "fr"},
      {"de fr en", {{"LANG", "C"}, {"LANGUAGE", "fr"}}, "en"},
      {"de English nl", {}, "English"},
      {"de nl en", {{"LANG", "sv"}}, "nl"},  // the bundle's own
      {"de Base en", {{"LANG", "sv"}}, "Base"},
      {"de en", {{"LANG", "sv"}}, "en"},
      {"de en", {{"LANG", "../de"}}, "en"},
      {"de", {{"LANG", "sv"}}, "none"},
  };
  for (auto const& row : rows) {
    std::string const path = "/" + std::to_string(&row - rows),
                      resources = path + "/Contents/Resources/";
    SCOPED_TRACE(path);
    tree_.Write(path + "/Contents/Info.plist", "{Kept=kept; CFBundleDevelopmentRegion=nl;}");
    std::istringstream folders(row.folders);
    for (std::string name; folders >> name;) {
      tree_.Write(resources + name + ".lproj/InfoPlist.strings", "Text = \"" + name + "\";");
    }
    machine_->environment = row.environment;
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
  std::tuple<std::string, std::string, char const*> const rows[] = {
      {"UTF-16 with mark", BytesOf(text.get(), kCFStringEncodingUTF16, '?', true), "Zoë"},
      {"damaged", "Text = ", "plain"},
      {"array", "(Text)", "plain"},
  };
  for (auto const& [name, content, found] : rows) {
    tree_.Write("/" + name + "/Info.plist", "{Text = plain;}");
    tree_.Write("/" + name + "/en.lproj/InfoPlist.strings", content);
    EXPECT_EQ(Value(Open("/" + name), "Text"), found) << name;
  }
}

}  // namespace
