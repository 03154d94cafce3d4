// Numbers, dates, data, arrays and dictionaries.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tests/frameworks/property_list_print.h"

namespace {

template <typename Value>
OwnedObject Number(CFNumberType type, Value value) {
  return OwnedObject(CFNumberCreate(nullptr, type, &value));
}

CFNumberRef AsNumber(OwnedObject const& object) { return static_cast<CFNumberRef>(object.get()); }

OwnedObject Integer(SInt64 value) { return Number(kCFNumberSInt64Type, value); }

// The whole range, from two words.
OwnedObject Wide(SInt64 high, UInt64 low) {
  return Number(kCFNumberSInt128Type, CFSInt128Struct{high, low});
}

OwnedObject Real(double value) { return Number(kCFNumberFloat64Type, value); }

constexpr SInt64 kMost = std::numeric_limits<SInt64>::max();
constexpr SInt64 kLeast = std::numeric_limits<SInt64>::min();

TEST(Number, TellsALossyConversion) {
  struct {
    OwnedObject number;
    bool is_exact_long;
    SInt32 as_long;
    bool is_exact_64;
    SInt64 as_64;
    bool is_exact_double;
  } const rows[] = {
      {Integer(-7), true, -7, true, -7, true},
      {Integer(0x7FFFFFFF), true, 0x7FFFFFFF, true, 0x7FFFFFFF, true},
      {Integer(0x80000000), false, 0x7FFFFFFF, true, 0x80000000, true},
      {Integer(kLeast), false, -0x7FFFFFFF - 1, true, kLeast, true},
      {Integer(kMost), false, 0x7FFFFFFF, true, kMost, false},
      {Wide(0, UINT64_MAX), false, 0x7FFFFFFF, false, kMost, false},
      {Wide(0, UINT64_C(1) << 63), false, 0x7FFFFFFF, false, kMost, true},
      {Wide(-1, static_cast<UInt64>(kLeast)), false, -0x7FFFFFFF - 1, true, kLeast, true},
      {Real(3.0), true, 3, true, 3, true},
      {Real(-3.75), false, -3, false, -3, true},
      {Real(1e300), false, 0x7FFFFFFF, false, kMost, true},
      {Real(-0x1p63), false, -0x7FFFFFFF - 1, true, kLeast, true},
      {Real(0x1p63), false, 0x7FFFFFFF, false, kMost, true},
      {Real(std::nan("")), false, 0, false, 0, true},
      {Number(kCFNumberFloat32Type, 0.5f), false, 0, false, 0, true},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(Print(row.number.get()));
    // Four bytes and not one more.
    SInt32 as_long[2] = {99, 99};
    EXPECT_EQ(CFNumberGetValue(AsNumber(row.number), kCFNumberLongType, as_long),
              row.is_exact_long);
    EXPECT_EQ(as_long[0], row.as_long);
    EXPECT_EQ(as_long[1], 99);
    SInt64 as_64 = 99;
    EXPECT_EQ(CFNumberGetValue(AsNumber(row.number), kCFNumberSInt64Type, &as_64), row.is_exact_64);
    EXPECT_EQ(as_64, row.as_64);
    double as_double = 99;
    EXPECT_EQ(CFNumberGetValue(AsNumber(row.number), kCFNumberDoubleType, &as_double),
              row.is_exact_double);
  }
  float narrow = 0;
  EXPECT_FALSE(CFNumberGetValue(AsNumber(Real(0.1)), kCFNumberFloatType, &narrow));
  EXPECT_EQ(narrow, 0.1f);
  CFSInt128Struct whole = {};
  EXPECT_TRUE(CFNumberGetValue(AsNumber(Wide(0, UINT64_MAX)), kCFNumberSInt128Type, &whole));
  EXPECT_EQ(whole.low, UINT64_MAX);
  EXPECT_FALSE(CFNumberGetValue(AsNumber(Real(0)), static_cast<CFNumberType>(99), &whole));
  EXPECT_EQ(Wide(1, 0), nullptr);
  EXPECT_EQ(Wide(-1, 0), nullptr);
  EXPECT_EQ(Number(static_cast<CFNumberType>(0), 0), nullptr);
}

TEST(Number, IsEqualAndOrderedByValueWhateverItsType) {
  OwnedObject const ordered[] = {Real(std::nan("")),
                                 Real(-INFINITY),
                                 Integer(kLeast),
                                 Real(-0.5),
                                 Integer(0),
                                 Real(0.5),
                                 Integer((1L << 53) + 1),
                                 Real(0x1p53 + 2),
                                 Integer(kMost),
                                 Real(0x1p63),
                                 Wide(0, (UINT64_C(1) << 63) + 1),
                                 Wide(0, UINT64_MAX),
                                 Real(0x1p64)};
  for (auto const& left : ordered) {
    for (auto const& right : ordered) {
      auto const expected = (&left > &right) - (&left < &right);
      EXPECT_EQ(CFNumberCompare(AsNumber(left), AsNumber(right), nullptr), expected)
          << Print(left.get()) << ' ' << Print(right.get());
      EXPECT_EQ(CFEqual(left.get(), right.get()), &left == &right);
    }
  }
  std::pair<OwnedObject, OwnedObject> const equals[] = {
      {Integer(5), Real(5)},
      {Real(0.0), Real(-0.0)},
      {Wide(0, UINT64_C(1) << 63), Real(0x1p63)},
      {Number(kCFNumberSInt8Type, SInt8{-3}), Integer(-3)}};
  for (auto const& [left, right] : equals) {
    EXPECT_TRUE(CFEqual(left.get(), right.get()));
    EXPECT_EQ(CFHash(left.get()), CFHash(right.get()));
  }
}

TEST(Constants, EndNeverAndAreThemselves) {
  for (CFTypeRef const constant :
       {static_cast<CFTypeRef>(kCFBooleanTrue), static_cast<CFTypeRef>(kCFBooleanFalse),
        static_cast<CFTypeRef>(kCFNull)}) {
    for (int i = 0; i < 3; ++i) CFRelease(constant);
    EXPECT_EQ(CFRetain(constant), constant);
  }
  EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
  EXPECT_FALSE(CFEqual(kCFBooleanTrue, kCFBooleanFalse));
  EXPECT_FALSE(CFEqual(kCFNull, kCFBooleanFalse));
}

TEST(Array, AnswersNullOutsideAndKeepsWhatItHolds) {
  OwnedObject const number = Integer(1);
  void const* values[] = {number.get(), CFSTR("x")};
  OwnedObject const object(CFArrayCreate(nullptr, values, 2, &kCFTypeArrayCallBacks));
  auto const array = static_cast<CFArrayRef>(object.get());
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
  OwnedObject const others(CFArrayCreate(nullptr, pointers, 2, nullptr));
  EXPECT_EQ(CFArrayGetValueAtIndex(static_cast<CFArrayRef>(others.get()), 0), &plain);
}

TEST(Array, ChangesWhenItIsMutable) {
  CFMutableArrayRef const array = CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
  OwnedObject const owner(array), number = Integer(7);
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
      OwnedObject const key = Integer(name), value = Integer(round);
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
    OwnedObject const copy(CFDictionaryCreateCopy(nullptr, dictionary));
    EXPECT_TRUE(CFEqual(copy.get(), dictionary));
    for (CFDictionaryRef const one :
         {static_cast<CFDictionaryRef>(dictionary), static_cast<CFDictionaryRef>(copy.get())}) {
      ASSERT_EQ(CFDictionaryGetCount(one), static_cast<CFIndex>(expected.size()));
      for (SInt64 name = 0; name < range; ++name) {
        void const* value = nullptr;
        auto const found = expected.find(name);
        ASSERT_EQ(CFDictionaryGetValueIfPresent(one, Integer(name).get(), &value),
                  found != expected.end());
        if (value != nullptr) {
          ASSERT_TRUE(CFEqual(value, Integer(found->second).get()));
        }
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
    OwnedObject const object(
        CFDictionaryCreate(nullptr, keys.data(), values.data(), static_cast<CFIndex>(2 * count),
                           &kCFCopyStringDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    auto const dictionary = static_cast<CFDictionaryRef>(object.get());
    ASSERT_EQ(CFDictionaryGetCount(dictionary), static_cast<CFIndex>(count));
    std::vector<void const*> found_keys(count), found_values(count);
    CFDictionaryGetKeysAndValues(dictionary, found_keys.data(), found_values.data());
    for (std::size_t i = 0; i < count; ++i) {
      ASSERT_EQ(found_keys[i], texts[i].get());
      ASSERT_EQ(found_values[i], texts[i].get());
      ASSERT_EQ(CFDictionaryGetValue(dictionary, texts[i].get()), texts[i].get());
    }
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
  OwnedObject const early(CFDateCreate(nullptr, -86400.5)), late(CFDateCreate(nullptr, 1));
  auto const date = [](OwnedObject const& object) { return static_cast<CFDateRef>(object.get()); };
  EXPECT_EQ(CFDateGetAbsoluteTime(date(early)), -86400.5);
  EXPECT_EQ(CFDateCompare(date(early), date(late), nullptr), kCFCompareLessThan);
  EXPECT_EQ(CFDateGetTimeIntervalSinceDate(date(late), date(early)), 86401.5);
  OwnedObject const bytes = MakeBytes({"a\0b", 3});
  UInt8 buffer[3] = {'-', '-', '-'};
  CFDataGetBytes(static_cast<CFDataRef>(bytes.get()), CFRangeMake(1, 2), buffer);
  CFDataGetBytes(static_cast<CFDataRef>(bytes.get()), CFRangeMake(2, 2), buffer);
  EXPECT_EQ(std::string(buffer, buffer + 3), std::string("\0b-", 3));
  EXPECT_NE(CFDataGetBytePtr(static_cast<CFDataRef>(MakeBytes("").get())), nullptr);
  EXPECT_TRUE(CFEqual(bytes.get(), MakeBytes({"a\0b", 3}).get()));
  EXPECT_EQ(CFDataCreate(nullptr, nullptr, -1), nullptr);
}

}  // namespace
