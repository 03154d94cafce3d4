#include <utility>
#include <vector>

#include "answers.h"

namespace {

struct Row {
  char const *expression, *answer;
};

void ExpectAnswers(std::initializer_list<Row> rows) {
  for (Row const& row : rows) EXPECT_EQ(Answer(row.expression), row.answer) << row.expression;
}

TEST(Strings, AreTakenApart) {
  ExpectAnswers(
      {{R"(length of "", length of "na\xc3\xafve", length of "\xff\xe2\x82\xed\xa0\x80")",
        "0, 5, 6"},
       {R"(character 2 of "na\xc3\xafve")", "\xc3\xaf"},
       {R"(character 3 of "abc" | character (-1) of "abc" | "none")", "none"},
       {R"(characters of "a\xe2\x82\xac")", "a\n\xe2\x82\xac"},
       {R"(bytes of "a\xff")", "97\n255"},
       {R"((prefix 2 of it, prefix 9223372036854775807 of it) of "abc")", "ab, abc"},
       {R"(suffix 2 of "ab\xe2\x82\xac")", "b\xe2\x82\xac"},
       {R"((substring from 1 of it, substring from 9 of it) of "abc")", "bc, "},
       {R"((substring before "/" of it, substring after "/" of it) of "a/b/c")", "a, b/c"},
       {R"((substring before last "/" of it, substring after last "/" of it) of "a/b/c")",
        "a/b, c"},
       {R"(substring after "x" of "abc" | substring after "" of "abc" | "none")", "none"},
       {R"(substrings between "|" of "a|b||c")", "b\n"},
       {R"(substrings between "|" of "a")", ""},
       {R"(substring between "%" of "a%b%c")", "b"},
       {R"(number of substrings separated by "," of "a,,b,")", "4"},
       {R"(substrings separated by "" of "ab")", "ab"},
       {R"(concatenation "+" of substrings separated by ", " of "a, b")", "a+b"},
       {R"(position "a" of "banana")", "1"},
       {R"(positions "a" of "\xc3\xa4banana")", "2\n4\n6"},
       {R"(positions "aa" of "aaaaa")", "0\n2"},
       {R"(uppercase of "a\xc3\xa4z{", lowercase of "A[Z@")", "A\xc3\xa4Z{, a[z@"},
       {R"("[" & trimmed text of " \t a b\x0d\n" & "]")", "[a b]"},
       {R"(length of trim of " ")", "0"},
       {R"(lines of "a\x0d\n\nb\x0dc\n")", "a\n\nb\nc"},
       {R"((line 2 of it, first line of it, last line of it, first of lines of it) of "a\nb")",
        "b, a, b, a"},
       {R"(exists line 0 of "a\nb", exists line of "")", "false, false"},
       {R"(words of "  a bc\t")", "a\nbc"},
       {R"(last word of "a bc ", exists word 9223372036854775807 of "a b")", "bc, false"}});
}

TEST(Strings, AreComparedAndConverted) {
  ExpectAnswers(
      {{R"("a" < "b" and "a" < "aa" and "a" < "\xff" and "B" < "a")", "true"},
       {R"("" & "a" & "" = "a" and "" = "" and "a" != "A")", "true"},
       {R"("abc" contains "bc" and "abc" contains "" and "abc" does not contain "x")", "true"},
       {R"("abc" starts with "ab" and "abc" ends with "bc" and not ("a" ends with "aa"))", "true"},
       {R"(("12" as integer) + ("-3" as integer) + ("+1" as integer))", "10"},
       {R"("-9223372036854775808" as integer)", "-9223372036854775808"},
       {R"("9223372036854775808" as integer)", "no such object"},
       {R"(" 1" as integer | ("" as integer) | ("+-1" as integer) | 7)", "7"},
       {R"("0xFf" as hexadecimal, "ffffffffffffffff" as hexadecimal)", "255, -1"},
       {R"("10000000000000000" as hexadecimal | ("0x" as hexadecimal) | 7)", "7"},
       {R"((0 as string) & "," & (-9223372036854775808 as string))", "0,-9223372036854775808"},
       {R"((0 as hexadecimal) & "," & (255 as hexadecimal) & "," & (-1 as hexadecimal))",
        "0,ff,ffffffffffffffff"},
       {R"(("true" as boolean) = (not ("false" as boolean)))", "true"},
       {R"("yes" as boolean)", "no such object"}});
}

TEST(Numbers, AreReckonedWith) {
  ExpectAnswers(
      {{"(-7) / 2; (-7) mod 2; 7 / (-2)", "-3\n-1\n-3"},
       {"(-9223372036854775808) mod (-1), absolute value of (-5)", "0, 5"},
       {"bit 63 of (-1), bit 0 of 1, bit 1 of 1, exists bit 64 of 1", "true, true, false, false"},
       {"sum of integers below 5, number of integers below 0", "10, 0"},
       {"number of integers below 9 whose (it mod 2 = 0)", "5"},
       {"2 * gigahertz + 400 * megahertz, gigahertz / megahertz", "2400000000, 1000"},
       {"(gigahertz / 4 - kilohertz) as integer", "249999000"},
       {"hertz < kilohertz and 5 as hertz = 5 * hertz", "true"}});
}

TEST(Matches, AreFound) {
  ExpectAnswers(
      {{R"(match "[0-9]+" of "a12b345")", "12"},
       {R"(matches "[0-9]+" of "a12b345")", "12\n345"},
       {R"(exists match "x" of "abc", exists match "^$" of "")", "false, true"},
       {R"(number of matches "" of "a\xe2\x82\xac")", "3"},
       {R"(number of matches "$" of "", number of matches "^a" of "aaa")", "1, 1"},
       {R"((position of it, length of it) of match "b+" of "\xc3\xa4bb")", "1, 2"},
       {R"_(group 2 of match "(a)(b)" of "xab")_", "b"},
       {R"(group 1 of match "(a)|b" of "b" | group 7 of match "a" of "a" | "none")", "none"},
       {R"_(groups of match "(a)|(b)()" of "b")_", "b\n"},
       {R"(group "major" of match "(?P<major>\\d+)\\." of "10.2")", "10"},
       {R"(exists match "(a*)*b" of concatenation of ("aaaaaaaaaaaaaaaa"; "c"))", "false"},
       {R"(text of matches "." of "\xffz")", "z"}});
}

TEST(Versions, AreComparedAndTakenApart) {
  ExpectAnswers(
      {{R"("1.10" as version > "1.9" as version)", "true"},
       {R"(version "1.0" = "1" and "1.0rc1" < version "1.0")", "true"},
       {R"(version "1.2" < "none")", "no such object"},
       {R"(" 4.18.0-553.el8 " as version)", "4.18.0-553.el8"},
       {R"((major revision of it, minor revision of it, bug fix revision of it, stage of it,
              non release revision of it) of version "70000.2b3")",
        "70000, 2, 0, beta, 3"},
       {R"(maximum of (version "1.9"; version "1.10"; version "1.2"))", "1.10"}});
}

TEST(Times, AreReckonedWith) {
  ExpectAnswers(
      {{"day / hour, (3 * day) mod (36 * hour)", "24, 00:00:00.000000"},
       {"3 * day + 4 * hour", "3 days, 04:00:00.000000"},
       {R"("3 days, 04:00:00" as time interval = 76 * hour)", "true"},
       {R"("soon" as time interval)", "no such object"},
       {"3 * day + now > now + 2 * day, absolute value of (week - 8 * day) = day", "true, true"},
       {R"((time "2024-02-29T23:59:59.5Z" - time "2024-02-29T00:59:59.25+01:00") / millisecond)",
        "86400250"},
       {R"((universal date of it, universal weekday of it, universal month name of it,
              universal day_of_year of it, universal hour of it, universal microsecond of it)
             of (unix epoch + 1709251199 * second + 7 * microsecond))",
        "2024-02-29, Thursday, February, 60, 23, 7"},
       {R"((unix epoch - microsecond) as universal string)", "1969-12-31T23:59:59.999999Z"},
       {R"(universal time_of_day of unix epoch)", "00:00:00.000000"},
       {R"((now as string) as time <= now, exists ("2024-13-01T00:00:00Z" as time))",
        "true, false"},
       {R"(exists name of time zone)", "true"}});
}

TEST(Failures, NameTheirClass) {
  std::pair<char const*, std::vector<char const*>> const rows[] = {
      {"IntegerOverflow",
       {"9223372036854775807 + 1", "(-9223372036854775808) - 1", "(-9223372036854775808) / (-1)",
        "absolute value of (-9223372036854775808)"}},
      {"DivisionByZero", {"1 / 0", "1 mod 0", "day mod (day - day)"}},
      {"TimeOverflow",
       {"9223372036854775807 * day",
        "9223372036854775807 * microsecond + unix epoch + microsecond"}},
      {"FrequencyOverflow", {"9223372036854775807 * kilohertz"}},
      {"missing )", {R"(match "(" of "a")"}},
      {"repetition", {R"_(match "(((a{100}){100}){100})" of "a")_"}},
      {"UTF-8", {R"(match "\xff" of "a")"}}};
  for (auto const& [error, expressions] : rows) {
    for (char const* expression : expressions) {
      EXPECT_THAT(Answer(expression),
                  testing::AllOf(testing::StartsWith("failed: "), testing::HasSubstr(error)))
          << expression;
    }
  }
}

}  // namespace
