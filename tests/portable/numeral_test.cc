#include "portable/numeral.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>

#include "portable/make_numeral.h"
#include "portable/read_numeral.h"

namespace {

constexpr auto kDecimal = [](ConstData text, auto& value) {
  return TryReadAsciiDecimalNumeral(text, value);
};
constexpr auto kHex = [](ConstData text, auto& value) {
  return TryReadAsciiHexNumeral(text, value);
};

// The value as text, or what failed; a failure must not touch the value.
template <class T>
std::string Outcome(auto read, char const* text) {
  T value = 77;
  auto const result = read(ConstData(text), value);
  if (result == 0) return std::to_string(value);
  EXPECT_EQ(value, T{77});
  return result == 1 ? "not" : "large";
}

// Reads in 64 bits, by either of their names, and in 32, which hold less.
template <class Wide>
void ExpectOutcome(auto read, char const* text, std::string const& expected) {
  using Long = std::conditional_t<std::is_signed_v<Wide>, std::int64_t, std::uint64_t>;
  using Narrow = std::conditional_t<std::is_signed_v<Wide>, std::int32_t, std::uint32_t>;
  SCOPED_TRACE(text);
  EXPECT_EQ(Outcome<Wide>(read, text), expected);
  EXPECT_EQ(Outcome<Long>(read, text), expected);
  bool const is_cut = expected != "not" && expected != "large" &&
                      std::to_string(static_cast<Narrow>(std::stoull(expected))) != expected;
  EXPECT_EQ(Outcome<Narrow>(read, text), is_cut ? "large" : expected);
}

TEST(ReadDecimal, TellsSuccessAndFailure) {
  auto const expect = [](char const* text, char const* without_sign, char const* with_sign) {
    ExpectOutcome<unsigned long long>(kDecimal, text, without_sign);
    ExpectOutcome<long long>(kDecimal, text, with_sign);
  };
  for (char const* text :
       {"0", "2147483647", "2147483648", "4294967295", "4294967296", "9223372036854775807"}) {
    expect(text, text, text);
  }
  for (char const* text : {"-7", "-2147483648", "-2147483649", "-9223372036854775808"}) {
    expect(text, "not", text);
  }
  for (char const* text : {"", "-", "+", "+-1", "12a", " 12", "0x1", "4294967296x"}) {
    expect(text, "not", "not");
  }
  expect("007", "7", "7");
  expect("+7", "not", "7");
  expect("-0", "not", "0");
  expect("9223372036854775808", "9223372036854775808", "large");
  expect("-9223372036854775809", "not", "large");
  expect("18446744073709551615", "18446744073709551615", "large");
  expect("18446744073709551616", "large", "large");
  // The product is looked at before the byte, the byte before the sum.
  expect("1844674407370955162x", "large", "large");
  expect("1844674407370955161x", "not", "not");
}

TEST(ReadHex, TellsSuccessAndFailure) {
  auto const expect = [](char const* text, char const* read) {
    ExpectOutcome<unsigned long long>(kHex, text, read);
  };
  for (char const* text : {"", "g", "-1", "0x1"}) expect(text, "not");
  for (char const* text : {"10000000000000000", "1000000000000000g"}) expect(text, "large");
  expect("fF09", "65289");
  expect("ffffffff", "4294967295");
  expect("100000000", "4294967296");
  expect("0ffffffffffffffff", "18446744073709551615");
}

TEST(ReadNumeral, ThrowsOrFallsBackByTheFailure) {
  EXPECT_EQ(ReadAsciiSignedDecimalNumeral64("-9223372036854775808"), INT64_MIN);
  EXPECT_EQ(ReadAsciiHexNumeral64("100000000"), 4294967296u);
  EXPECT_EQ(ReadUTF8DecimalNumeral64(UStringRef<UTF8>(ConstData("5000000000"))), 5000000000u);
  EXPECT_THROW(ReadAsciiSignedDecimalNumeral64("9223372036854775808"), NumeralTooLarge);
  EXPECT_THROW(ReadAsciiSignedDecimalNumeral("2147483648"), NumeralTooLarge);
  EXPECT_THROW(ReadAsciiDecimalNumeral("4294967296"), NumeralTooLarge);
  EXPECT_THROW(ReadAsciiHexNumeral("100000000"), NumeralTooLarge);
  EXPECT_THROW(ReadAsciiSignedDecimalNumeral64("12a"), NotANumeral);
  EXPECT_THROW(ReadUTF8DecimalNumeral(UStringRef<UTF8>(ConstData("\xC2\xB2"))), NotANumeral);
  EXPECT_EQ(ReadAsciiDecimalNumeral32WithDefault("4294967296", 9), 9u);
  EXPECT_EQ(ReadAsciiDecimalNumeral64WithDefault("4294967296", 9), 4294967296u);
  EXPECT_EQ(ReadAsciiSignedDecimalNumeral32WithDefault("2147483648", -9), -9);
  EXPECT_EQ(ReadAsciiSignedDecimalNumeral64WithDefault("", -9), -9);
}

TEST(MakeNumeral, PadsDigits) {
  EXPECT_EQ(MakeString(MakeAsciiHexNumeral(255, 4)), "00ff");
  EXPECT_EQ(MakeString(MakeAsciiHexNumeral64(UINT64_MAX, 1)), "ffffffffffffffff");
  EXPECT_EQ(MakeString(MakeAsciiDecimalNumeral(0, 0)), "");
  EXPECT_EQ(MakeString(MakeAsciiDecimalNumeral(0, 1)), "0");
  EXPECT_EQ(MakeString(MakeAsciiDecimalNumeral(42, 10)), "0000000042");
  EXPECT_EQ(MakeString(MakeAsciiDecimalNumeral64(UINT64_MAX, 0)), "18446744073709551615");
  EXPECT_EQ(MakeString(MakeAsciiSignedDecimalNumeral(-7, 3)), "-007");
  EXPECT_EQ(MakeString(MakeAsciiSignedDecimalNumeral(7, 3)), "007");
  EXPECT_EQ(MakeString(MakeAsciiSignedDecimalNumeral(INT32_MIN, 0)), "-2147483648");
  EXPECT_EQ(MakeString(MakeAsciiSignedDecimalNumeral64(INT64_MIN, 0)), "-9223372036854775808");
  EXPECT_EQ(MakeString(MakeAsciiSignedDecimalNumeral64(-1, 20)), "-00000000000000000001");
  EXPECT_THROW(MakeAsciiHexNumeral(1, 9), ConstDataCapacityExceeded);
  EXPECT_THROW(MakeAsciiDecimalNumeral(1, ~0ul), ConstDataCapacityExceeded);
}

TEST(Numeral, ShowsEveryType) {
  EXPECT_EQ(MakeString(Numeral(0, 10)), "0");
  EXPECT_EQ(MakeString(Numeral(std::int8_t{-128}, 10)), "-128");
  EXPECT_EQ(MakeString(Numeral(std::uint8_t{255}, 16)), "ff");
  EXPECT_EQ(MakeString(Numeral(std::int16_t{INT16_MIN}, 16)), "-8000");
  EXPECT_EQ(MakeString(Numeral(std::uint16_t{35}, 36)), "z");
  EXPECT_EQ(MakeString(Numeral(UINT32_MAX, 10)), "4294967295");
  EXPECT_EQ(MakeString(Numeral(INT64_MIN, 2)), "-1" + std::string(63, '0'));
  EXPECT_EQ(MakeString(Numeral(UINT64_MAX, 10)), "18446744073709551615");
}

TEST(Numeral, ConvertsToEveryForm) {
  Numeral padded(-42, 10);
  padded.PadTo(1);
  padded.PadTo(4);
  EXPECT_STREQ(USAsciiString(padded).Text(), "-0042");
  unsigned char const* const pascal = padded;
  EXPECT_EQ(MakeString(ConstData(pascal, pascal[0] + 1ul)), "\x05-0042");
  EXPECT_EQ(MakeString(padded), "-0042");

  Numeral longest(5, 10);
  longest.PadTo(66);
  EXPECT_EQ(MakeString(longest), std::string(65, '0') + "5");
  EXPECT_EQ(Numeral::Sign(-1), '-');
  EXPECT_EQ(Numeral::Sign(1u), '+');
  EXPECT_EQ(Numeral::Sign(0), ' ');
}

}  // namespace
