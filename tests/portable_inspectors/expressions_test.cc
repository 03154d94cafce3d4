
#include <ostream>
#include <vector>

#include "answers.h"

namespace {

using ::testing::HasSubstr;

struct Row {
  char const *expression, *answer;
};

// For the names of failed tests.
void PrintTo(Row const& row, std::ostream* stream) { *stream << row.expression; }

class Expressions : public ::testing::TestWithParam<std::vector<Row>> {};

TEST_P(Expressions, AreAnswered) {
  for (Row const& row : GetParam()) EXPECT_EQ(Answer(row.expression), row.answer) << row.expression;
}

INSTANTIATE_TEST_SUITE_P(StringParts, Expressions,
                         ::testing::Values(std::vector<Row>{
                             {R"(length of "")", "0"},
                             {R"(length of "na\xc3\xafve")", "5"},
                             {R"(length of "\xff\xe2\x82\xed\xa0\x80")", "6"},
                             {R"(character 2 of "na\xc3\xafve")", "\xc3\xaf"},
                             {R"(character 3 of "abc")", "no such object"},
                             {R"(character (-1) of "abc")", "no such object"},
                             {R"(characters of "a\xe2\x82\xac")", "a\n\xe2\x82\xac"},
                             {R"(bytes of "a\xff")", "97\n255"},
                             {R"(prefix 2 of "abc")", "ab"},
                             {R"(prefix 9223372036854775807 of "abc")", "abc"},
                             {R"(suffix 2 of "ab\xe2\x82\xac")", "b\xe2\x82\xac"},
                             {R"(substring from 1 of "abc")", "bc"},
                             {R"(substring from 9 of "abc")", ""},
                             {R"(substring before "/" of "a/b/c")", "a"},
                             {R"(substring after "/" of "a/b/c")", "b/c"},
                             {R"(substring before last "/" of "a/b/c")", "a/b"},
                             {R"(substring after last "/" of "a/b/c")", "c"},
                             {R"(substring after "x" of "abc")", "no such object"},
                             {R"(substring after "" of "abc")", "no such object"},
                             {R"(substrings between "|" of "a|b||c")", "b\n"},
                             {R"(substrings between "|" of "a")", ""},
                             {R"(substring between "%" of "a%b%c")", "b"},
                             {R"(number of substrings separated by "," of "a,,b,")", "4"},
                             {R"(substrings separated by "" of "ab")", "ab"},
                             {R"(concatenation "+" of substrings separated by ", " of "a, b")",
                              "a+b"},
                             {R"(position "a" of "banana")", "1"},
                             {R"(positions "a" of "\xc3\xa4banana")", "2\n4\n6"},
                             {R"(positions "aa" of "aaaaa")", "0\n2"},
                             {R"(uppercase of "a\xc3\xa4z{")", "A\xc3\xa4Z{"},
                             {R"(lowercase of "A[Z@")", "a[z@"},
                             {R"("[" & trimmed text of " \t a b\x0d\n" & "]")", "[a b]"},
                             {R"(length of trim of " ")", "0"},
                             {R"(lines of "a\x0d\n\nb\x0dc\n")", "a\n\nb\nc"},
                             {R"(line 2 of "a\nb")", "b"},
                             {R"(line 0 of "a\nb")", "no such object"},
                             {R"(first line of "a\nb" & last line of "a\nb")", "ab"},
                             {R"(first of lines of "a\nb")", "a"},
                             {R"(exists line of "")", "false"},
                             {R"(words of "  a bc\t")", "a\nbc"},
                             {R"(last word of "a bc ")", "bc"},
                             {R"(word 9223372036854775807 of "a b")", "no such object"},
                         }));

INSTANTIATE_TEST_SUITE_P(
    StringOperatorsAndCasts, Expressions,
    ::testing::Values(std::vector<Row>{
        {R"("" & "a" & "")", "a"},
        {R"("a" < "b" and "a" < "aa" and "a" < "\xff" and "B" < "a")", "true"},
        {R"("" = "" and "a" != "A")", "true"},
        {R"("abc" contains "bc" and "abc" contains "" and "abc" does not contain "x")", "true"},
        {R"("abc" starts with "ab" and "abc" ends with "bc" and not ("a" ends with "aa"))", "true"},
        {R"(("12" as integer) + ("-3" as integer) + ("+1" as integer))", "10"},
        {R"("-9223372036854775808" as integer)", "-9223372036854775808"},
        {R"("9223372036854775808" as integer)", "no such object"},
        {R"(" 1" as integer | ("" as integer) | ("+-1" as integer) | 7)", "7"},
        {R"("0xFf" as hexadecimal)", "255"},
        {R"("ffffffffffffffff" as hexadecimal)", "-1"},
        {R"("10000000000000000" as hexadecimal)", "no such object"},
        {R"("0x" as hexadecimal)", "no such object"},
        {R"((0 as string) & "," & (-9223372036854775808 as string))", "0,-9223372036854775808"},
        {R"((0 as hexadecimal) & "," & (255 as hexadecimal) & "," & (-1 as hexadecimal))",
         "0,ff,ffffffffffffffff"},
        {R"(("true" as boolean) = (not ("false" as boolean)))", "true"},
        {R"("yes" as boolean)", "no such object"},
    }));

INSTANTIATE_TEST_SUITE_P(Numbers, Expressions,
                         ::testing::Values(std::vector<Row>{
                             {"(-7) / 2; (-7) mod 2; 7 / (-2)", "-3\n-1\n-3"},
                             {"(-9223372036854775808) mod (-1)", "0"},
                             {"absolute value of (-5)", "5"},
                             {"bit 63 of (-1) and bit 0 of 1 and not bit 1 of 1", "true"},
                             {"bit 64 of 1", "no such object"},
                             {"sum of integers below 5", "10"},
                             {"integers below 0", ""},
                             {"number of integers below 9 whose (it mod 2 = 0)", "5"},
                             {"2 * gigahertz + 400 * megahertz", "2400000000"},
                             {"gigahertz / megahertz", "1000"},
                             {"(gigahertz / 4 - kilohertz) as integer", "249999000"},
                             {"hertz < kilohertz and 5 as hertz = 5 * hertz", "true"},
                         }));

INSTANTIATE_TEST_SUITE_P(
    Matches, Expressions,
    ::testing::Values(std::vector<Row>{
        {R"(match "[0-9]+" of "a12b345")", "12"},
        {R"(matches "[0-9]+" of "a12b345")", "12\n345"},
        {R"(exists match "x" of "abc")", "false"},
        {R"(exists match "^$" of "")", "true"},
        {R"(number of matches "" of "a\xe2\x82\xac")", "3"},
        {R"(number of matches "$" of "")", "1"},
        {R"(number of matches "^a" of "aaa")", "1"},
        {R"(position of match "b+" of "\xc3\xa4bb")", "1"},
        {R"(length of match "b+" of "\xc3\xa4bb")", "2"},
        {R"_(group 2 of match "(a)(b)" of "xab")_", "b"},
        {R"(group 1 of match "(a)|b" of "b")", "no such object"},
        {R"(group 7 of match "a" of "a")", "no such object"},
        {R"_(groups of match "(a)|(b)()" of "b")_", "b\n"},
        {R"(group "major" of match "(?P<major>\\d+)\\." of "10.2")", "10"},
        {R"(exists match "(a*)*b" of concatenation of ("aaaaaaaaaaaaaaaa"; "c"))", "false"},
        {R"(text of matches "." of "\xffz")", "z"},
    }));

INSTANTIATE_TEST_SUITE_P(
    Versions, Expressions,
    ::testing::Values(std::vector<Row>{
        {R"("1.10" as version > "1.9" as version)", "true"},
        {R"(version "1.0" = "1" and "1.0rc1" < version "1.0")", "true"},
        {R"(version "1.2" < "none")", "no such object"},
        {R"(" 4.18.0-553.el8 " as version)", "4.18.0-553.el8"},
        {R"((major revision of it, minor revision of it, bug fix revision of it, stage of it,
              non release revision of it) of version "70000.2b3")",
         "70000, 2, 0, beta, 3"},
        {R"(maximum of (version "1.9"; version "1.10"; version "1.2"))", "1.10"},
    }));

INSTANTIATE_TEST_SUITE_P(
    Times, Expressions,
    ::testing::Values(std::vector<Row>{
        {"day / hour", "24"},
        {"3 * day + 4 * hour", "3 days, 04:00:00.000000"},
        {"(3 * day) mod (36 * hour)", "00:00:00.000000"},
        {R"("3 days, 04:00:00" as time interval = 76 * hour)", "true"},
        {R"("soon" as time interval)", "no such object"},
        {"3 * day + now > now + 2 * day", "true"},
        {"absolute value of (week - 8 * day) = day", "true"},
        {R"((time "2024-02-29T23:59:59.5Z" - time "2024-02-29T00:59:59.25+01:00") / millisecond)",
         "86400250"},
        {R"((universal date of it, universal weekday of it, universal month name of it,
              universal day_of_year of it, universal hour of it, universal microsecond of it)
             of (unix epoch + 1709251199 * second + 7 * microsecond))",
         "2024-02-29, Thursday, February, 60, 23, 7"},
        {R"((unix epoch - microsecond) as universal string)", "1969-12-31T23:59:59.999999Z"},
        {R"(universal time_of_day of unix epoch)", "00:00:00.000000"},
        {R"((now as string) as time <= now)", "true"},
        {R"(exists ("2024-13-01T00:00:00Z" as time))", "false"},
        {R"(exists name of time zone)", "true"},
    }));

TEST(Failures, NameTheirClass) {
  Row const rows[] = {
      {"9223372036854775807 + 1", "IntegerOverflow"},
      {"(-9223372036854775808) - 1", "IntegerOverflow"},
      {"(-9223372036854775808) / (-1)", "IntegerOverflow"},
      {"absolute value of (-9223372036854775808)", "IntegerOverflow"},
      {"1 / 0", "DivisionByZero"},
      {"1 mod 0", "DivisionByZero"},
      {"9223372036854775807 * day", "TimeOverflow"},
      {"day mod (day - day)", "DivisionByZero"},
      {"9223372036854775807 * microsecond + unix epoch + microsecond", "TimeOverflow"},
      {"9223372036854775807 * kilohertz", "FrequencyOverflow"},
      {R"(match "(" of "a")", "missing )"},
      {R"_(match "(((a{100}){100}){100})" of "a")_", "repetition"},
      {R"(match "\xff" of "a")", "UTF-8"},
  };
  for (Row const& row : rows) {
    EXPECT_THAT(Answer(row.expression), HasSubstr("failed: ")) << row.expression;
    EXPECT_THAT(Answer(row.expression), HasSubstr(row.answer)) << row.expression;
  }
}

}  // namespace
