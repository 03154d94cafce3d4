#include "portable/ascii.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string Bytes(int first, int last) {
  std::string bytes;
  for (int byte = first; byte <= last; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

std::string MembersOf(ByteSet const& set) {
  std::string members;
  for (char byte : Bytes(0x00, 0xFF)) {
    if (set.Contains(static_cast<unsigned char>(byte))) members += byte;
  }
  return members;
}

TEST(AsciiSets, HoldTheirMembers) {
  std::string const digits = "0123456789";
  std::string const capitals = Bytes('A', 'Z');
  std::string const smalls = Bytes('a', 'z');
  EXPECT_EQ(MembersOf(Ascii::WhiteSpace()), "\t\n\r ");
  EXPECT_EQ(MembersOf(Ascii::LinearWhiteSpace()), "\t ");
  EXPECT_EQ(MembersOf(Ascii::Printable()), Bytes(0x21, 0x7E));
  EXPECT_EQ(MembersOf(Ascii::PlainText()), Bytes(0x20, 0x7E));
  EXPECT_EQ(MembersOf(Ascii::Unprintable()), Bytes(0x00, 0x20) + Bytes(0x7F, 0xFF));
  EXPECT_EQ(MembersOf(Ascii::Control()), Bytes(0x00, 0x1F) + "\x7F");
  EXPECT_EQ(MembersOf(Ascii::High()), Bytes(0x80, 0xFF));
  EXPECT_EQ(MembersOf(Ascii::Low()), Bytes(0x00, 0x7F));
  EXPECT_EQ(MembersOf(Ascii::Alphabetic()), capitals + smalls);
  EXPECT_EQ(MembersOf(Ascii::Alphabetic_()), capitals + "_" + smalls);
  EXPECT_EQ(MembersOf(Ascii::Numeric()), digits);
  EXPECT_EQ(MembersOf(Ascii::Alphanumeric()), digits + capitals + smalls);
  EXPECT_EQ(MembersOf(Ascii::Alphanumeric_()), digits + capitals + "_" + smalls);
  EXPECT_EQ(MembersOf(Ascii::HexDigits()), digits + "ABCDEFabcdef");
  EXPECT_EQ(MembersOf(Ascii::Punctuation()), "!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~");
  EXPECT_EQ(MembersOf(Ascii::UppercaseAlphabet()), capitals);
  EXPECT_EQ(MembersOf(Ascii::LowercaseAlphabet()), smalls);
}

TEST(AsciiCase, ChangesLettersOnly) {
  EXPECT_TRUE(Ascii::CaseTablesAreCorrect());
  EXPECT_EQ(Ascii::RaiseCase("@AZ[`az{\xC4\xE4"), "@AZ[`AZ{\xC4\xE4");
  EXPECT_EQ(Ascii::LowerCase("@AZ[`az{\xC4\xE4"), "@az[`az{\xC4\xE4");
  EXPECT_TRUE(Ascii::IsLowercase("az 09\xC4"));
  EXPECT_FALSE(Ascii::IsLowercase("aZ"));
  EXPECT_TRUE(Ascii::IsUppercase("AZ 09\xE4"));
  EXPECT_FALSE(Ascii::IsUppercase("aZ"));
}

TEST(AsciiCase, WritesWhatFits) {
  BufferOfSize<3> output;
  ConstBuffer input(ConstData("aBcD"));
  Ascii::RaiseCase(input, output.Cursor());
  EXPECT_EQ(MakeString(output.Used()), "ABC");
  EXPECT_EQ(MakeString(input), "D");

  unsigned char bytes[4] = {'.', '.', '.', '.'};
  Ascii::LowerCase(ConstData("XYZ"), Data(bytes, 2ul));
  Ascii::RaiseCase()(ConstData("q"), Data(bytes + 3, 1ul));
  EXPECT_EQ(MakeString(ConstData(bytes, 4ul)), "xy.Q");

  Buffer cursor(Data(bytes, 3ul));
  ConstBuffer rest(ConstData("LMN"));
  Ascii::LowerCase()(ConstData("K"), cursor);
  Ascii::LowerCase()(rest, Data(cursor.begin, cursor.end));
  EXPECT_EQ(MakeString(ConstData(bytes, 4ul)), "klmQ");
  EXPECT_EQ(MakeString(rest), "N");
  EXPECT_TRUE(Ascii::LowerCase().Flushed());
}

TEST(AsciiComparison, GoesThroughTheTables) {
  struct {
    char const *left, *right;
    int lower, upper;
  } const rows[] = {{"_", "a", -1, 1},   {"aBc", "AbC", 0, 0}, {"ab", "ABC", -1, -1},
                    {"\xFF", "z", 1, 1}, {"@", "`", -1, -1},   {"", "", 0, 0}};
  auto const sign = [](int order) { return (order > 0) - (order < 0); };
  for (auto const& row : rows) {
    SCOPED_TRACE(std::string(row.left) + " / " + row.right);
    ConstData const left(row.left), right(row.right);
    EXPECT_EQ(sign(Ascii::CompareLowercase(row.left, row.right)), row.lower);
    EXPECT_EQ(sign(Ascii::CompareLowercase(right, left)), -row.lower);
    EXPECT_EQ(sign(Ascii::CompareUppercase(left, right)), row.upper);
    EXPECT_EQ(sign(Ascii::CompareUppercase(row.right, row.left)), -row.upper);
    EXPECT_EQ(Ascii::EqualIgnoringCase(left, right), row.lower == 0);
  }
}

TEST(HexDigits, AreInverse) {
  for (unsigned value = 0; value < 16; ++value) {
    EXPECT_EQ(Ascii::HexDigit(value), "0123456789abcdef"[value]);
    EXPECT_EQ(Ascii::HexDigitValue(Ascii::HexDigit(value)), value);
  }
  EXPECT_EQ(Ascii::HexDigitValue('F'), 15u);
}

}  // namespace
