#include <SystemConfiguration/SystemConfiguration.h>

#include "frameworks/CoreFoundation/file_system_text.h"
#include "tests/support/on_scripted_machine.h"

namespace {

using DynamicStore = OnScriptedMachine;

TEST_F(DynamicStore, TellsTheConsoleUser) {
  using Entries = std::vector<machine::RecordDictionary::Entry>;
  constexpr uid_t kUntouched = 77;
  std::tuple<char const*, char const*, uid_t, int, Entries> const cases[] = {
      {"somebody",
       "ann",
       501,
       kSCStatusOK,
       {{"Name", std::string("ann")}, {"UID", std::int64_t{501}}, {"GID", std::int64_t{20}}}},
      {"nobody", "", kUntouched, kSCStatusNoKey, {{"SessionInfo", machine::RecordArray()}}},
      {"no name but a number", "", 4294967294, kSCStatusNoKey, {{"UID", std::int64_t{-2}}}},
      {"odd types",
       "",
       kUntouched,
       kSCStatusNoKey,
       {{"Name", std::int64_t{1}}, {"UID", std::string("501")}}},
  };
  for (auto const& [name, expected, expected_uid, status, published] : cases) {
    SCOPED_TRACE(name);
    machine_->console_user = machine::RecordDictionary(published);
    uid_t uid = kUntouched;
    CFStringRef const user = SCDynamicStoreCopyConsoleUser(nullptr, &uid, nullptr);
    EXPECT_EQ(user == nullptr ? "" : file_system_text::BytesOf(user), expected);
    EXPECT_EQ(uid, expected_uid);
    EXPECT_EQ(SCError(), status);
    if (user != nullptr) CFRelease(user);
  }
}

TEST_F(DynamicStore, HasNoOtherValue) {
  machine_->console_user.emplace();
  EXPECT_EQ(SCDynamicStoreCreate(nullptr, nullptr, nullptr, nullptr), nullptr);
  SCDynamicStoreRef const store = SCDynamicStoreCreate(nullptr, CFSTR("test"), nullptr, nullptr);
  ASSERT_NE(store, nullptr);
  EXPECT_EQ(SCDynamicStoreCopyValue(store, CFSTR("State:/Network/Global/IPv4")), nullptr);
  EXPECT_EQ(SCError(), kSCStatusNoKey);
  machine_->console_user.reset();
  machine_->reason = machine::Outcome::kPermissionRefused;
  CFStringRef const key = SCDynamicStoreKeyCreateConsoleUser(nullptr);
  EXPECT_EQ(SCDynamicStoreCopyValue(store, key), nullptr);
  EXPECT_EQ(SCError(), kSCStatusAccessError);
  CFRelease(key);
  CFRelease(store);
}

}  // namespace
