#include <SystemConfiguration/SystemConfiguration.h>

#include "frameworks/CoreFoundation/object.h"
#include "frameworks/CoreFoundation/recorded_facts.h"
#include "machine/machine.h"

// A session keeps nothing: each question goes to the machine in use.
struct __SCDynamicStore final : CFObject {
  __SCDynamicStore() : CFObject(kSCTypeDynamicStore) {}
};

namespace {

thread_local int last_status = kSCStatusOK;

std::nullptr_t Fail(int status) {
  last_status = status;
  return nullptr;
}

int StatusOf(machine::Outcome outcome) {
  switch (outcome) {
    case machine::Outcome::kPermissionRefused:
      return kSCStatusAccessError;
    case machine::Outcome::kNotSupported:
      return kSCStatusNoStoreServer;
    case machine::Outcome::kAbsent:
      return kSCStatusNoKey;
    default:
      return kSCStatusFailed;
  }
}

CFStringRef ConsoleUserKey() { return CFSTR("State:/Users/ConsoleUser"); }

template <typename Number>
void GetNumber(CFDictionaryRef dictionary, CFStringRef key, Number* number) {
  void const* const value = CFDictionaryGetValue(dictionary, key);
  if (number == nullptr || value == nullptr || CFGetTypeID(value) != CFNumberGetTypeID()) return;
  SInt64 wide = 0;
  CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &wide);
  *number = static_cast<Number>(wide);
}

}  // namespace

int SCError() { return last_status; }

CFTypeID SCDynamicStoreGetTypeID() { return kSCTypeDynamicStore; }

SCDynamicStoreRef SCDynamicStoreCreate(CFAllocatorRef, CFStringRef name,
                                       SCDynamicStoreCallBack callout, SCDynamicStoreContext*) {
  if (name == nullptr || callout != nullptr) return Fail(kSCStatusInvalidArgument);
  last_status = kSCStatusOK;
  return CFObject::Make<__SCDynamicStore>();
}

CFStringRef SCDynamicStoreKeyCreateConsoleUser(CFAllocatorRef) {
  return static_cast<CFStringRef>(CFRetain(ConsoleUserKey()));
}

CFPropertyListRef SCDynamicStoreCopyValue(SCDynamicStoreRef, CFStringRef key) {
  if (key == nullptr) return Fail(kSCStatusInvalidArgument);
  if (!CFEqual(key, ConsoleUserKey())) return Fail(kSCStatusNoKey);
  auto const user = machine::CurrentMachine().Sessions().ConsoleUser();
  if (!user) return Fail(StatusOf(user.outcome()));
  last_status = kSCStatusOK;
  return CreateRecordedDictionary(*user);
}

CFStringRef SCDynamicStoreCopyConsoleUser(SCDynamicStoreRef store, uid_t* uid, gid_t* gid) {
  CFPropertyListRef const value = SCDynamicStoreCopyValue(store, ConsoleUserKey());
  if (value == nullptr) return nullptr;
  auto const dictionary = static_cast<CFDictionaryRef>(value);
  void const* name = CFDictionaryGetValue(dictionary, kSCPropUsersConsoleUserName);
  if (name != nullptr && CFGetTypeID(name) != CFStringGetTypeID()) name = nullptr;
  if (name == nullptr) last_status = kSCStatusNoKey;
  if (name != nullptr) CFRetain(name);
  GetNumber(dictionary, kSCPropUsersConsoleUserUID, uid);
  GetNumber(dictionary, kSCPropUsersConsoleUserGID, gid);
  CFRelease(value);
  return static_cast<CFStringRef>(name);
}
