#include "portable/stringy.h"

#include <gtest/gtest.h>

#include <cstdint>
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

TEST(Stringy, IsMadeOfTextsAndNumbers) {
  char const* const none = nullptr;
  std::pair<Stringy, char const*> const rows[] = {{Stringy(), "(null)"},
                                                  {Stringy(none), "(null)"},
                                                  {Stringy("abc", 0ul), "(null)"},
                                                  {Stringy(ConstData()), "(null)"},
                                                  {Stringy(""), ""},
                                                  {Stringy(-5), "-5"},
                                                  {Stringy(UINT64_MAX), "18446744073709551615"}};
  for (auto const& [text, shown] : rows) {
    EXPECT_EQ(Shown(text), shown);
    Stringy assigned("long ago");
    assigned = text;
    EXPECT_EQ(Shown(assigned), shown);
  }
  EXPECT_EQ(Shown(Stringy("a\0b", 3ul)), std::string("a\0b", 3));
  EXPECT_EQ(Stringy("a\0b", 3ul)[2], 'b');
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
  for (int round = 0; round < 5; ++round) text += text;
  Stringy const& same = text;
  text = same;
  std::string expected;
  for (int round = 0; round < 32; ++round) expected += "abcdef";
  EXPECT_EQ(Shown(text), expected);
}

TEST(Stringy, Compares) {
  auto const expect = [&](Stringy const& left, Stringy const& right, int order, int without_case) {
    SCOPED_TRACE(Shown(left) + " / " + Shown(right));
    EXPECT_EQ(left.Compare(right) <=> 0, order <=> 0);
    EXPECT_EQ(right.Compare(left) <=> 0, 0 <=> order);
    EXPECT_EQ(left < right, order < 0);
    EXPECT_EQ(left == right, order == 0);
    EXPECT_EQ(left.CompareNoCase(right) <=> 0, without_case <=> 0);
    EXPECT_EQ(right.CompareNoCase(left) <=> 0, 0 <=> without_case);
  };
  expect(Stringy(), Stringy(), 0, 0);
  expect(Stringy(), "", 0, -1);
  expect(Stringy(), "a", -1, -1);
  expect("", Stringy("\0a", 2ul), -1, 0);
  expect("a", Stringy("a\0b", 3ul), 0, 0);
  expect("B", "a", -1, 1);
  expect("\xFF", "a", 1, 1);
  expect("aB", "Ab", 1, 0);
  expect("_", "a", -1, 1);
  expect("ab", "ABC", 1, -1);
  EXPECT_LE("a", Stringy("a"));
  EXPECT_NE("a", Stringy("A"));
  EXPECT_TRUE(Stringy("aB").EqualIgnoringCase(Stringy("Ab")));
  EXPECT_FALSE(Stringy("aB").EqualIgnoringCase(Stringy("a")));
  EXPECT_LT(CompareIgnoreCase("ab", "ABC"), 0);
  EXPECT_EQ(CompareIgnoreCaseN("abX", "ABy", 2), 0);
  EXPECT_LT(CompareIgnoreCaseN("abX", "ABy", 3), 0);
  EXPECT_EQ(CompareIgnoreCaseN("ab", "AB", 9), 0);
}

TEST(Stringy, Searches) {
  Stringy const text("abcAbc"), null("", 0ul);
  EXPECT_TRUE(text.Contains("cA"));
  EXPECT_FALSE(text.Contains("ca"));
  EXPECT_FALSE(null.Contains("a"));
  for (char const* start : {"", "ab", "abcAbc"}) EXPECT_TRUE(text.StartsWith(start)) << start;
  for (char const* start : {"b", "aB", "abcAbcd"}) EXPECT_FALSE(text.StartsWith(start)) << start;
  EXPECT_TRUE(text.StartsWith(nullptr));
  EXPECT_TRUE(null.StartsWith(""));
  EXPECT_TRUE(text.StartsWithIgnoringCase("ABca"));
  EXPECT_TRUE(text.StartsWithIgnoringCase(null));
  EXPECT_FALSE(text.StartsWithIgnoringCase("abcabcd"));
  EXPECT_EQ(text.Find('b'), 1);
  EXPECT_EQ(text.FindFromRight('b'), 4);
  for (Stringy const& without : {text, null}) {
    EXPECT_EQ(without.Find('x'), -1);
    EXPECT_EQ(without.FindFromRight('x'), -1);
  }
}

TEST(Stringy, TakesParts) {
  Stringy const text("abcde");
  std::pair<Stringy, char const*> const rows[] = {
      {text.Mid(-5, 3), "abc"},  {text.Mid(0, 3), "abc"},
      {text.Mid(3, 9), "de"},    {text.Mid(3), "de"},
      {text.Mid(-1), "abcde"},   {text.Mid(1, -1), ""},
      {text.Mid(10, 3), ""},     {text.Mid(5, 1), ""},
      {text.Left(2), "ab"},      {text.Left(9), "abcde"},
      {text.Left(-1), ""},       {text.Right(2), "de"},
      {text.Right(9), "abcde"},  {text.Right(0), ""},
      {Stringy().Mid(0, 1), ""}, {text.Mid(2, INT64_MAX), "cde"}};
  for (auto const& [part, expected] : rows) EXPECT_EQ(part, expected) << Shown(part);
}

TEST(Stringy, ChangesAndStripsInPlace) {
  Stringy text("aXbX"), null;
  for (Stringy* each : {&text, &null}) each->Replace('X', 'Y');
  EXPECT_EQ(Shown(text), "aYbY");
  for (Stringy* each : {&text, &null}) each->MakeLower();
  EXPECT_EQ(Shown(text), "ayby");
  text.MakeUpper();
  EXPECT_EQ(Shown(text), "AYBY");
  EXPECT_EQ(Shown(null), "(null)");

  struct {
    char const *text, *left, *both;
  } const rows[] = {{" \t\r\na b \t", "a b \t", "a b"},
                    {"\va\f ", "\va\f ", "\va\f"},
                    {" \n ", "(null)", "(null)"},
                    {"", "(null)", "(null)"}};
  for (auto const& row : rows) {
    Stringy left(row.text), both(row.text);
    left.TrimLeft();
    EXPECT_EQ(Shown(left), row.left);
    both.StripLeadingAndTrailingWhite();
    EXPECT_EQ(Shown(both), row.both);
  }
  EXPECT_EQ(Shown(Stringy("a/b/ c ").SubstringAfterLastSeparator('/')), "c");
  EXPECT_EQ(Shown(Stringy("a/ ").SubstringAfterLastSeparator('/')), "(null)");
  EXPECT_EQ(Shown(Stringy("abc").SubstringAfterLastSeparator('/')), "(null)");
}

std::vector<Stringy> Pieces(char const* text, char separator, unsigned long most, bool strip) {
  std::vector<Stringy> pieces(1, "before");
  auto const count = Stringy::SplitSeparatedStringsIntoArray(text, separator, pieces, most, strip);
  EXPECT_EQ(count + 1, pieces.size());
  pieces.erase(pieces.begin());
  return pieces;
}

TEST(Stringy, SplitsSeparatedTexts) {
  using Texts = std::vector<Stringy>;
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
