#include <SystemConfiguration/SystemConfiguration.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "frameworks/CoreFoundation/file_system_text.h"
#include "tests/support/scripted_machine.h"

namespace {

constexpr uid_t kUntouched = 77;

std::string TakeText(CFStringRef string) {
  if (string == nullptr) return "nobody";
  std::string text = file_system_text::BytesOf(string);
  CFRelease(string);
  return text;
}

struct ConsoleCase {
  char const* name;
  std::vector<machine::RecordDictionary::Entry> published;
  char const* user;
  uid_t uid;
  int status;
};

TEST(DynamicStore, TellsTheConsoleUser) {
  ConsoleCase const cases[] = {
      {"somebody",
       {{"Name", std::string("ann")}, {"UID", std::int64_t{501}}, {"GID", std::int64_t{20}}},
       "ann",
       501,
       kSCStatusOK},
      {"nobody", {{"SessionInfo", machine::RecordArray()}}, "nobody", kUntouched, kSCStatusNoKey},
      {"no name but a number", {{"UID", std::int64_t{-2}}}, "nobody", 4294967294, kSCStatusNoKey},
      {"odd types",
       {{"Name", std::int64_t{1}}, {"UID", std::string("501")}},
       "nobody",
       kUntouched,
       kSCStatusNoKey},
  };
  auto const machine = std::make_shared<ScriptedMachine>();
  MachineInUse const use(machine);
  for (ConsoleCase const& row : cases) {
    machine->console_user = machine::RecordDictionary(row.published);
    uid_t uid = kUntouched;
    EXPECT_EQ(TakeText(SCDynamicStoreCopyConsoleUser(nullptr, &uid, nullptr)), row.user)
        << row.name;
    EXPECT_EQ(uid, row.uid) << row.name;
    EXPECT_EQ(SCError(), row.status) << row.name;
  }
}

TEST(DynamicStore, HasNoOtherValue) {
  auto const machine = std::make_shared<ScriptedMachine>();
  MachineInUse const use(machine);
  machine->console_user.emplace();
  EXPECT_EQ(SCDynamicStoreCreate(nullptr, nullptr, nullptr, nullptr), nullptr);
  SCDynamicStoreRef const store = SCDynamicStoreCreate(nullptr, CFSTR("test"), nullptr, nullptr);
  ASSERT_NE(store, nullptr);
  EXPECT_EQ(SCDynamicStoreCopyValue(store, CFSTR("State:/Network/Global/IPv4")), nullptr);
  EXPECT_EQ(SCError(), kSCStatusNoKey);
  machine->console_user.reset();
  machine->reason = machine::Outcome::kPermissionRefused;
  CFStringRef const key = SCDynamicStoreKeyCreateConsoleUser(nullptr);
  EXPECT_EQ(SCDynamicStoreCopyValue(store, key), nullptr);
  EXPECT_EQ(SCError(), kSCStatusAccessError);
  CFRelease(key);
  CFRelease(store);
}

}  // namespace
