#include "portable/stringy.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

std::string Shown(Stringy const& text) {
  return text.Text() == nullptr ? "(null)" : std::string(text.Text(), text.Length());
}

bool KeepsTextInside(Stringy const& text) {
  auto const* const object = reinterpret_cast<char const*>(&text);
  return text.Text() >= object && text.Text() < object + sizeof text;
}

TEST(Stringy, TellsNullFromEmpty) {
  EXPECT_EQ(Shown(Stringy()), "(null)");
  EXPECT_EQ(Shown(Stringy(static_cast<char const*>(nullptr))), "(null)");
  EXPECT_EQ(Shown(Stringy("abc", 0ul)), "(null)");
  EXPECT_EQ(Shown(Stringy(ConstData())), "(null)");
  EXPECT_EQ(Shown(Stringy("")), "");
  Stringy copy("long ago");
  copy = Stringy("");
  EXPECT_EQ(Shown(copy), "");
  EXPECT_EQ(Shown(Stringy(copy)), "");
  EXPECT_EQ(Stringy(""), Stringy());
}

TEST(Stringy, KeepsTheNulOfCountedBytes) {
  Stringy const text("a\0b", 3ul);
  EXPECT_EQ(text.Length(), 3u);
  EXPECT_EQ(text.Text()[3], '\0');
  EXPECT_EQ(text[2], 'b');
  EXPECT_EQ(text, Stringy("a"));  // compared as C strings
}

TEST(Stringy, WritesNumbers) {
  EXPECT_EQ(Shown(Stringy(-5)), "-5");
  EXPECT_EQ(Shown(Stringy(0)), "0");
  EXPECT_EQ(Shown(Stringy(std::uint32_t{4294967295})), "4294967295");
  EXPECT_EQ(Shown(Stringy(std::numeric_limits<std::size_t>::max())), "18446744073709551615");
  EXPECT_EQ(Shown(Stringy(std::numeric_limits<std::int64_t>::min())), "-9223372036854775808");
  EXPECT_EQ(Shown(Stringy(7ull)), "7");
}

TEST(Stringy, RefusesALengthBeyond32Bits) {
  // Refused before a byte is read.
  EXPECT_THROW(Stringy("a", 0xFFFFFFFFul), StringyLengthTooLong);
  EXPECT_THROW(Stringy("a", ~0ul), StringyLengthTooLong);
}

TEST(Stringy, MovesOutAt128CharactersAndBack) {
  std::string const longest(127, 'x');
  Stringy text(longest.c_str());
  EXPECT_TRUE(KeepsTextInside(text));
  text += 'y';
  EXPECT_FALSE(KeepsTextInside(text));
  EXPECT_EQ(Shown(text), longest + "y");
  Stringy copy(text);
  EXPECT_EQ(Shown(copy), longest + "y");
  EXPECT_NE(copy.Text(), text.Text());
  Stringy const moved(std::move(copy));
  EXPECT_EQ(Shown(moved), longest + "y");
  EXPECT_EQ(Shown(copy), "(null)");  // NOLINT(bugprone-use-after-move)

  text = Stringy(" b") + text;
  text = text.Left(2);
  EXPECT_TRUE(KeepsTextInside(text));
  EXPECT_EQ(Shown(text), " b");
  text = moved;
  text += " ";
  text.Replace('x', ' ');
  text.StripLeadingAndTrailingWhite();
  EXPECT_TRUE(KeepsTextInside(text));
  EXPECT_EQ(Shown(text), "y");
}

TEST(Stringy, Appends) {
  Stringy text;
  text += "";
  text += '\0';
  text += Stringy();
  text += ConstData();
  EXPECT_EQ(Shown(text), "(null)");
  text += 'a';
  text += "bc";
  text += Stringy("d");
  text += ConstData("ef");
  EXPECT_EQ(Shown(text), "abcdef");
  for (int round = 0; round < 5; ++round) text += text;  // 192 bytes, of its own
  EXPECT_EQ(text.Length(), 192u);
  EXPECT_TRUE(text.StartsWith("abcdefabcdef"));
  EXPECT_EQ(text.FindFromRight('f'), 191);
  EXPECT_EQ(Shown(Stringy("a") + Stringy("b")), "ab");
  Stringy const& same = text;
  text = same;
  EXPECT_EQ(text.Length(), 192u);
}

TEST(Stringy, Compares) {
  EXPECT_EQ(Stringy().Compare(Stringy("")), 0);
  EXPECT_EQ(Stringy().Compare("a"), -1);
  EXPECT_EQ(Stringy("").Compare(Stringy("\0a", 2ul)), -1);
  EXPECT_EQ(Stringy("a").Compare(Stringy()), 1);
  EXPECT_LT(Stringy("B"), Stringy("a"));
  EXPECT_GT(Stringy("\xFF"), "a");
  EXPECT_LE("a", Stringy("a"));
  EXPECT_GE(Stringy("b"), "a");
  EXPECT_NE("a", Stringy("A"));
  EXPECT_TRUE("a" == Stringy("a"));
  EXPECT_EQ(Stringy().CompareNoCase(Stringy("")), -1);
  EXPECT_EQ(Stringy("").CompareNoCase(Stringy()), 1);
  EXPECT_EQ(Stringy().CompareNoCase(Stringy()), 0);
  EXPECT_EQ(Stringy("aB").CompareNoCase("Ab"), 0);
  EXPECT_GT(Stringy("_").CompareNoCase("a"), 0);
  EXPECT_TRUE(Stringy("aB").EqualIgnoringCase(Stringy("Ab")));
  EXPECT_FALSE(Stringy("aB").EqualIgnoringCase(Stringy("a")));
  EXPECT_EQ(CompareIgnoreCase("abc", "ABC"), 0);
  EXPECT_LT(CompareIgnoreCase("ab", "ABC"), 0);
  EXPECT_EQ(CompareIgnoreCaseN("abX", "ABy", 2), 0);
  EXPECT_LT(CompareIgnoreCaseN("abX", "ABy", 3), 0);
  EXPECT_EQ(CompareIgnoreCaseN("ab", "AB", 9), 0);
}

TEST(Stringy, Searches) {
  Stringy const text("abcabc");
  EXPECT_TRUE(text.Contains("ca"));
  EXPECT_FALSE(text.Contains("cb"));
  EXPECT_FALSE(Stringy().Contains("a"));
  for (char const* start : {"", "ab", "abcabc"}) EXPECT_TRUE(text.StartsWith(start)) << start;
  for (char const* start : {"b", "abcabcd"}) EXPECT_FALSE(text.StartsWith(start)) << start;
  EXPECT_TRUE(text.StartsWith(nullptr));
  EXPECT_TRUE(Stringy().StartsWith(""));
  EXPECT_TRUE(text.StartsWithIgnoringCase("ABc"));
  EXPECT_TRUE(text.StartsWithIgnoringCase(Stringy("aBC")));
  EXPECT_TRUE(text.StartsWithIgnoringCase(Stringy()));
  EXPECT_FALSE(text.StartsWithIgnoringCase("abcabcd"));
  EXPECT_EQ(text.Find('b'), 1);
  EXPECT_EQ(text.FindFromRight('b'), 4);
  EXPECT_EQ(text.Find('x'), -1);
  EXPECT_EQ(text.FindFromRight('x'), -1);
  EXPECT_EQ(Stringy().Find('a'), -1);
  EXPECT_EQ(Stringy().FindFromRight('a'), -1);
}

TEST(Stringy, TakesParts) {
  Stringy const text("abcde");
  struct {
    Stringy part;
    char const* expected;
  } const rows[] = {
      {text.Mid(-5, 3), "abc"},  {text.Mid(0, 3), "abc"},
      {text.Mid(3, 9), "de"},    {text.Mid(3), "de"},
      {text.Mid(-1), "abcde"},   {text.Left(2), "ab"},
      {text.Left(9), "abcde"},   {text.Right(2), "de"},
      {text.Right(9), "abcde"},  {text.Mid(1, -1), ""},
      {text.Mid(10, 3), ""},     {text.Mid(5, 1), ""},
      {text.Left(-1), ""},       {text.Right(0), ""},
      {Stringy().Mid(0, 1), ""}, {text.Mid(2, std::numeric_limits<long>::max()), "cde"},
  };
  for (auto const& row : rows) EXPECT_TRUE(row.part == row.expected) << Shown(row.part);
}

TEST(Stringy, ChangesInPlace) {
  Stringy text("aXbX");
  text.Replace('X', 'Y');
  EXPECT_EQ(Shown(text), "aYbY");
  text.MakeLower();
  EXPECT_EQ(Shown(text), "ayby");
  text.MakeUpper();
  EXPECT_EQ(Shown(text), "AYBY");
  Stringy null;
  null.Replace('a', 'b');
  null.MakeLower();
  EXPECT_EQ(Shown(null), "(null)");
}

TEST(Stringy, Strips) {
  struct {
    char const* text;
    char const* left;
    char const* both;
  } const rows[] = {{" \t\r\na b \t", "a b \t", "a b"},
                    {"\va\f ", "\va\f ", "\va\f"},
                    {" \n ", "(null)", "(null)"},
                    {"", "(null)", "(null)"},
                    {"ab", "ab", "ab"}};
  for (auto const& row : rows) {
    Stringy left(row.text);
    left.TrimLeft();
    EXPECT_EQ(Shown(left), row.left);
    Stringy both(row.text);
    both.StripLeadingAndTrailingWhite();
    EXPECT_EQ(Shown(both), row.both);
  }
  EXPECT_EQ(Shown(Stringy("a/b/ c ").SubstringAfterLastSeparator('/')), "c");
  EXPECT_EQ(Shown(Stringy("a/ ").SubstringAfterLastSeparator('/')), "(null)");
  EXPECT_EQ(Shown(Stringy("abc").SubstringAfterLastSeparator('/')), "(null)");
}

std::vector<std::string> Pieces(char const* text, char separator, unsigned long most, bool strip) {
  std::vector<Stringy> pieces(1, "before");
  unsigned long const count =
      Stringy::SplitSeparatedStringsIntoArray(text, separator, pieces, most, strip);
  EXPECT_EQ(count + 1, pieces.size());
  std::vector<std::string> shown;
  for (Stringy const& piece : pieces) shown.push_back(MakeString(piece));
  shown.erase(shown.begin());
  return shown;
}

TEST(Stringy, SplitsSeparatedTexts) {
  using Texts = std::vector<std::string>;
  EXPECT_EQ(Pieces("a,b,", ',', 9, false), (Texts{"a", "b", ""}));
  EXPECT_EQ(Pieces(" a , ,b", ',', 9, true), (Texts{"a", "", "b"}));
  EXPECT_EQ(Pieces(" a , ,b", ',', 9, false), (Texts{" a ", " ", "b"}));
  EXPECT_EQ(Pieces("a,b,c", ',', 2, false), (Texts{"a", "b"}));
  EXPECT_EQ(Pieces("abc", ',', 9, false), Texts{"abc"});
  EXPECT_EQ(Pieces("one\0two\0\0three", '\0', 4, false), (Texts{"one", "two", "", "three"}));
  EXPECT_EQ(Pieces("a", ',', 0, false), Texts{});
  EXPECT_EQ(Pieces("", ',', 9, false), Texts{});
  EXPECT_EQ(Pieces(nullptr, ',', 9, false), Texts{});
}

}  // namespace
