#include <CoreServices/CoreServices.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "evaluator/plugin/exceptions.h"
#include "inspectors/system/component.h"
#include "tests/support/real_function.h"
#include "tests/support/recording_evaluator.h"
#include "tests/support/scripted_machine.h"

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

// A text, or why there is none.
template <typename Ask>
std::string TextOf(Ask&& ask) {
  std::string text;
  try {
    inspector_string const string = ask();
    text.assign(reinterpret_cast<char const*>(string.start), string.length);
  } catch (NoSuchObject const&) {
    text = "no such object";
  } catch (MemoryFullError const& error) {
    text = "memory full " + std::to_string(error.Code());
  } catch (OSError const& error) {
    text = "error " + std::to_string(error.Code());
  }
  EXPECT_EQ(live_handles, 0);
  return text;
}

class Components : public testing::Test {
 protected:
  Components() { machine_->components = source_; }
  ~Components() override { refuses_handles = refuses_to_resize = false; }

  std::shared_ptr<SomeComponents> source_ = std::make_shared<SomeComponents>();
  std::shared_ptr<ScriptedMachine> machine_ = std::make_shared<ScriptedMachine>();
  MachineInUse use_{machine_};
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
  EXPECT_EQ(TextOf([&] { return type_of(first_); }), "AB_d");
  EXPECT_EQ(TextOf([&] { return subtype_of(first_); }), std::string("\0\xFF\n ", 4));
  EXPECT_EQ(TextOf([&] { return maker_of(first_); }), "appl");
  for (auto* const ask : {static_cast<inspector_string (*)(ComponentClass const&)>(type_of),
                          subtype_of, maker_of, name_of, info_of}) {
    EXPECT_EQ(TextOf([&] { return ask(none_); }), "error -3000");
  }
}

TEST_F(Components, TextsAreCopiedAndTheirHandlesDisposed) {
  auto const name = [](ComponentClass component) {
    return TextOf([&] { return name_of(component); });
  };
  auto const info = [](ComponentClass component) {
    return TextOf([&] { return info_of(component); });
  };
  EXPECT_EQ(name(first_), "Sound Output");
  EXPECT_EQ(info(first_), "");
  EXPECT_EQ(name(second_), "no such object");
  EXPECT_EQ(info(second_), std::string(255, '\xE9'));
  refuses_to_resize = true;
  EXPECT_EQ(name(first_), "error -108");
  EXPECT_EQ(name(second_), "no such object");
  refuses_handles = true;
  EXPECT_EQ(name(first_), "memory full -108");
  EXPECT_EQ(info(second_), "memory full -108");
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
  std::vector<std::string> phrases;
  for (RecordedRegistration const& each : RecordingEvaluator::Instance().registered) {
    if (each.name != "component" && each.object != "component") continue;
    EXPECT_EQ(each.fingerprint, nullptr);
    phrases.push_back(each.name + " " + each.plural);
    if (each.size != 0) phrases.back() += " " + std::to_string(each.size);
  }
  EXPECT_THAT(phrases, testing::ElementsAre("component  4", "maker makers", "type types",
                                            "subtype subtypes", "name names", "info infos",
                                            "version versions", "component components 4"));
}

}  // namespace
