#include "portable/ascii.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(AsciiSets, HoldTheirMembers) {
  std::string const digits = "0123456789";
  std::string const capitals = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  std::string const smalls = "abcdefghijklmnopqrstuvwxyz";
  std::string const punctuation = "!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~";
  std::string control = "\x7F";
  std::string low;
  for (char c = 0; c != '\x7F'; ++c) low += c;
  low += '\x7F';
  control += low.substr(0, 32);
  std::string high;
  for (int c = 0x80; c < 0x100; ++c) high += static_cast<char>(c);

  struct {
    char const* name;
    ByteSet const& set;
    std::string members;
  } const rows[] = {
      {"WhiteSpace", Ascii::WhiteSpace(), "\t\n\r "},
      {"LinearWhiteSpace", Ascii::LinearWhiteSpace(), "\t "},
      {"Printable", Ascii::Printable(), digits + capitals + smalls + punctuation},
      {"PlainText", Ascii::PlainText(), " " + digits + capitals + smalls + punctuation},
      {"Unprintable", Ascii::Unprintable(), control + " " + high},
      {"Control", Ascii::Control(), control},
      {"High", Ascii::High(), high},
      {"Low", Ascii::Low(), low},
      {"Alphabetic", Ascii::Alphabetic(), capitals + smalls},
      {"Alphabetic_", Ascii::Alphabetic_(), capitals + "_" + smalls},
      {"Numeric", Ascii::Numeric(), digits},
      {"Alphanumeric", Ascii::Alphanumeric(), digits + capitals + smalls},
      {"Alphanumeric_", Ascii::Alphanumeric_(), digits + capitals + smalls + "_"},
      {"HexDigits", Ascii::HexDigits(), digits + "ABCDEFabcdef"},
      {"Punctuation", Ascii::Punctuation(), punctuation},
      {"UppercaseAlphabet", Ascii::UppercaseAlphabet(), capitals},
      {"LowercaseAlphabet", Ascii::LowercaseAlphabet(), smalls},
  };
  for (auto const& row : rows) {
    for (int byte = 0; byte < 256; ++byte) {
      bool const expected = row.members.find(static_cast<char>(byte)) != std::string::npos;
      EXPECT_EQ(row.set.Contains(static_cast<unsigned char>(byte)), expected)
          << row.name << ' ' << byte;
    }
  }
}

TEST(AsciiCase, ChangesLettersOnly) {
  EXPECT_TRUE(Ascii::CaseTablesAreCorrect());
  std::string const mixed = "@AZ[`az{\xC4\xE4";
  EXPECT_EQ(Ascii::RaiseCase(mixed.c_str()), "@AZ[`AZ{\xC4\xE4");
  EXPECT_EQ(Ascii::LowerCase(mixed.c_str()), "@az[`az{\xC4\xE4");
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
  Ascii::LowerCase()(ConstData("KL"), Data(bytes, 4ul));
  EXPECT_EQ(MakeString(ConstData(bytes, 4ul)), "kl.Q");
  EXPECT_EQ(&Ascii::LowerCase(), &Ascii::LowerCase());
}

TEST(AsciiComparison, GoesThroughTheTables) {
  int const underscore_lower = Ascii::CompareLowercase("_", "A");
  EXPECT_LT(underscore_lower, 0);                   // below the small letters,
  EXPECT_GT(Ascii::CompareUppercase("_", "a"), 0);  // above the capitals
  EXPECT_EQ(Ascii::CompareUppercase("aBc", "AbC"), 0);
  EXPECT_LT(Ascii::CompareUppercase(ConstData("ab"), ConstData("ABC")), 0);
  EXPECT_GT(Ascii::CompareLowercase(ConstData("ABC"), ConstData("ab")), 0);
  EXPECT_GT(Ascii::CompareLowercase("\xFF", "z"), 0);
  EXPECT_TRUE(Ascii::EqualIgnoringCase("aB1", "Ab1"));
  EXPECT_FALSE(Ascii::EqualIgnoringCase("ab", "abc"));
  EXPECT_FALSE(Ascii::EqualIgnoringCase("@", "`"));
}

TEST(HexDigits, AreInverse) {
  std::string digits;
  for (unsigned value = 0; value < 16; ++value) {
    digits += static_cast<char>(Ascii::HexDigit(value));
    EXPECT_EQ(unsigned(Ascii::HexDigitValue(static_cast<unsigned char>(digits.back()))), value);
  }
  EXPECT_EQ(digits, "0123456789abcdef");
  EXPECT_EQ(unsigned(Ascii::HexDigitValue('F')), 15u);
}

}  // namespace
