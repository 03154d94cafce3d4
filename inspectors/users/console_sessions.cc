#include "inspectors/users/console_sessions.h"

#include <CoreServices/CoreServices.h>
#include <SystemConfiguration/SystemConfiguration.h>

#include <algorithm>
#include <array>
#include <vector>

#include "frame/combine.h"
#include "inspectors/users/session_info.h"

namespace MacintoshPlatform {
namespace {

AutoCF<CFMutableArrayRef> known_sessions;
AutoCFString console_user_key;
AutoCF<SCDynamicStoreRef> store;

// Null where the key is missing or its value is of another type.
template <typename Reference>
Reference ValueOf(CFDictionaryRef dictionary, CFStringRef key, CFTypeID type) {
  void const* const value = CFDictionaryGetValue(dictionary, key);
  bool const is_of_type = value != nullptr && CFGetTypeID(value) == type;
  return is_of_type ? static_cast<Reference>(value) : nullptr;
}

std::int64_t NumberOf(CFDictionaryRef dictionary, CFStringRef key, std::int64_t missing) {
  auto const value = ValueOf<CFNumberRef>(dictionary, key, CFNumberGetTypeID());
  if (value == nullptr) return missing;
  std::int64_t number = missing;
  CFNumberGetValue(value, kCFNumberSInt64Type, &number);
  return number;
}

bool IsTrue(CFDictionaryRef dictionary, CFStringRef key) {
  auto const value = ValueOf<CFBooleanRef>(dictionary, key, CFBooleanGetTypeID());
  return value != nullptr && CFBooleanGetValue(value) != 0;
}

std::int64_t SessionID(CFDictionaryRef session) {
  return NumberOf(session, CFSTR("kCGSSessionIDKey"), 0);
}

std::vector<void const*> ItemsOf(CFArrayRef array) {
  std::vector<void const*> items(static_cast<std::size_t>(CFArrayGetCount(array)));
  CFArrayGetValues(array, CFRangeMake(0, CFArrayGetCount(array)), items.data());
  return items;
}

bool IsPanther() {
  SInt32 version = 0;
  return Gestalt(Combine('s', 'y', 's', 'v'), &version) == noErr && version > 0x102F &&
         version <= 0x103F;
}

// Whether somebody is in front of the console. What is no text cannot be the login screen's name.
bool HasUser(CFDictionaryRef console_user) {
  void const* const name = CFDictionaryGetValue(console_user, kSCPropUsersConsoleUserName);
  return name != nullptr && !CFEqual(name, CFSTR("loginwindow"));
}

bool MustBeFinished(CFDictionaryRef session) {
  return !IsTrue(session, CFSTR("kCGSessionLoginDoneKey")) &&
         IsTrue(session, CFSTR("kCGSSessionOnConsoleKey"));
}

AutoCF<CFMutableDictionaryRef> Finished(CFDictionaryRef session) {
  AutoCF<CFMutableDictionaryRef> copy;
  copy.Seize(CFDictionaryCreateMutableCopy(nullptr, 0, session));
  CFDictionarySetValue(copy.Get(), CFSTR("kCGSessionLoginDoneKey"), kCFBooleanTrue);
  return copy;
}

AutoCFDictionary CopyConsoleUser() {
  AutoCF<CFPropertyListRef> value;
  value.Seize(SCDynamicStoreCopyValue(store.Get(), console_user_key.Get()));
  if (value.Get() == nullptr || CFGetTypeID(value.Get()) != CFDictionaryGetTypeID()) {
    throw MacUnableToGetSessionList();
  }
  return ResourceTransfer(static_cast<CFDictionaryRef>(value.Release()));
}

// The caller's own, sorted. Numbers that are equal keep their order.
AutoCF<CFMutableArrayRef> CopySessions(CFDictionaryRef console_user) {
  auto const published =
      ValueOf<CFArrayRef>(console_user, CFSTR("SessionInfo"), CFArrayGetTypeID());
  if (published == nullptr) throw MacUnableToGetSessionList();
  std::vector<void const*> sessions = ItemsOf(published);
  for (void const* const session : sessions) {
    if (CFGetTypeID(session) != CFDictionaryGetTypeID()) throw MacUnableToGetSessionList();
  }
  std::stable_sort(sessions.begin(), sessions.end(), [](void const* left, void const* right) {
    return SessionIDComparator(left, right, nullptr) == kCFCompareLessThan;
  });
  AutoCF<CFMutableArrayRef> sorted;
  sorted.Seize(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
  for (void const* const session : sessions) CFArrayAppendValue(sorted.Get(), session);
  return sorted;
}

}  // namespace

SessionInfo::SessionInfo(CFDictionaryRef session)
    : session_id(SessionID(session)),
      user_id(static_cast<std::uint32_t>(NumberOf(session, CFSTR("kCGSSessionUserIDKey"), -2))) {
  GetUserName(CFDictionaryGetValue(session, CFSTR("kCGSSessionUserNameKey")), user_name);
}

bool GetUserName(CFTypeRef string, std::string& text) {
  if (string == nullptr || CFGetTypeID(string) != CFStringGetTypeID()) return false;
  auto const name = static_cast<CFStringRef>(string);
  std::array<UInt8, 1024> buffer;
  CFIndex size = 0;
  CFIndex const length = CFStringGetLength(name);
  CFIndex const converted =
      CFStringGetBytes(name, CFRangeMake(0, length), kCFStringEncodingUTF8, 0, false, buffer.data(),
                       static_cast<CFIndex>(buffer.size()), &size);
  if (converted != length) return false;
  text.assign(buffer.begin(), buffer.begin() + size);
  return true;
}

bool InitSessionInfo() {
  known_sessions.Seize(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
  if (known_sessions.Get() == nullptr) return false;
  console_user_key.Seize(SCDynamicStoreKeyCreateConsoleUser(nullptr));
  if (console_user_key.Get() == nullptr) return false;
  store.Seize(SCDynamicStoreCreate(nullptr, CFSTR("KPXAgent"), nullptr, nullptr));
  return store.Get() != nullptr;
}

void ShutdownSessionInfo() {
  store.Seize(nullptr);
  console_user_key.Seize(nullptr);
  known_sessions.Seize(nullptr);
}

CFComparisonResult SessionIDComparator(void const* left, void const* right, void*) {
  std::int64_t const left_id = SessionID(static_cast<CFDictionaryRef>(left));
  std::int64_t const right_id = SessionID(static_cast<CFDictionaryRef>(right));
  if (left_id == right_id) return kCFCompareEqualTo;
  return left_id < right_id ? kCFCompareLessThan : kCFCompareGreaterThan;
}

void FinishLoginsOnConsole(CFMutableArrayRef sessions, CFDictionaryRef console_user) {
  if (!IsPanther() || !HasUser(console_user)) return;
  for (CFIndex i = 0; i < CFArrayGetCount(sessions); ++i) {
    auto const session = static_cast<CFDictionaryRef>(CFArrayGetValueAtIndex(sessions, i));
    if (MustBeFinished(session)) CFArraySetValueAtIndex(sessions, i, Finished(session).Get());
  }
}

std::list<SessionInfo> GetLoggedOnSessions() {
  AutoCFDictionary const console_user = CopyConsoleUser();
  AutoCF<CFMutableArrayRef> const sessions = CopySessions(console_user.Get());
  FinishLoginsOnConsole(sessions.Get(), console_user.Get());
  std::list<SessionInfo> infos;
  for (void const* const session : ItemsOf(sessions.Get())) {
    infos.emplace_back(static_cast<CFDictionaryRef>(session));
  }
  return infos;
}

std::list<LoggedInUser> GetLoggedInUsers() {
  std::list<LoggedInUser> users;
  if (!::SessionInfo::Initialize()) return users;
  ::SessionInfo::RefreshList();
  for (::SessionInfo const& session : ::SessionInfo::GetList()) {
    users.push_back(TakeApart(session.UserName()));
  }
  return users;
}

}  // namespace MacintoshPlatform
