// Numbers, dates, data, arrays and dictionaries.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "tests/frameworks/property_list_print.h"

namespace {

using OwnedNumber = Owned<CFNumberRef>;

template <typename Value>
OwnedNumber Number(CFNumberType type, Value value) {
  return OwnedNumber(CFNumberCreate(nullptr, type, &value));
}

OwnedNumber Integer(SInt64 value) { return Number(kCFNumberSInt64Type, value); }

// The whole range, from two words.
OwnedNumber Wide(SInt64 high, UInt64 low) {
  return Number(kCFNumberSInt128Type, CFSInt128Struct{high, low});
}

OwnedNumber Real(double value) { return Number(kCFNumberFloat64Type, value); }

TEST(Number, TellsALossyConversion) {
  constexpr SInt32 kMostLong = 0x7FFFFFFF, kLeastLong = -kMostLong - 1;
  // In four bytes and in eight, each with whether it is exact, and whether it is as a double.
  std::tuple<OwnedNumber, SInt32, bool, SInt64, bool, bool> const rows[] = {
      {Integer(-7), -7, true, -7, true, true},
      {Integer(0x7FFFFFFF), kMostLong, true, 0x7FFFFFFF, true, true},
      {Integer(0x80000000), kMostLong, false, 0x80000000, true, true},
      {Integer(INT64_MIN), kLeastLong, false, INT64_MIN, true, true},
      {Integer(INT64_MAX), kMostLong, false, INT64_MAX, true, false},
      {Wide(0, UINT64_MAX), kMostLong, false, INT64_MAX, false, false},
      {Wide(0, UINT64_C(1) << 63), kMostLong, false, INT64_MAX, false, true},
      {Wide(-1, static_cast<UInt64>(INT64_MIN)), kLeastLong, false, INT64_MIN, true, true},
      {Real(3.0), 3, true, 3, true, true},
      {Real(-3.75), -3, false, -3, false, true},
      {Real(1e300), kMostLong, false, INT64_MAX, false, true},
      {Real(-0x1p63), kLeastLong, false, INT64_MIN, true, true},
      {Real(0x1p63), kMostLong, false, INT64_MAX, false, true},
      {Real(std::nan("")), 0, false, 0, false, true},
      {Number(kCFNumberFloat32Type, 0.5f), 0, false, 0, false, true},
  };
  for (auto const& [number, as_long, is_exact_long, as_64, is_exact_64, is_exact_double] : rows) {
    SCOPED_TRACE(Print(number.get()));
    // Four bytes and not one more.
    SInt32 found_long[2] = {99, 99};
    SInt64 found_64 = 99;
    double found_double = 99;
    EXPECT_EQ(CFNumberGetValue(number.get(), kCFNumberLongType, found_long), is_exact_long);
    EXPECT_THAT(found_long, testing::ElementsAre(as_long, 99));
    EXPECT_EQ(CFNumberGetValue(number.get(), kCFNumberSInt64Type, &found_64), is_exact_64);
    EXPECT_EQ(found_64, as_64);
    EXPECT_EQ(CFNumberGetValue(number.get(), kCFNumberDoubleType, &found_double), is_exact_double);
  }
  float narrow = 0;
  EXPECT_FALSE(CFNumberGetValue(Real(0.1).get(), kCFNumberFloatType, &narrow));
  EXPECT_EQ(narrow, 0.1f);
  CFSInt128Struct whole = {};
  EXPECT_TRUE(CFNumberGetValue(Wide(0, UINT64_MAX).get(), kCFNumberSInt128Type, &whole));
  EXPECT_EQ(whole.low, UINT64_MAX);
  EXPECT_FALSE(CFNumberGetValue(Real(0).get(), static_cast<CFNumberType>(99), &whole));
  EXPECT_EQ(Wide(1, 0), nullptr);
  EXPECT_EQ(Wide(-1, 0), nullptr);
  EXPECT_EQ(Number(static_cast<CFNumberType>(0), 0), nullptr);
}

TEST(Number, IsEqualAndOrderedByValueWhateverItsType) {
  std::pair<int, OwnedNumber> const ranked[] = {{0, Real(std::nan(""))},
                                                {1, Real(-INFINITY)},
                                                {2, Integer(INT64_MIN)},
                                                {3, Integer(-3)},
                                                {3, Number(kCFNumberSInt8Type, SInt8(-3))},
                                                {4, Real(-0.5)},
                                                {5, Integer(0)},
                                                {5, Real(0.0)},
                                                {5, Real(-0.0)},
                                                {6, Real(0.5)},
                                                {7, Integer(5)},
                                                {7, Real(5)},
                                                {8, Integer((1L << 53) + 1)},
                                                {9, Real(0x1p53 + 2)},
                                                {10, Integer(INT64_MAX)},
                                                {11, Real(0x1p63)},
                                                {11, Wide(0, UINT64_C(1) << 63)},
                                                {12, Wide(0, (UINT64_C(1) << 63) + 1)},
                                                {13, Wide(0, UINT64_MAX)},
                                                {14, Real(0x1p64)}};
  for (auto const& [rank, number] : ranked) {
    for (auto const& [other_rank, other] : ranked) {
      SCOPED_TRACE(Print(number.get()) + " and " + Print(other.get()));
      EXPECT_EQ(CFNumberCompare(number.get(), other.get(), nullptr),
                (rank > other_rank) - (rank < other_rank));
      EXPECT_EQ(CFEqual(number.get(), other.get()), rank == other_rank);
      EXPECT_TRUE(rank != other_rank || CFHash(number.get()) == CFHash(other.get()));
    }
  }
}

TEST(Constants, EndNeverAndAreThemselves) {
  for (CFTypeRef const constant : {CFTypeRef{kCFBooleanTrue}, CFTypeRef{kCFNull}}) {
    for (int i = 0; i < 3; ++i) CFRelease(constant);
    EXPECT_EQ(CFRetain(constant), constant);
    EXPECT_FALSE(CFEqual(constant, kCFBooleanFalse));
  }
  EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
}

TEST(Array, AnswersNullOutsideAndKeepsWhatItHolds) {
  OwnedNumber const number = Integer(1);
  void const* values[] = {number.get(), CFSTR("x")};
  Owned<CFArrayRef> const owner(CFArrayCreate(nullptr, values, 2, &kCFTypeArrayCallBacks));
  CFArrayRef const array = owner.get();
  EXPECT_EQ(CFGetRetainCount(number.get()), 2);
  EXPECT_EQ(CFArrayGetValueAtIndex(array, 1), CFSTR("x"));
  for (CFIndex const outside : {CFIndex{-1}, CFIndex{2}, CFIndex{0x7FFFFFFF}}) {
    EXPECT_EQ(CFArrayGetValueAtIndex(array, outside), nullptr);
  }
  EXPECT_EQ(CFArrayGetFirstIndexOfValue(array, CFRangeMake(0, 2), Real(1).get()), 0);
  EXPECT_EQ(CFArrayGetFirstIndexOfValue(array, CFRangeMake(1, 2), Real(1).get()), kCFNotFound);
  void const* part[2] = {};
  CFArrayGetValues(array, CFRangeMake(1, 1), part);
  EXPECT_EQ(part[0], CFSTR("x"));
  CFArrayRemoveAllValues(const_cast<CFMutableArrayRef>(array));
  EXPECT_EQ(CFArrayGetCount(array), 2);
  EXPECT_EQ(CFArrayCreate(nullptr, nullptr, -1, nullptr), nullptr);
  int const plain = 0;
  void const* pointers[] = {&plain, nullptr};
  Owned<CFArrayRef> const others(CFArrayCreate(nullptr, pointers, 2, nullptr));
  EXPECT_EQ(CFArrayGetValueAtIndex(others.get(), 0), &plain);
}

TEST(Array, ChangesWhenItIsMutable) {
  CFMutableArrayRef const array = CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
  OwnedObject const owner(array);
  OwnedNumber const number = Integer(7);
  CFArrayAppendValue(array, CFSTR("a"));
  CFArrayInsertValueAtIndex(array, 0, number.get());
  CFArraySetValueAtIndex(array, 2, CFSTR("c"));
  CFArrayAppendArray(array, array, CFRangeMake(0, 2));
  EXPECT_EQ(Print(array), R"([7,"a","c",7,"a"])");
  EXPECT_EQ(CFGetRetainCount(number.get()), 3);
  OwnedObject const copy(CFArrayCreateCopy(nullptr, array));
  CFArraySetValueAtIndex(array, 0, CFSTR("z"));
  CFArrayRemoveValueAtIndex(array, 3);
  CFArrayRemoveValueAtIndex(array, 4);
  CFArrayInsertValueAtIndex(array, 9, number.get());
  EXPECT_EQ(Print(array), R"(["z","a","c","a"])");
  EXPECT_EQ(Print(copy.get()), R"([7,"a","c",7,"a"])");
  EXPECT_EQ(CFGetRetainCount(number.get()), 3);
  CFArrayRemoveAllValues(array);
  EXPECT_EQ(CFArrayGetCount(array), 0);
}

// Against the standard library's map, through the sizes at which the table changes its form.
TEST(Dictionary, FindsWhatAMapFinds) {
  std::mt19937 random(7);
  for (int const range : {6, 30, 600, 5000}) {
    CFMutableDictionaryRef const dictionary = CFDictionaryCreateMutable(
        nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    OwnedObject const owner(dictionary);
    std::map<SInt64, SInt64> expected;
    for (int round = 0; round < 3 * range + 50; ++round) {
      SInt64 const name = static_cast<SInt64>(random()) % range;
      OwnedNumber const key = Integer(name), value = Integer(round);
      switch (random() % 5) {
        case 0:
          CFDictionaryRemoveValue(dictionary, key.get());
          expected.erase(name);
          break;
        case 1:
          CFDictionaryAddValue(dictionary, key.get(), value.get());
          expected.emplace(name, round);
          break;
        case 2:
          CFDictionaryReplaceValue(dictionary, key.get(), value.get());
          if (expected.contains(name)) expected[name] = round;
          break;
        default:
          CFDictionarySetValue(dictionary, key.get(), value.get());
          expected[name] = round;
      }
    }
    Owned<CFDictionaryRef> const copy(CFDictionaryCreateCopy(nullptr, dictionary));
    EXPECT_TRUE(CFEqual(copy.get(), dictionary));
    for (CFDictionaryRef const one : {CFDictionaryRef{dictionary}, copy.get()}) {
      ASSERT_EQ(CFDictionaryGetCount(one), static_cast<CFIndex>(expected.size()));
      for (SInt64 name = 0; name < range; ++name) {
        void const* value = nullptr;
        ASSERT_EQ(CFDictionaryGetValueIfPresent(one, Integer(name).get(), &value),
                  expected.contains(name));
        ASSERT_TRUE(value == nullptr || CFEqual(value, Integer(expected[name]).get()));
      }
    }
    CFDictionaryRemoveAllValues(dictionary);
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 0);
  }
}

TEST(Dictionary, KeepsTheFirstOfEqualKeysInOrder) {
  std::vector<OwnedString> texts;
  for (int i = 0; i < 70'000; ++i) {
    texts.push_back(Make("key " + std::to_string(i), kCFStringEncodingASCII));
  }
  for (std::size_t const count : {3, 8, 9, 255, 256, 70'000}) {
    std::vector<void const*> keys, values;
    for (std::size_t i = 0; i < 2 * count; ++i) {
      keys.push_back(texts[i % count].get());
      values.push_back(texts[i < count ? i : 0].get());
    }
    Owned<CFDictionaryRef> const owner(
        CFDictionaryCreate(nullptr, keys.data(), values.data(), static_cast<CFIndex>(2 * count),
                           &kCFCopyStringDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    CFDictionaryRef const dictionary = owner.get();
    ASSERT_EQ(CFDictionaryGetCount(dictionary), static_cast<CFIndex>(count));
    std::vector<void const*> found_keys(count), found_values(count);
    CFDictionaryGetKeysAndValues(dictionary, found_keys.data(), found_values.data());
    keys.resize(count);
    EXPECT_EQ(found_keys, keys);
    EXPECT_EQ(found_values, keys);
    for (auto const* key : keys) ASSERT_EQ(CFDictionaryGetValue(dictionary, key), key);
    EXPECT_EQ(CFDictionaryGetValue(dictionary, CFSTR("absent")), nullptr);
    EXPECT_TRUE(CFDictionaryContainsValue(dictionary, texts[1].get()));
  }
  for (auto const& text : texts) EXPECT_EQ(CFGetRetainCount(text.get()), 1);
}

// Arrays and dictionaries in turn, each holding the one inside it once or twice.
OwnedObject Nest(int depth, CFTypeRef innermost, CFIndex times) {
  OwnedObject object(CFRetain(innermost));
  for (int i = 0; i < depth; ++i) {
    void const* values[] = {object.get(), object.get()};
    void const* keys[] = {CFSTR("k"), CFSTR("l")};
    if (i % 2 == 0) {
      object.reset(CFArrayCreate(nullptr, values, times, &kCFTypeArrayCallBacks));
    } else {
      object.reset(CFDictionaryCreate(nullptr, keys, values, times, &kCFTypeDictionaryKeyCallBacks,
                                      &kCFTypeDictionaryValueCallBacks));
    }
  }
  return object;
}

TEST(Containers, AreComparedAndReleasedAtAnyDepth) {
  OwnedObject const deep = Nest(300'000, CFSTR("x"), 1);
  OwnedObject const same = Nest(300'000, CFSTR("x"), 1);
  OwnedObject const other = Nest(300'000, CFSTR("y"), 1);
  EXPECT_TRUE(CFEqual(deep.get(), same.get()));
  EXPECT_EQ(CFHash(deep.get()), CFHash(same.get()));
  EXPECT_FALSE(CFEqual(deep.get(), other.get()));
  // Two to the hundred values.
  OwnedObject const shared = Nest(100, CFSTR("x"), 2), twin = Nest(100, CFSTR("x"), 2);
  EXPECT_TRUE(CFEqual(shared.get(), twin.get()));
}

TEST(DateAndData, HoldWhatTheyWereGiven) {
  Owned<CFDateRef> const early(CFDateCreate(nullptr, -86400.5)), late(CFDateCreate(nullptr, 1));
  EXPECT_EQ(CFDateGetAbsoluteTime(early.get()), -86400.5);
  EXPECT_EQ(CFDateCompare(early.get(), late.get(), nullptr), kCFCompareLessThan);
  EXPECT_EQ(CFDateGetTimeIntervalSinceDate(late.get(), early.get()), 86401.5);
  Owned<CFDataRef> const bytes = MakeBytes({"a\0b", 3});
  UInt8 buffer[3] = {'-', '-', '-'};
  for (CFRange const range : {CFRangeMake(1, 2), CFRangeMake(2, 2)}) {
    CFDataGetBytes(bytes.get(), range, buffer);
    EXPECT_THAT(buffer, testing::ElementsAre('\0', 'b', '-'));
  }
  EXPECT_NE(CFDataGetBytePtr(MakeBytes("").get()), nullptr);
  EXPECT_TRUE(CFEqual(bytes.get(), MakeBytes({"a\0b", 3}).get()));
  EXPECT_EQ(CFDataCreate(nullptr, nullptr, -1), nullptr);
}

}  // namespace
