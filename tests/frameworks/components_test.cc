#include <CoreServices/CoreServices.h>

#include <algorithm>
#include <limits>
#include <sstream>

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
    std::ostringstream line;
    line << is.componentType << ' ' << is.componentSubType << ' ' << is.componentManufacturer;
    for (Handle const handle : {name, info, icon}) {
      line << ' ' << Contents(handle);
      DisposeHandle(handle);
    }
    if (ComponentInstance const open = OpenComponent(each)) {
      line << ' ' << GetComponentVersion(open);
      EXPECT_EQ(CloseComponent(open), noErr);
      EXPECT_EQ(GetComponentVersion(open), badComponentInstance);
      EXPECT_EQ(CloseComponent(open), invalidComponentID);
    }
    lines.push_back(line.str());
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
  std::pair<ComponentDescription, std::vector<Component>> cases[] = {
      {{0, 0, 0, 0, 0}, {1, 2, 3}},   {{1, 0, 0, 0, 0}, {1, 2}}, {{0, 2, 0, 0, 0}, {1, 3}},
      {{0, 0, 6, 0, 0}, {3}},         {{1, 2, 6, 0, 0}, {}},     {{0, 0, 0, 8, 4}, {1, 2, 3}},
      {{0, 0, 0, 8, 0xFFFFFFFF}, {}},
  };
  for (auto& [looking, expected] : cases) {
    std::vector<Component> found;
    for (Component at = 0; (at = FindNextComponent(at, &looking)) != 0;) found.push_back(at);
    EXPECT_EQ(found, expected);
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
  std::pair<char const*, std::string> const malformed[] = {
      {"nothing", ""},
      {"a long code", codes + "<key>Maker</key><string>\xC6\x92net</string>"},
      {"a number as code", codes + "<key>Type</key><integer>1</integer>"},
      {"a number as name", codes + "<key>Name</key><integer>1</integer>"},
      {"a long text", codes + "<key>Info</key><string>" + std::string(256, 'i') + "</string>"},
      {"a version as text", codes + "<key>Version</key><string>1</string>"},
      {"a negative version", codes + "<key>Version</key><integer>-1</integer>"},
      {"a large version", codes + "<key>Version</key><integer>4294967296</integer>"},
  };
  auto const with = [](RecordedTree const& tree, std::string const& entries) {
    return Documented(tree, "<key>Components</key><array><dict>" + entries + "</dict></array>");
  };
  for (auto const& [name, entries] : malformed) {
    SCOPED_TRACE(name);
    RecordedTree tree;
    EXPECT_EQ(with(tree, entries)->Components().Components().outcome(), Outcome::kMalformed);
    auto const capture = with(tree, entries + "</dict><dict>" + codes);
    for (int i = 0; i < 2; ++i) {  // each time anew
      AnnouncementLog log;
      auto const components = capture->Components().Components();
      ASSERT_EQ((*components)->size(), 1u);
      EXPECT_EQ((*components)->back().subtype, 0x00010203u);
      EXPECT_EQ(log.entries.size(), 2u);
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
