// Extensions, control panels, startup items and shutdown items, asked of the evaluator itself.
#include "tests/inspectors/scripted_folders.h"
#include "tests/machine/recorded_tree.h"
#include "tests/portable_inspectors/answers.h"
#include "tests/support/scripted_machine.h"

namespace {

// The name of each and whether it is enabled, sorted.
std::string Items(std::string const& question) {
  return Answer(
      "concatenation \", \" of unique values of (name of it & \" \" & "
      "(enabled of it as string)) of " +
      question);
}

class SpecialItems : public testing::Test {
 protected:
  // Lets the system know these two folders and no other.
  void Place(OSType enabled, char const* enabled_path, OSType disabled, char const* disabled_path) {
    ScriptedFolders::Forget();
    folders_.paths = {{{kSystemDomain, enabled}, tree_.At(enabled_path)},
                      {{kSystemDomain, disabled}, tree_.At(disabled_path)}};
  }

  RecordedTree tree_;
  ScriptedFolders folders_;
};

TEST_F(SpecialItems, HaveSixForms) {
  for (char const* path : {"/enabled/a", "/enabled/b", "/enabled/folder/x", "/disabled/b"}) {
    tree_.Write(path, "");
  }
  struct {
    std::string name;
    OSType enabled, disabled;
  } const kinds[] = {{"extensions", 0x6578746E, 0x65787444},
                     {"control panels", 0x6374726C, 0x63747244},
                     {"startup items", 0x73747274, 0x73747244},
                     {"shutdown items", 0x73686466, 0x73686444}};
  for (auto const& [name, enabled, disabled] : kinds) {
    SCOPED_TRACE(name);
    Place(enabled, "/enabled", disabled, "/disabled");
    EXPECT_EQ(Items(name), "a true, b false, b true");
    EXPECT_EQ(Items("enabled " + name), "a true, b true");
    EXPECT_EQ(Items("disabled " + name), "b false");
    EXPECT_EQ(Items(name + " \"a\""), "a true");
    EXPECT_EQ(Items(name + " \"b\""), "b false, b true");
    EXPECT_EQ(Items(name + " \"folder\""), "");
    EXPECT_EQ(Items("enabled " + name + " \"a\""), "a true");
    EXPECT_EQ(Items("enabled " + name + " \"c\""), "");
    EXPECT_EQ(Items("disabled " + name + " \"b\""), "b false");
    EXPECT_EQ(Items("disabled " + name + " \"a\""), "");
    EXPECT_EQ(Answer("(disabled of it) of " + name), "false\nfalse\ntrue") << "the last";
  }
}

TEST_F(SpecialItems, AreAllThereAreWhenAFolderIsEmptyOrMissing) {
  tree_.Write("/full/x", "");
  tree_.MakeFolder("empty");
  struct {
    char const *enabled, *disabled, *found;
  } const cases[] = {{"/full", "/empty", "x true"},         {"/full", "/missing", "x true"},
                     {"/empty", "/full", "x false"},        {"/missing", "/full", "x false"},
                     {"/full", "/full", "x false, x true"}, {"/empty", "/missing", ""},
                     {"/missing", "/missing", ""}};
  for (auto const& row : cases) {
    SCOPED_TRACE(std::string(row.enabled) + ", " + row.disabled);
    Place(kStartupFolderType, row.enabled, kStartupItemsDisabledFolderType, row.disabled);
    EXPECT_EQ(Items("startup items"), row.found);
    EXPECT_EQ(Items("startup items \"x\""), row.found);
  }
}

// Nothing is scripted here: the system itself knows where they are.
TEST(SpecialItemsOfAVolume, AreWhereTheSystemKeepsThem) {
  RecordedTree volume;
  std::string const library = "/System/Library/";
  volume.Write(library + "CoreServices/SystemVersion.plist", "<plist><dict/></plist>");
  for (char const* item : {"StartupItems/a", "StartupItems/b", "StartupItems (Disabled)/b"}) {
    volume.Write(library + item, "");
  }
  volume.Write("/Library/StartupItems/of the machine", "");
  MachineInUse const use(volume.Machine());
  ScriptedFolders::Forget();
  EXPECT_EQ(Items("startup items"), "a true, b false, b true");
  ScriptedFolders::Forget();
}

}  // namespace
