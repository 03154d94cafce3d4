// Extensions, control panels, startup items and shutdown items, asked through what they register.

#include "inspectors/files/enableable_file.h"
#include "inspectors/files/special_folder.h"
#include "tests/inspectors/asking.h"
#include "tests/inspectors/scripted_folders.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/scripted_machine.h"

namespace {

using Items = std::vector<std::string>;

// "name" of one that is enabled, "(name)" of one that is not.
std::string Shown(EnableableFile const& item) {
  auto const enabled = Ask<boolean>("enabled", "enableable_file", &item);
  EXPECT_NE(enabled, Ask<boolean>("disabled", "enableable_file", &item));
  std::string const name = std::filesystem::path(item.Path()).filename();
  return enabled ? name : "(" + name + ")";
}

RecordedRegistration const* Find(std::string const& call, std::string const& name,
                                 std::string const& parameter) {
  for (RecordedRegistration const& each : RecordingEvaluator::Instance().registered) {
    bool const is_one = each.call == call && each.name == name && each.parameter == parameter;
    if (is_one && each.result == "enableable_file" && each.object.empty()) return &each;
  }
  return nullptr;
}

// All that an iterated property gives, as the evaluator would ask for it.
Items All(std::string const& name, char const* parameter = nullptr) {
  auto const* const found = Find("Iterated_Property", name, parameter != nullptr ? "string" : "");
  if (found == nullptr) return {"not registered"};
  std::string const text = parameter != nullptr ? parameter : "";
  inspector_string const wanted = Name(text);
  RawStorage state(found->size), value(sizeof(EnableableFile));
  found->construct(state.Address());
  Items items;
  try {
    for (InspectorGet step = found->get;; step = found->next) {
      step(value.Address(), &wanted, nullptr, state.Address(), found->context);
      auto* const item = static_cast<EnableableFile*>(value.Address());
      items.push_back(Shown(*item));
      item->~EnableableFile();
    }
  } catch (NoSuchObject const&) {
  }
  found->destroy(state.Address());
  return items;
}

// What a property gives for one name.
Items One(std::string const& name, std::string const& parameter) {
  auto const* const found = Find("Property", name, "string");
  if (found == nullptr) return {"not registered"};
  inspector_string const wanted = Name(parameter);
  try {
    return {Shown(found->Get<EnableableFile>(&wanted))};
  } catch (NoSuchObject const&) {
    return {};
  }
}

class SpecialItems : public testing::Test {
 protected:
  // Lets the system know these two folders and no other.
  void Place(OSType enabled, OSType disabled) {
    ScriptedFolders::Forget();
    folders_.paths = {{{kSystemDomain, enabled}, tree_.At("/enabled")},
                      {{kSystemDomain, disabled}, tree_.At("/disabled")}};
  }

  RecordedTree tree_;
  ScriptedFolders folders_;
};

struct Kind {
  std::string name;
  OSType enabled, disabled;
};
Kind const kKinds[] = {{"extension", 0x6578746E, 0x65787444},
                       {"control panel", 0x6374726C, 0x63747244},
                       {"startup item", 0x73747274, 0x73747244},
                       {"shutdown item", 0x73686466, 0x73686444}};

TEST_F(SpecialItems, HaveSixForms) {
  for (char const* path : {"/enabled/a", "/enabled/b", "/enabled/folder/x", "/disabled/b"}) {
    tree_.Write(path, "");
  }
  for (auto const& [name, enabled, disabled] : kKinds) {
    SCOPED_TRACE(name);
    Place(enabled, disabled);
    Items all = All(name);
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(all.back(), "(b)") << "the disabled ones come last";
    EXPECT_THAT(all, testing::UnorderedElementsAre("a", "b", "(b)"));
    EXPECT_THAT(All("enabled " + name), testing::UnorderedElementsAre("a", "b"));
    EXPECT_EQ(All("disabled " + name), Items{"(b)"});

    EXPECT_EQ(All(name, "a"), Items{"a"});
    EXPECT_EQ(All(name, "b"), (Items{"b", "(b)"}));
    EXPECT_EQ(All(name, "folder"), Items{});
    EXPECT_EQ(One("enabled " + name, "a"), Items{"a"});
    EXPECT_EQ(One("enabled " + name, "c"), Items{});
    EXPECT_EQ(One("disabled " + name, "b"), Items{"(b)"});
    EXPECT_EQ(One("disabled " + name, "a"), Items{});
  }
}

TEST_F(SpecialItems, AreAllThereAreWhenAFolderIsEmptyOrMissing) {
  tree_.Write("/full/x", "");
  std::filesystem::create_directories(tree_.At("/empty"));
  struct {
    char const *enabled, *disabled;
    Items all, named;
  } const cases[] = {
      {"full", "empty", {"x"}, {"x"}},
      {"full", "missing", {"x"}, {"x"}},
      {"empty", "full", {"(x)"}, {"(x)"}},
      {"missing", "full", {"(x)"}, {"(x)"}},
      {"full", "full", {"x", "(x)"}, {"x", "(x)"}},
      {"empty", "missing", {}, {}},
      {"missing", "missing", {}, {}},
  };
  for (auto const& row : cases) {
    SCOPED_TRACE(std::string(row.enabled) + ", " + row.disabled);
    ScriptedFolders::Forget();
    folders_.paths = {
        {{kSystemDomain, kStartupFolderType}, tree_.At(std::string("/") + row.enabled)},
        {{kSystemDomain, kStartupItemsDisabledFolderType},
         tree_.At(std::string("/") + row.disabled)}};
    EXPECT_EQ(All("startup item"), row.all);
    EXPECT_EQ(All("startup item", "x"), row.named);
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
  EXPECT_THAT(All("startup item"), testing::UnorderedElementsAre("a", "b", "(b)"));
  ScriptedFolders::Forget();
}

}  // namespace
