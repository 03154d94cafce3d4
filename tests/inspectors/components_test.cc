#include <CoreServices/CoreServices.h>

#include "inspectors/system/component.h"
#include "tests/inspectors/asking.h"
#include "tests/support/on_scripted_machine.h"
#include "tests/support/real_function.h"

namespace {

int live_handles = 0, open_components = 0;
bool refuses_handles = false, refuses_to_resize = false;

}  // namespace

// In front of the real ones for the whole program, the frameworks included.
Handle NewHandle(Size size) {
  Handle const handle = refuses_handles ? nullptr : RealFunction<Handle(Size)>("NewHandle")(size);
  if (handle != nullptr) ++live_handles;
  return handle;
}

void DisposeHandle(Handle handle) {
  --live_handles;
  RealFunction<void(Handle)>("DisposeHandle")(handle);
}

void SetHandleSize(Handle handle, Size size) {
  constexpr Size kNever = -1;
  RealFunction<void(Handle, Size)>("SetHandleSize")(handle, refuses_to_resize ? kNever : size);
}

ComponentInstance OpenComponent(Component component) {
  auto const instance = RealFunction<ComponentInstance(Component)>("OpenComponent")(component);
  if (instance != 0) ++open_components;
  return instance;
}

OSErr CloseComponent(ComponentInstance instance) {
  OSErr const status = RealFunction<OSErr(ComponentInstance)>("CloseComponent")(instance);
  EXPECT_EQ(status, noErr);
  --open_components;
  return status;
}

namespace {

class SomeComponents final : public machine::ComponentSource {
 public:
  machine::Fact<machine::SharedComponents> Components() const override {
    return std::make_shared<std::vector<machine::Component> const>(list);
  }
  std::vector<machine::Component> list = {
      {0x41425F64, 0x00FF0A20, 0x6170706C, "Sound Output", "", 0x00020010},
      {0, 0, 0, {}, std::string(255, '\xE9'), {}}};
};

class Components : public OnScriptedMachine {
 protected:
  Components() { machine_->components = source_; }
  ~Components() override {
    refuses_handles = refuses_to_resize = false;
    EXPECT_EQ(live_handles, 0);
  }
  // What one function says of one component.
  static std::string Ask(inspector_string (*function)(ComponentClass const&),
                         ComponentClass const& component) {
    return Told([&] { return function(component); });
  }

  std::shared_ptr<SomeComponents> source_ = std::make_shared<SomeComponents>();
  ComponentClass const first_{1}, second_{2}, none_{3};
};

TEST_F(Components, ComeOneAfterTheOther) {
  ComponentIterator components;
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(components.First().Number(), 1u);
    EXPECT_EQ(components.Next().Number(), 2u);
    EXPECT_THROW(components.Next(), NoSuchObject);
  }
  source_->list.clear();
  EXPECT_THROW(components.First(), NoSuchObject);
  machine_->components = nullptr;
  EXPECT_THROW(components.First(), NoSuchObject);
}

TEST_F(Components, CodesBeginWithTheirMostSignificantByte) {
  EXPECT_EQ(Ask(type_of, first_), "AB_d");
  EXPECT_EQ(Ask(subtype_of, first_), std::string("\0\xFF\n ", 4));
  EXPECT_EQ(Ask(maker_of, first_), "appl");
  EXPECT_EQ(Ask(type_of, none_), "error -3000");
  EXPECT_EQ(Ask(subtype_of, none_), "error -3000");
  EXPECT_EQ(Ask(maker_of, none_), "error -3000");
}

TEST_F(Components, TextsAreCopiedAndTheirHandlesDisposed) {
  EXPECT_EQ(Ask(name_of, first_), "Sound Output");
  EXPECT_EQ(Ask(info_of, first_), "");
  EXPECT_EQ(Ask(name_of, second_), "no such object");
  EXPECT_EQ(Ask(info_of, second_), std::string(255, '\xE9'));
  EXPECT_EQ(Ask(name_of, none_), "error -3000");
  EXPECT_EQ(Ask(info_of, none_), "error -3000");
  refuses_to_resize = true;
  EXPECT_EQ(Ask(name_of, first_), "error -108");
  EXPECT_EQ(Ask(name_of, second_), "no such object");
  refuses_handles = true;
  EXPECT_EQ(Ask(name_of, first_), "memory full -108");
  EXPECT_EQ(Ask(info_of, second_), "memory full -108");
}

TEST_F(Components, VersionsAreTwoWholeNumbers) {
  struct {
    std::uint32_t word;
    int major, minor;
  } const cases[] = {{0x00020010, 2, 16}, {0xFFFF8000, 65535, 32768}, {0x80008001, 32768, 32769}};
  for (auto const& row : cases) {
    source_->list[0].version = row.word;
    inspector_version const version = version_of(first_);
    EXPECT_EQ(version.major, row.major);
    EXPECT_EQ(version.minor, row.minor);
    EXPECT_EQ(version.bug_fix + version.stage + version.non_release_revision, 0);
  }
  EXPECT_THROW(version_of(second_), NoSuchObject);
  EXPECT_THROW(version_of(none_), NoSuchObject);
  EXPECT_EQ(open_components, 0);
}

TEST_F(Components, AreRegisteredInTheirOrder) {
  EXPECT_THAT(
      RegisteredOf({"component"}),
      testing::ElementsAre("component 4", "makers of component", "types of component",
                           "subtypes of component", "names of component", "infos of component",
                           "versions of component", "components of  4"));
}

}  // namespace
