#include "portable/const_data.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "portable/buffer.h"
#include "portable/const_data_of_capacity.h"
#include "portable/rope.h"

namespace {

// "(a)(b)" of the pieces a and b.
std::string Shown(std::vector<ConstData> const& pieces) {
  std::string text;
  for (ConstData piece : pieces) text += "(" + MakeString(piece) + ")";
  return text;
}

// An area whose bytes are '.' until something is written.
struct Area {
  unsigned char bytes[6] = {'.', '.', '.', '.', '.', '.'};

  Data Room(unsigned long length) { return Data(bytes, length); }
  std::string Text() const { return MakeString(ConstData(bytes, sizeof bytes)); }
};

TEST(ConstData, FindsOccurrencesThatDoNotOverlapAndItsEnds) {
  struct {
    char const *text, *pattern;
    std::vector<unsigned long> positions;
    bool is_start, is_end;
  } const rows[] = {{"abcabc", "bc", {1, 4}, false, true}, {"abc", "abc", {0}, true, true},
                    {"aab", "ab", {1}, false, true},       {"abc", "a", {0}, true, false},
                    {"abc", "", {}, true, true},           {"", "", {}, true, true},
                    {"", "a", {}, false, false},           {"ab", "abc", {}, false, false},
                    {"bc", "abc", {}, false, false},       {"abc", "x", {}, false, false},
                    {"aaaa", "aa", {0, 2}, true, true},    {"aaa", "aa", {0}, true, true},
                    {"xaaxaa", "aa", {1, 4}, false, true}};
  for (auto const& row : rows) {
    SCOPED_TRACE(std::string(row.text) + " / " + row.pattern);
    ConstData const text(row.text), pattern(row.pattern);
    bool const is_found = !row.positions.empty();
    EXPECT_EQ(text.PositionsOf(pattern), row.positions);
    EXPECT_EQ(text.PositionOf(pattern), is_found ? static_cast<long>(row.positions[0]) : -1);
    EXPECT_EQ(text.Contains(pattern), is_found);
    EXPECT_EQ(text.StartsWith(pattern), row.is_start);
    EXPECT_EQ(text.EndsWith(pattern), row.is_end);
  }
  EXPECT_EQ(ConstData("a\xFFz").PositionOf(static_cast<unsigned char>(0xFF)), 1);
  EXPECT_FALSE(ConstData().Contains(static_cast<unsigned char>('a')));
}

TEST(ConstData, Orders) {
  struct {
    char const *left, *right;
    int order, reversed;
  } const rows[] = {{"ab", "abc", -1, -1}, {"bc", "abc", 1, -1}, {"", "", 0, 0},  {"", "a", -1, -1},
                    {"ba", "ab", 1, -1},   {"\xFF", "a", 1, 1},  {"a", "a", 0, 0}};
  for (auto const& row : rows) {
    SCOPED_TRACE(std::string(row.left) + " / " + row.right);
    ConstData const left(row.left);
    ConstData const right(row.right);
    EXPECT_EQ(Compare(left, right), row.order);
    EXPECT_EQ(Compare(right, left), -row.order);
    EXPECT_EQ(Compare(ConstCString(row.left), right), row.order);
    EXPECT_EQ(Compare(ConstCString(row.left), ConstCString(row.right)), row.order);
    EXPECT_EQ(CompareReversed(left, right), row.reversed);
    EXPECT_EQ(CompareReversed(right, left), -row.reversed);
    EXPECT_EQ(left < right, row.order < 0);
    EXPECT_EQ(left == right, row.order == 0);
  }
}

TEST(Split, TellsPiecesApart) {
  struct {
    char const *text, *separator;
    bool trim;
    char const *full, *all;
  } const rows[] = {{"a,,b", ",", false, "(a)(b)", "(a)()(b)"},
                    {" a , b ", ",", true, "(a)(b)", "(a)(b)"},
                    {" a , b ", ",", false, "( a )( b )", "( a )( b )"},
                    {"a,b,", ",", false, "(a)(b)", "(a)(b)()"},
                    {",", ",", false, "", "()()"},
                    {"a, ,b", ",", true, "(a)(b)", "(a)()(b)"},
                    {"a::b:::c", "::", false, "(a)(b)(:c)", "(a)(b)(:c)"},
                    {"", ",", false, "()", "()"},
                    {"", "", true, "()", "()"},
                    {"abc", "", false, "(abc)", "(abc)"},
                    {" a ", ",", true, "(a)", "(a)"},
                    {"  ", "long", true, "()", "()"}};
  for (auto const& row : rows) {
    SCOPED_TRACE(row.text);
    ConstData const text(row.text);
    EXPECT_EQ(Shown(text.Split(row.separator, row.trim, false)), row.full);
    EXPECT_EQ(Shown(text.Split(row.separator, row.trim, true)), row.all);
  }
}

TEST(TrimAsciiWhitespace, StopsAtWhatIsNotWhite) {
  auto const trimmed = [](ConstData data) { return MakeString(TrimAsciiWhitespace(data)); };
  EXPECT_EQ(trimmed("\t\n\r a b \r\n"), "a b");
  EXPECT_EQ(trimmed("\v a \f"), "\v a \f");
  EXPECT_EQ(trimmed(" \xA0 a \x80 "), "\xA0 a \x80");
  EXPECT_EQ(trimmed(" \t"), "");
  EXPECT_EQ(trimmed(ConstData()), "");
}

TEST(Data, CopiesWhatFits) {
  Area area;
  EXPECT_EQ(MakeString(ConstData("abcdef") >> area.Room(4)), "ef");
  EXPECT_EQ(area.Text(), "abcd..");
  EXPECT_EQ((area.Room(6) << ConstData("xy")).begin, area.bytes + 2);
  EXPECT_EQ(area.Text(), "xycd..");
  Data(area.bytes + 1, 5ul) << ConstData(area.bytes, 5ul);  // onto itself
  EXPECT_EQ(area.Text(), "xxycd.");
  EXPECT_TRUE((area.Room(1) << ConstData("long")).IsEmpty());
  EXPECT_TRUE((Data() << ConstData("a")).IsEmpty());
  EXPECT_EQ(area.Room(2)[1], 'x');
  EXPECT_THROW(area.Room(2)[2], DataOverflow);
  EXPECT_THROW(Data()[0], DataOverflow);
}

TEST(Buffer, AdvancesBothCursors) {
  BufferOfSize<5> output;
  ConstBuffer input(ConstData("abcdefg"));
  EXPECT_EQ(input.Get(), 'a');
  output.Cursor().Put('>');
  output.Cursor() << input;
  EXPECT_EQ(MakeString(output.Used()), ">bcde");
  EXPECT_EQ(MakeString(input), "fg");
  EXPECT_THROW(output.Cursor().Put('x'), DataOverflow);
  output.Reset();
  EXPECT_TRUE(output.Used().IsEmpty());
  output.Cursor() << input;
  EXPECT_EQ(MakeString(output.Used()), "fg");
}

TEST(Rope, JoinsItsPiecesInOrder) {
  auto const rope = ConstData("ab") + ConstData() + ConstData("cde");
  EXPECT_EQ(rope.end() - rope.begin(), 3);
  EXPECT_EQ(TotalLength(rope), 5u);
  EXPECT_EQ(MakeString(rope), "abcde");
  EXPECT_EQ(MakeString(ConstDataRope<1>(ConstData("x"))), "x");

  Area area;
  EXPECT_EQ((area.Room(6) << rope).begin, area.bytes + 5);
  EXPECT_EQ(area.Text(), "abcde.");
  BufferOfSize<4> small;
  small.Cursor() << rope;
  EXPECT_EQ(MakeString(small.Used()), "abcd");
}

TEST(ConstDataOfCapacity, HoldsUpToItsCapacity) {
  ConstDataOfCapacity<5> const full(ConstData("abcde"));
  EXPECT_EQ(MakeString(full), "abcde");
  EXPECT_STREQ(full.Text(), "abcde");
  EXPECT_EQ(ConstData(ConstDataOfCapacity<5>()).Length(), 0u);
  EXPECT_THROW(ConstDataOfCapacity<5>(ConstData("abcdef")), ConstDataCapacityExceeded);

  std::string const eleven(11, 'x');
  EXPECT_THROW(ConstDataOfCapacity<21>(ConstData(eleven) + ConstData(eleven)),
               ConstDataCapacityExceeded);
  EXPECT_EQ(ConstDataOfCapacity<21>(ConstData("-") + ConstData(eleven)).Length(), 12u);
}

}  // namespace
