#include "portable/numeral.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "portable/make_numeral.h"
#include "portable/read_numeral.h"

namespace {

constexpr auto kSuccess = static_cast<ReadNumeralResult::Value>(0);
constexpr auto kNotANumeral = static_cast<ReadNumeralResult::Value>(1);
constexpr auto kTooLarge = static_cast<ReadNumeralResult::Value>(2);

// What reading as T gives: the value as text, or what failed; a failure must not touch the value.
template <class T>
std::string Outcome(ReadNumeralResult::Value (*read)(ConstData, T&), char const* text) {
  T value = 77;
  switch (read(ConstData(text), value)) {
    case kSuccess:
      return std::to_string(value);
    case kNotANumeral:
      return value == 77 ? "not" : "touched";
    case kTooLarge:
      return value == 77 ? "large" : "touched";
  }
  return "?";
}

TEST(ReadDecimal, TellsSuccessAndFailure) {
  struct {
    char const* text;
    char const* unsigned64;
    char const* unsigned32;
    char const* signed64;
    char const* signed32;
  } const rows[] = {
      {"", "not", "not", "not", "not"},
      {"0", "0", "0", "0", "0"},
      {"007", "7", "7", "7", "7"},
      {"-7", "not", "not", "-7", "-7"},
      {"+7", "not", "not", "7", "7"},
      {"-", "not", "not", "not", "not"},
      {"+", "not", "not", "not", "not"},
      {"+-1", "not", "not", "not", "not"},
      {"-0", "not", "not", "0", "0"},
      {"12a", "not", "not", "not", "not"},
      {" 12", "not", "not", "not", "not"},
      {"0x1", "not", "not", "not", "not"},
      {"2147483647", "2147483647", "2147483647", "2147483647", "2147483647"},
      {"2147483648", "2147483648", "2147483648", "2147483648", "large"},
      {"-2147483648", "not", "not", "-2147483648", "-2147483648"},
      {"-2147483649", "not", "not", "-2147483649", "large"},
      {"4294967295", "4294967295", "4294967295", "4294967295", "large"},
      {"4294967296", "4294967296", "large", "4294967296", "large"},
      {"9223372036854775807", "9223372036854775807", "large", "9223372036854775807", "large"},
      {"9223372036854775808", "9223372036854775808", "large", "large", "large"},
      {"-9223372036854775808", "not", "not", "-9223372036854775808", "large"},
      {"-9223372036854775809", "not", "not", "large", "large"},
      {"18446744073709551615", "18446744073709551615", "large", "large", "large"},
      {"18446744073709551616", "large", "large", "large", "large"},
      // The product is looked at before the byte, the byte before the sum.
      {"18446744073709551616x", "large", "large", "large", "large"},
      {"1844674407370955162x", "large", "large", "large", "large"},
      {"1844674407370955161x", "not", "not", "not", "not"},
      {"4294967296x", "not", "not", "not", "not"},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(Outcome<unsigned long long>(TryReadAsciiDecimalNumeral, row.text), row.unsigned64);
    EXPECT_EQ(Outcome<std::size_t>(TryReadAsciiDecimalNumeral, row.text), row.unsigned64);
    EXPECT_EQ(Outcome<std::uint32_t>(TryReadAsciiDecimalNumeral, row.text), row.unsigned32);
    EXPECT_EQ(Outcome<long long>(TryReadAsciiDecimalNumeral, row.text), row.signed64);
    EXPECT_EQ(Outcome<std::int64_t>(TryReadAsciiDecimalNumeral, row.text), row.signed64);
    EXPECT_EQ(Outcome<std::int32_t>(TryReadAsciiDecimalNumeral, row.text), row.signed32);
  }
}

TEST(ReadHex, TellsSuccessAndFailure) {
  struct {
    char const* text;
    char const* wide;
    char const* narrow;
  } const rows[] = {
      {"", "not", "not"},
      {"fF09", "65289", "65289"},
      {"g", "not", "not"},
      {"-1", "not", "not"},
      {"ffffffff", "4294967295", "4294967295"},
      {"100000000", "4294967296", "large"},
      {"ffffffffffffffff", "18446744073709551615", "large"},
      {"0ffffffffffffffff", "18446744073709551615", "large"},
      {"10000000000000000", "large", "large"},
      {"1000000000000000g", "large", "large"},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(Outcome<unsigned long long>(TryReadAsciiHexNumeral, row.text), row.wide);
    EXPECT_EQ(Outcome<std::size_t>(TryReadAsciiHexNumeral, row.text), row.wide);
    EXPECT_EQ(Outcome<std::uint32_t>(TryReadAsciiHexNumeral, row.text), row.narrow);
  }
}

TEST(ReadNumeral, ThrowsByTheFailure) {
  EXPECT_EQ(ReadAsciiSignedDecimalNumeral64("-9223372036854775808"),
            std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(ReadAsciiSignedDecimalNumeral("-5"), -5);
  EXPECT_EQ(ReadAsciiDecimalNumeral64("5000000000"), 5000000000u);
  EXPECT_EQ(ReadAsciiHexNumeral("1f"), 31u);
  EXPECT_EQ(ReadAsciiHexNumeral64("100000000"), 4294967296u);
  EXPECT_EQ(ReadUTF8DecimalNumeral(UStringRef<UTF8>(ConstData("12"))), 12u);
  EXPECT_EQ(ReadUTF8DecimalNumeral64(UStringRef<UTF8>(ConstData("5000000000"))), 5000000000u);
  EXPECT_THROW(ReadAsciiSignedDecimalNumeral64("9223372036854775808"), NumeralTooLarge);
  EXPECT_THROW(ReadAsciiDecimalNumeral("4294967296"), NumeralTooLarge);
  EXPECT_THROW(ReadAsciiHexNumeral("100000000"), NumeralTooLarge);
  EXPECT_THROW(ReadAsciiSignedDecimalNumeral64("12a"), NotANumeral);
  EXPECT_THROW(ReadAsciiSignedDecimalNumeral64(" 12"), NotANumeral);
  EXPECT_THROW(ReadUTF8DecimalNumeral(UStringRef<UTF8>(ConstData("\xC2\xB2"))), NotANumeral);
}

TEST(ReadNumeral, FallsBackToTheDefault) {
  EXPECT_EQ(ReadAsciiDecimalNumeral32WithDefault("4294967296", 9), 9u);
  EXPECT_EQ(ReadAsciiDecimalNumeral64WithDefault("4294967296", std::size_t{9}), 4294967296u);
  EXPECT_EQ(ReadAsciiDecimalNumeral64WithDefault("x", std::size_t{9}), 9u);
  EXPECT_EQ(ReadAsciiSignedDecimalNumeral32WithDefault("-3", 9), -3);
  EXPECT_EQ(ReadAsciiSignedDecimalNumeral32WithDefault("2147483648", -9), -9);
  EXPECT_EQ(ReadAsciiSignedDecimalNumeral64WithDefault("", std::int64_t{-9}), -9);
}

TEST(MakeNumeral, PadsDigits) {
  struct {
    std::string made;
    char const* expected;
  } const rows[] = {
      {MakeString(MakeAsciiHexNumeral(255, 4)), "00ff"},
      {MakeString(MakeAsciiHexNumeral(0xFFFFFFFF, 0)), "ffffffff"},
      {MakeString(MakeAsciiHexNumeral64(std::size_t{0} - 1, 1)), "ffffffffffffffff"},
      {MakeString(MakeAsciiDecimalNumeral(0, 0)), ""},
      {MakeString(MakeAsciiDecimalNumeral(0, 1)), "0"},
      {MakeString(MakeAsciiDecimalNumeral(42, 10)), "0000000042"},
      {MakeString(MakeAsciiDecimalNumeral(4294967295, 2)), "4294967295"},
      {MakeString(MakeAsciiDecimalNumeral64(std::size_t{0} - 1, 0)), "18446744073709551615"},
      {MakeString(MakeAsciiSignedDecimalNumeral(-7, 3)), "-007"},
      {MakeString(MakeAsciiSignedDecimalNumeral(7, 3)), "007"},
      {MakeString(MakeAsciiSignedDecimalNumeral(0, 0)), ""},
      {MakeString(MakeAsciiSignedDecimalNumeral(INT32_MIN, 0)), "-2147483648"},
      {MakeString(MakeAsciiSignedDecimalNumeral64(INT64_MIN, 0)), "-9223372036854775808"},
      {MakeString(MakeAsciiSignedDecimalNumeral64(std::int64_t{-1}, 20)), "-00000000000000000001"},
      {MakeString(MakeAsciiSignedDecimalNumeral64(INT64_MAX, 0)), "9223372036854775807"},
  };
  for (auto const& row : rows) EXPECT_EQ(row.made, row.expected);
  EXPECT_THROW(MakeAsciiHexNumeral(1, 9), ConstDataCapacityExceeded);
  EXPECT_THROW(MakeAsciiDecimalNumeral(1, ~0ul), ConstDataCapacityExceeded);
}

template <class T>
std::string NumeralText(T value, unsigned radix) {
  return MakeString(Numeral(value, radix));
}

TEST(Numeral, ShowsEveryType) {
  EXPECT_EQ(NumeralText(0, 10), "0");
  EXPECT_EQ(NumeralText(std::numeric_limits<std::int8_t>::min(), 10), "-128");
  EXPECT_EQ(NumeralText(std::numeric_limits<std::uint8_t>::max(), 16), "ff");
  EXPECT_EQ(NumeralText(std::numeric_limits<std::int16_t>::min(), 16), "-8000");
  EXPECT_EQ(NumeralText(std::uint16_t{35}, 36), "z");
  EXPECT_EQ(NumeralText(std::numeric_limits<std::int32_t>::min(), 10), "-2147483648");
  EXPECT_EQ(NumeralText(std::uint32_t{4294967295}, 10), "4294967295");
  EXPECT_EQ(NumeralText(std::numeric_limits<std::int64_t>::min(), 10), "-9223372036854775808");
  EXPECT_EQ(NumeralText(std::numeric_limits<long long>::min(), 2), "-1" + std::string(63, '0'));
  EXPECT_EQ(NumeralText(std::numeric_limits<std::size_t>::max(), 2), std::string(64, '1'));
  EXPECT_EQ(NumeralText(std::numeric_limits<unsigned long long>::max(), 10),
            "18446744073709551615");
}

TEST(Numeral, ConvertsToEveryForm) {
  Numeral padded(std::int64_t{-42}, 10);
  padded.PadTo(1);
  padded.PadTo(4);
  EXPECT_EQ(MakeString(padded), "-0042");
  EXPECT_STREQ(USAsciiString(padded).Text(), "-0042");
  unsigned char const* const pascal = padded;
  EXPECT_EQ(MakeString(ConstData(pascal, pascal[0] + 1ul)), "\x05-0042");
  EXPECT_EQ(MakeString(padded), "-0042");

  Numeral longest(5, 10);
  longest.PadTo(66);
  unsigned char const* const length_prefixed = longest;
  EXPECT_EQ(length_prefixed[0], 66);
  EXPECT_EQ(MakeString(longest), std::string(65, '0') + "5");
  EXPECT_EQ(Numeral::Sign(-1), '-');
  EXPECT_EQ(Numeral::Sign(1u), '+');
  EXPECT_EQ(Numeral::Sign(std::int64_t{0}), ' ');
}

}  // namespace
