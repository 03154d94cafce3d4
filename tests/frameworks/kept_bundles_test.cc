#include <chrono>
#include <ctime>
#include <filesystem>
#include <thread>

#include "tests/frameworks/bundle_fixture.h"

namespace {

// Until the stamps of what was written tell every change.
void Settle() { std::this_thread::sleep_for(std::chrono::milliseconds(60)); }

using KeptBundles = BundleTest;

TEST_F(KeptBundles, AreNotReadAgainWhileTheyStayAsTheyAre) {
  tree_.Write("/a/Contents/Info.plist", Info("1.10"));
  tree_.Write("/a/Contents/Resources/en.lproj/InfoPlist.strings", "Text = first;");
  tree_.Write("/flat/Info.plist", Info("1.10"));
  Settle();
  EXPECT_EQ(Value(Open("/a"), "Text"), "first");
  CFBundleRef const a = WithIdentifier("org.example");
  EXPECT_EQ(Value(Open("/flat"), "CFBundleVersion"), "1.10");
  AnnouncementLog const log;
  EXPECT_EQ(Open("/a").get(), a);
  EXPECT_EQ(Value(Open("/a"), "Text"), "first");
  EXPECT_EQ(Value(Open("/flat"), "CFBundleVersion"), "1.10");
  EXPECT_EQ(log.bytes, 0u);
}

TEST_F(KeptBundles, ShowEveryChangeToWhoeverOpensThemAgain) {
  std::string const texts = "Contents/Resources/en.lproj/InfoPlist.strings";
  // A file below the folder and what it has then, null when it is removed.
  std::tuple<std::string, std::string, char const*, char const*, char const*> const rows[] = {
      {"dictionary", "Contents/Info.plist", "{CFBundleVersion=2;}", "2", "first"},
      {"no dictionary", "Contents/Info.plist", nullptr, "none", "none"},
      {"texts", texts, "Text=other;", "1", "other"},
      {"no texts", texts, nullptr, "1", "none"},
      {"texts before", "Contents/Resources/InfoPlist.strings", "Text=all;", "1", "all"},
  };
  for (bool const is_settled : {false, true}) {
    for (auto const& [name, changed, content, version, text] : rows) {
      SCOPED_TRACE(name);
      std::string const path = "/" + name + "/";
      std::filesystem::remove_all(tree_.At(path));
      tree_.Write(path + "Contents/Info.plist", "{CFBundleVersion=1;}");
      tree_.Write(path + "Contents/PkgInfo", "APPLtext");
      tree_.Write(path + texts, "Text=first;");
      if (is_settled) Settle();
      EXPECT_EQ(Value(Open(path), "Text"), "first");
      if (content == nullptr) std::filesystem::remove(tree_.At(path + changed));
      if (content != nullptr) tree_.Write(path + changed, content);
      EXPECT_EQ(Value(Open(path), "CFBundleVersion"), version);
      EXPECT_EQ(Value(Open(path), "Text"), text);
    }
  }
  tree_.Write("/flat/Info.plist", Info("1"));
  tree_.Link("/flat/Support Files", "/later");
  Settle();
  EXPECT_EQ(Value(Open("/flat"), "CFBundleVersion"), "1");
  tree_.Write("/later/Info.plist", Info("2"));
  EXPECT_EQ(Value(Open("/flat"), "CFBundleVersion"), "2");
  tree_.Write("/flat/Contents/Info.plist", Info("3"));
  EXPECT_EQ(Value(Open("/flat"), "CFBundleVersion"), "3");
  std::filesystem::remove_all(tree_.At("/flat"));
  EXPECT_EQ(Open("/flat"), nullptr);
}

// Stamps of whole seconds, all the same.
struct CoarseFiles final : machine::FileSource {
  machine::Fact<machine::ItemStatus> Status(std::string const& path,
                                            machine::Links links) const override {
    auto status = files->Status(path, links);
    if (status) status.value().modification = status.value().change = {seconds, 0};
    return status;
  }
  machine::Fact<std::string> ReadFile(std::string const& path, std::size_t most) const override {
    return files->ReadFile(path, most);
  }
  machine::Fact<std::string> CanonicalFolder(std::string const& path) const override {
    return path;
  }

  machine::FileSource const* files = nullptr;
  std::int64_t seconds = 0;
};

TEST_F(KeptBundles, TrustNoStampThatMayHideAChange) {
  for (bool const is_new : {true, false}) {
    auto const coarse = std::make_shared<CoarseFiles>();
    coarse->files = &tree_machine_->Files();
    coarse->seconds = std::time(nullptr) - (is_new ? 0 : 60);
    auto const scripted = std::make_shared<ScriptedMachine>();
    scripted->files = coarse;
    MachineInUse const use(scripted);
    tree_.Write("/a/Info.plist", Info("1"));
    tree_.Write("/a/InfoPlist.strings", "Text = old;");
    EXPECT_EQ(Value(Open("/a"), "Text"), "old");
    tree_.Write("/a/Info.plist", Info("2"));
    tree_.Write("/a/InfoPlist.strings", "Text = new;");
    EXPECT_EQ(Value(Open("/a"), "CFBundleVersion"), is_new ? "2" : "1");
    EXPECT_EQ(Value(Open("/a"), "Text"), is_new ? "new" : "old");
  }
}

TEST_F(KeptBundles, AreFoundByTheirIdentifier) {
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

TEST_F(KeptBundles, StayWithTheirMachine) {
  RecordedTree const other;
  tree_.Write("/a/Info.plist", Info("1"));
  tree_.Write("/a/PkgInfo", "APPLfrst");
  tree_.Write("/a/InfoPlist.strings", "Text = text;");
  other.Write("/a/Info.plist", Info("2"));
  other.Write("/a/PkgInfo", "APPLnext");
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

TEST_F(KeptBundles, AreForgottenAfterHundredsOfOthersUnlessHeld) {
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
  for (std::string const name : {"large", "larger"}) {
    tree_.Write("/" + name + "/Info.plist", Info("1", name) + std::string(5'000'000, ' '));
    EXPECT_NE(Open("/" + name), nullptr);
  }
  EXPECT_EQ(WithIdentifier("299"), nullptr);
  EXPECT_EQ(WithIdentifier("large"), nullptr);
  EXPECT_NE(WithIdentifier("larger"), nullptr);
  EXPECT_EQ(WithIdentifier("0"), held.get());
}

}  // namespace
