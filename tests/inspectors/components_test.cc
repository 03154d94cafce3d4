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
  std::shared_ptr<SomeComponents> source_ = std::make_shared<SomeComponents>();
  ComponentClass const first_{1}, second_{2}, none_{3};
};

TEST_F(Components, ComeOneAfterTheOther) {
  EXPECT_NE(RecordingEvaluator::Instance().Find("Iterated_Property", "component"), nullptr);
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
  std::vector<std::string> const codes = {"type", "subtype", "maker"};
  EXPECT_EQ(Answers(codes, "component", &first_), std::string("AB_d, \0\xFF\n , appl", 16));
  EXPECT_EQ(Answers(codes, "component", &none_), "error -3000, error -3000, error -3000");
}

TEST_F(Components, TextsAreCopiedAndTheirHandlesDisposed) {
  auto const texts = [](ComponentClass const& component) {
    return Answers({"name", "info"}, "component", &component);
  };
  EXPECT_EQ(texts(first_), "Sound Output, ");
  EXPECT_EQ(texts(second_), kNone + ", " + std::string(255, '\xE9'));
  EXPECT_EQ(texts(none_), "error -3000, error -3000");
  refuses_to_resize = true;
  EXPECT_EQ(texts(first_), "error -108, error -108");
  EXPECT_EQ(Answer("name", "component", &second_), kNone);
  refuses_handles = true;
  EXPECT_EQ(texts(first_), "memory full -108, memory full -108");
}

TEST_F(Components, VersionsAreTwoWholeNumbers) {
  std::pair<std::uint32_t, char const*> const cases[] = {{0x00020010, "2 16 0 0 0"},
                                                         {0xFFFF8000, "65535 32768 0 0 0"},
                                                         {0x80008001, "32768 32769 0 0 0"}};
  for (auto const& [word, version] : cases) {
    source_->list[0].version = word;
    EXPECT_EQ(Answer("version", "component", &first_), version);
  }
  EXPECT_EQ(Answer("version", "component", &second_), kNone);
  EXPECT_EQ(Answer("version", "component", &none_), kNone);
  EXPECT_EQ(open_components, 0);
}

}  // namespace
