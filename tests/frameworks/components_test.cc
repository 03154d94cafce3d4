#include <CoreServices/CoreServices.h>

#include <algorithm>
#include <limits>

#include "tests/machine/recorded_capture.h"
#include "tests/support/on_scripted_machine.h"

namespace {

using machine::Outcome;
using testing::ElementsAre;

class SomeComponents final : public machine::ComponentSource {
 public:
  machine::Fact<machine::SharedComponents> Components() const override {
    return std::make_shared<std::vector<machine::Component> const>(list);
  }
  std::vector<machine::Component> list;
};

// What a handle holds; "(empty)" where its contents are null.
std::string Contents(Handle handle) {
  return *handle == nullptr ? "(empty)"
                            : std::string(*handle, static_cast<std::size_t>(GetHandleSize(handle)));
}

// All that the machine in use says of its components, on a line each.
std::vector<std::string> Describe() {
  std::vector<std::string> lines;
  for (Component each = 0; (each = FindNextComponent(each, nullptr)) != 0;) {
    ComponentDescription is = {};
    Handle const name = NewHandle(16), info = NewHandle(16), icon = NewHandle(16);
    EXPECT_EQ(GetComponentInfo(each, &is, name, info, icon), noErr);
    std::string line = std::to_string(is.componentType) + " " +
                       std::to_string(is.componentSubType) + " " +
                       std::to_string(is.componentManufacturer) + " " + Contents(name) + " " +
                       Contents(info) + " " + Contents(icon);
    for (Handle const handle : {name, info, icon}) DisposeHandle(handle);
    if (ComponentInstance const open = OpenComponent(each)) {
      line += " " + std::to_string(GetComponentVersion(open));
      EXPECT_EQ(CloseComponent(open), noErr);
      EXPECT_EQ(GetComponentVersion(open), badComponentInstance);
      EXPECT_EQ(CloseComponent(open), invalidComponentID);
    }
    lines.push_back(line);
  }
  return lines;
}

class ComponentManager : public OnScriptedMachine {
 protected:
  ComponentManager() {
    source_->list = {{1, 2, 3, "Sound", "Plays", 0x00020010},
                     {1, 5, 3, std::string(300, 'n'), {}, {}},
                     {0xC46E6574, 2, 6, "", "\xC4\x01", 0xFFFFFFFF}};
    machine_->components = source_;
  }

  std::shared_ptr<SomeComponents> source_ = std::make_shared<SomeComponents>();
};

TEST_F(ComponentManager, TellsWhatTheMachineDoes) {
  EXPECT_THAT(Describe(),
              ElementsAre("1 2 3 \5Sound \5Plays (empty) 131088",
                          "1 5 3 \xFF" + std::string(255, 'n') + " (empty) (empty)",
                          "3295569268 2 6 " + std::string(1, '\0') + " \2\xC4\1 (empty) -1"));
  machine_->components = nullptr;
  EXPECT_THAT(Describe(), ElementsAre());
  EXPECT_EQ(OpenComponent(1), 0u);
  EXPECT_EQ(GetComponentInfo(1, nullptr, nullptr, nullptr, nullptr), invalidComponentID);
}

TEST_F(ComponentManager, FindsWhatIsAsDescribed) {
  struct {
    ComponentDescription looking;
    std::vector<Component> found;
  } cases[] = {
      {{0, 0, 0, 0, 0}, {1, 2, 3}},   {{1, 0, 0, 0, 0}, {1, 2}}, {{0, 2, 0, 0, 0}, {1, 3}},
      {{0, 0, 6, 0, 0}, {3}},         {{1, 2, 6, 0, 0}, {}},     {{0, 0, 0, 8, 4}, {1, 2, 3}},
      {{0, 0, 0, 8, 0xFFFFFFFF}, {}},
  };
  for (auto& row : cases) {
    std::vector<Component> found;
    for (Component each = 0; (each = FindNextComponent(each, &row.looking)) != 0;) {
      found.push_back(each);
    }
    EXPECT_EQ(found, row.found) << &row - cases;
  }
  EXPECT_EQ(FindNextComponent(std::numeric_limits<Component>::max(), nullptr), 0u);
  for (Component const none : {0u, 4u, std::numeric_limits<Component>::max()}) {
    EXPECT_EQ(GetComponentInfo(none, nullptr, nullptr, nullptr, nullptr), invalidComponentID);
    EXPECT_EQ(OpenComponent(none), 0u);
  }
}

TEST_F(ComponentManager, AnsweringFromACaptureIsTheSame) {
  source_->list[1].name->resize(255);
  std::vector<std::string> const expected = Describe();
  RecordedTree captures;
  MachineInUse const use(RecordedWhole(machine_, captures.At("/capture")));
  EXPECT_EQ(Describe(), expected);
}

TEST(CapturedComponents, LeaveOutTheMalformedOnes) {
  std::string const codes =
      "<key>Type</key><string>appl</string><key>Subtype</key><data>AAECAw==</data>"
      "<key>Maker</key><string>AbCd</string>";
  struct {
    char const* name;
    std::string entries;
    bool is_malformed;
  } const cases[] = {
      {"codes alone", codes, false},
      {"nothing", "", true},
      {"a long code", codes + "<key>Maker</key><string>\xC6\x92net</string>", true},
      {"a number as code", codes + "<key>Type</key><integer>1</integer>", true},
      {"a number as name", codes + "<key>Name</key><integer>1</integer>", true},
      {"a long text", codes + "<key>Info</key><string>" + std::string(256, 'i') + "</string>",
       true},
      {"a version as text", codes + "<key>Version</key><string>1</string>", true},
      {"a negative version", codes + "<key>Version</key><integer>-1</integer>", true},
      {"a large version", codes + "<key>Version</key><integer>4294967296</integer>", true},
  };
  for (auto const& row : cases) {
    RecordedTree tree;
    std::string const item = "<dict>" + row.entries + "</dict>";
    auto const list = [](std::string const& items) {
      return "<key>Components</key><array>" + items + "</array>";
    };
    auto const alone = Documented(tree, list(item))->Components().Components();
    EXPECT_EQ(alone.outcome(), row.is_malformed ? Outcome::kMalformed : Outcome::kAnswered);
    auto const capture = Documented(tree, list(item + "<dict>" + codes + "</dict>"));
    for (char const* time : {"first", "again"}) {
      AnnouncementLog log;
      auto const components = capture->Components().Components();
      EXPECT_EQ((*components)->size(), row.is_malformed ? 1u : 2u) << row.name;
      EXPECT_EQ((*components)->back().subtype, 0x00010203u) << row.name;
      EXPECT_EQ(log.entries.size(), row.is_malformed ? 2u : 1u) << row.name << ", " << time;
    }
  }
}

TEST(Handles, GrowShrinkAndAreEmptied) {
  Handle const handle = NewHandle(3);
  ASSERT_NE(handle, nullptr);
  std::copy_n("abc", 3, *handle);
  SetHandleSize(handle, 70'000);
  EXPECT_EQ(MemError(), noErr);
  EXPECT_EQ(GetHandleSize(handle), 70'000);
  EXPECT_EQ(std::string(*handle, 3), "abc");
  SetHandleSize(handle, -1);
  EXPECT_EQ(MemError(), memFullErr);
  EXPECT_EQ(NewHandle(-1), nullptr);
  EXPECT_EQ(MemError(), memFullErr);
  EXPECT_EQ(GetHandleSize(handle), 70'000);
  EXPECT_EQ(MemError(), noErr);
  SetHandleSize(handle, 0);
  EXPECT_NE(*handle, nullptr);
  EmptyHandle(handle);
  EXPECT_EQ(*handle, nullptr);
  EXPECT_EQ(GetHandleSize(handle), 0);
  SetHandleSize(handle, 4);
  EXPECT_EQ(MemError(), nilHandleErr);
  DisposeHandle(handle);
  EXPECT_EQ(MemError(), noErr);
  DisposeHandle(nullptr);
  EXPECT_EQ(MemError(), nilHandleErr);
}

}  // namespace
