#include <cmath>
#include <thread>

#include "tests/frameworks/cf_text.h"
#include "tests/support/on_scripted_machine.h"

namespace {

TEST(Object, LivesAsLongAsItIsCounted) {
  OwnedString const text = Make("text", kCFStringEncodingASCII);
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int j = 0; j < 10000; ++j) CFRetain(text.get());
      for (int j = 0; j < 10000; ++j) CFRelease(text.get());
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(CFGetRetainCount(text.get()), 1);
  EXPECT_EQ(CFRetain(text.get()), text.get());
  EXPECT_EQ(CFGetRetainCount(text.get()), 2);
  CFRelease(text.get());
  EXPECT_EQ(CFGetTypeID(text.get()), CFStringGetTypeID());
}

TEST(String, IsEqualByItsUnitsHoweverMade) {
  UniChar const units[] = {'Z', 0xEB};
  OwnedString const wide(CFStringCreateWithCharacters(nullptr, units, 2));
  OwnedString const mac = Make("Z\x91", kCFStringEncodingMacRoman);
  unsigned char const pascal[] = {2, 'Z', 0xEB};
  OwnedString const latin(
      CFStringCreateWithPascalString(nullptr, pascal, kCFStringEncodingISOLatin1));
  OwnedString const c(CFStringCreateWithCString(nullptr, "Zë", kCFStringEncodingUTF8));
  for (CFStringRef other : {mac.get(), latin.get(), c.get()}) {
    EXPECT_TRUE(CFEqual(wide.get(), other));
    EXPECT_EQ(CFHash(wide.get()), CFHash(other));
    EXPECT_EQ(CFStringCompare(wide.get(), other, 0), kCFCompareEqualTo);
  }
  EXPECT_FALSE(CFEqual(wide.get(), CFSTR("Ze")));
  EXPECT_EQ(CFStringCreateWithCString(nullptr, nullptr, 0), nullptr);
  EXPECT_EQ(CFStringCreateWithBytes(nullptr, nullptr, -1, 0, false), nullptr);
}

TEST(String, ComparesByUnitsAndWithoutCaseWhenAsked) {
  EXPECT_EQ(CFStringCompare(CFSTR("a"), CFSTR("b"), 0), kCFCompareLessThan);
  EXPECT_EQ(CFStringCompare(CFSTR("ab"), CFSTR("a"), 0), kCFCompareGreaterThan);
  EXPECT_EQ(CFStringCompare(CFSTR("B"), CFSTR("a"), 0), kCFCompareLessThan);
  EXPECT_EQ(CFStringCompare(CFSTR("STRAẞE𐐀É"), CFSTR("straße𐐨é"), kCFCompareCaseInsensitive),
            kCFCompareEqualTo);
}

TEST(String, GivesUnitsAndPartsInsideIt) {
  OwnedString const text = Make("Zoë", kCFStringEncodingUTF8);
  UniChar units[2];
  CFStringGetCharacters(text.get(), CFRangeMake(1, 2), units);
  EXPECT_EQ(units[1], CFStringGetCharacterAtIndex(text.get(), 2));
  CFIndex used = -1;
  EXPECT_EQ(CFStringGetBytes(text.get(), CFRangeMake(1, 1), 0, 0, false, nullptr, 0, &used), 1);
  EXPECT_EQ(used, 1);
  for (CFRange range : {CFRangeMake(2, 2), CFRangeMake(-1, 1), CFRangeMake(0, -1)}) {
    EXPECT_EQ(CFStringGetBytes(text.get(), range, 0, 0, false, nullptr, 0, &used), 0);
    EXPECT_EQ(used, 0);
  }
  char buffer[8];
  EXPECT_TRUE(CFStringGetCString(text.get(), buffer, 5, kCFStringEncodingUTF8));
  EXPECT_STREQ(buffer, "Zoë");
  EXPECT_FALSE(CFStringGetCString(text.get(), buffer, 4, kCFStringEncodingUTF8));
  EXPECT_FALSE(CFStringGetCString(text.get(), buffer, 8, kCFStringEncodingASCII));
  EXPECT_EQ(CFSTR("constant"), CFSTR("constant"));
}

using Clock = OnScriptedMachine;

TEST_F(Clock, IsTheMachinesToTheMicrosecond) {
  EXPECT_TRUE(std::isnan(CFAbsoluteTimeGetCurrent()));
  for (std::int64_t moment : {1'700'000'000'123'457, 0L, 253'402'300'799'999'999}) {
    machine_->microseconds = moment;
    double const since_1970 = CFAbsoluteTimeGetCurrent() + kCFAbsoluteTimeIntervalSince1970;
    EXPECT_NEAR(since_1970 * 1e6, static_cast<double>(moment), moment > 1e17 ? 64 : 0.5);
  }
}

TEST_F(Clock, HasTheTimeZoneOfTheMachine) {
  EXPECT_EQ(CFTimeZoneCopySystem(), nullptr);
  machine_->SetZone("Europe/Berlin", "CET-1CEST,M3.5.0,M10.5.0/3");
  Owned<CFTimeZoneRef> const zone(CFTimeZoneCopySystem());
  EXPECT_TRUE(CFEqual(CFTimeZoneGetName(zone.get()), CFSTR("Europe/Berlin")));
  constexpr CFAbsoluteTime kSummer = 1'719'792'000 - kCFAbsoluteTimeIntervalSince1970;
  constexpr CFAbsoluteTime kWinter = kSummer - 180 * 86400.0;
  EXPECT_EQ(CFTimeZoneGetSecondsFromGMT(zone.get(), kSummer), 7200);
  EXPECT_EQ(CFTimeZoneGetSecondsFromGMT(zone.get(), kWinter), 3600);
  EXPECT_EQ(CFTimeZoneGetDaylightSavingTimeOffset(zone.get(), kSummer), 3600);
  EXPECT_FALSE(CFTimeZoneIsDaylightSavingTime(zone.get(), kWinter));
  EXPECT_EQ(CFTimeZoneGetSecondsFromGMT(zone.get(), INFINITY), 3600);
}

}  // namespace
