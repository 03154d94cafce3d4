#include "portable/file_name.h"

#include <gtest/gtest.h>

#include "portable/core_foundation/strings.h"
#include "portable/wildcard.h"

namespace {

FileName Named(std::string const& bytes) { return FileName(ConstData(bytes)); }

TEST(FileName, KeepsAnyNameOfAtMost255Units) {
  for (char const* text : {"", "plain", "Zoë 😀", "x\xFF\xC3"}) {
    FileName const name = Named(text);
    EXPECT_EQ(name.MakeUTF8String(), text);
    EXPECT_TRUE(Equal(FileName(name.MakeCFString().Get()), name));
    EXPECT_TRUE(Equal(FileName(name.MakeHFSUniStr255()), name));
    EXPECT_STREQ(Stringy(name).Text() == nullptr ? "" : Stringy(name).Text(), text);
  }
  EXPECT_EQ(Named("😀").Count(), 2);
  EXPECT_EQ(FileName("Zo\x91", kCFStringEncodingMacRoman).MakeUTF8String(), "Zoë");
  EXPECT_THROW(FileName("Zo\xFF", kCFStringEncodingUTF8), CFStringCreateError);

  FileName const longest = Named(std::string(255, 'x'));
  EXPECT_EQ(longest.Count(), 255);
  EXPECT_THROW(Named(std::string(256, 'x')), IllegalFileNameLength);
  AutoCFString const longer = MakeCFString(std::string(256, 'x'), kCFStringEncodingASCII);
  EXPECT_THROW(FileName{longer.Get()}, IllegalFileNameLength);
  EXPECT_EQ(Named("ab").Concatenate(Named("cd")).MakeUTF8String(), "abcd");
  EXPECT_THROW(longest.Concatenate(Named("x")), IllegalFileNameLength);
  EXPECT_EQ(longest.Concatenate(Named("")).Count(), 255);
}

TEST(FileName, FoldsAllLettersButTheFirst) {
  struct {
    char const *one, *other;
    bool equal, equal_folded;
    int order;
  } const rows[] = {
      {"Xyz", "xyz", false, true, -1}, {"Abc", "abc", false, false, -1},
      {"aBC", "abc", false, true, -1}, {"bz", "BZ", false, true, 1},
      {"{", "[", false, false, 1},     {"É", "é", false, false, -1},
      {"same", "same", true, true, 0}, {"ab", "abc", false, false, -1},
      {"", "", true, true, 0},         {"\xFF", "é", false, false, 1},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(std::string(row.one) + " " + row.other);
    FileName const one = Named(row.one), other = Named(row.other);
    EXPECT_EQ(Equal(one, other), row.equal);
    EXPECT_EQ(EqualIgnoringCase(one, other), row.equal_folded);
    EXPECT_EQ(StrCmp(one, other), row.order);
    EXPECT_EQ(StrCmp(other, one), -row.order);
  }
}

enum class Part { kPrefix, kSuffix, kExtension };

TEST(FileName, KnowsItsEnds) {
  struct {
    Part part;
    char const *name, *end;
    bool ignore_case;
    char const* rest;  // null: it does not match
  } const rows[] = {
      {Part::kPrefix, "ABCD", "abc", true, nullptr},
      {Part::kPrefix, "BCDE", "bcd", true, "E"},
      {Part::kPrefix, "BCDE", "bcd", false, nullptr},
      {Part::kPrefix, "same", "same", false, ""},
      {Part::kPrefix, "a", "ab", false, nullptr},
      {Part::kPrefix, "a", "", false, "a"},
      {Part::kSuffix, "x.TXT", "txt", true, "x."},
      {Part::kSuffix, "x.TXT", "txt", false, nullptr},
      {Part::kSuffix, "bAr", "bar", true, nullptr},
      {Part::kExtension, "txt", "txt", false, nullptr},
      {Part::kExtension, "a.txt", "txt", false, "a"},
      {Part::kExtension, "a.txt", ".txt", false, "a"},
      {Part::kExtension, ".txt", "txt", false, ""},
      {Part::kExtension, ".txt", ".txt", false, ""},
      {Part::kExtension, "atxt", "txt", false, nullptr},
      {Part::kExtension, "x.TXT", "txt", true, "x"},
      {Part::kExtension, "x.APP", "app", true, nullptr},
      {Part::kExtension, "a.b.c", "b.c", false, "a"},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(std::string(row.name) + " " + row.end);
    FileName const name = Named(row.name), end = Named(row.end);
    bool const is_match = row.rest != nullptr;
    auto const expect = [&](auto const& as) {
      switch (row.part) {
        case Part::kPrefix:
          EXPECT_EQ(name.HasPrefix(as, row.ignore_case), is_match);
          if (!is_match) {
            EXPECT_THROW(name.NameAfterPrefix(as, row.ignore_case), PrefixDoesNotMatch);
          } else {
            EXPECT_EQ(name.NameAfterPrefix(as, row.ignore_case).MakeUTF8String(), row.rest);
          }
          break;
        case Part::kSuffix:
          EXPECT_EQ(name.HasSuffix(as, row.ignore_case), is_match);
          break;
        case Part::kExtension:
          EXPECT_EQ(name.HasExtension(as, row.ignore_case), is_match);
          if (!is_match) {
            EXPECT_THROW(name.NameBeforeExtension(as, row.ignore_case), ExtensionDoesNotMatch);
          } else {
            EXPECT_EQ(name.NameBeforeExtension(as, row.ignore_case).MakeUTF8String(), row.rest);
          }
      }
    };
    expect(end);
    expect(row.end);
  }
}

TEST(FileName, FallsIntoParts) {
  using Kind = FileName::Kind;
  struct {
    char const *name, *base, *digits;
    Kind kind;
  } const rows[] = {
      {"archive.tar.gz", "archive.tar", "", Kind::kPlain},
      {"README", "README", "", Kind::kPlain},
      {".profile", "", "", Kind::kPlain},
      {"2009report", "2009report", "2009", Kind::kPlain},
      {"12.APP", "12", "12", Kind::kApplication},
      {"٣.framework", "٣", "", Kind::kBundle},
      {"a.pkg", "a", "", Kind::kPackage},
      {"app", "app", "", Kind::kPlain},
      {"", "", "", Kind::kPlain},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.name);
    FileName const name = Named(row.name);
    EXPECT_EQ(name.BaseName().MakeUTF8String(), row.base);
    EXPECT_EQ(name.PrefixDigits().MakeUTF8String(), row.digits);
    EXPECT_EQ(name.ExtensionType(), row.kind);
  }
}

// The rules as they are told, which take for ever on some patterns.
bool MatchesByTheRules(UniChar const* units, unsigned long count, char const* pattern) {
  if (count == 0)
    return *pattern == '\0' || (*pattern == '*' && MatchesByTheRules(units, 0, pattern + 1));
  if (*pattern == '\0') return false;
  if (*pattern == '?' || static_cast<unsigned char>(*pattern) == *units) {
    return MatchesByTheRules(units + 1, count - 1, pattern + 1);
  }
  if (*pattern != '*') return false;
  if (pattern[1] == '\0') return true;
  for (; count > 0; ++units, --count) {
    if (MatchesByTheRules(units, count, pattern + 1)) return true;
  }
  return false;
}

TEST(Wildcard, Matches) {
  struct {
    char const *name, *pattern;
    bool matches;
  } const rows[] = {
      {"a.txt", "*.txt", true}, {".txt", "*.txt", true}, {"abc", "a?c", true}, {"ac", "a?c", false},
      {"", "*", true},          {"", "", true},          {"a", "", false},     {"abc", "A*", false},
      {"x", "**x", true},       {"é", "?", true},        {"é", "\xE9", true},  {"a*b", "a*b", true},
      {"*ab", "*b", false},     {"a", "[a]", false},
  };
  for (auto const& row : rows) {
    EXPECT_EQ(Named(row.name).MatchesWildCard(row.pattern), row.matches)
        << row.name << " " << row.pattern;
  }
}

TEST(Wildcard, FollowsTheRulesEverywhereInBoundedTime) {
  auto const texts = [](std::string_view letters) {
    std::vector<std::string> all = {""};
    for (std::size_t i = 0; all[i].size() < 5; ++i) {
      for (char c : letters) all.push_back(all[i] + c);
    }
    return all;
  };
  std::vector<std::string> const names = texts("ab*"), patterns = texts("a*?");
  for (std::string const& text : names) {
    FileName const name = Named(text);
    for (std::string const& pattern : patterns) {
      ASSERT_EQ(name.MatchesWildCard(pattern.c_str()),
                MatchesByTheRules(name.Units(), name.Count(), pattern.c_str()))
          << text << " " << pattern;
    }
  }
  std::string pattern;
  for (int i = 0; i < 100; ++i) pattern += "*a";
  EXPECT_FALSE(Named(std::string(255, 'a')).MatchesWildCard((pattern + "b").c_str()));
}

TEST(Wildcard, IsFoundInTheLastComponent) {
  struct {
    char const *path, *folder, *pattern;
  } const rows[] = {{"/a/*.txt", "/a", "*.txt"}, {"/*", "", "*"},
                    {"/a*/b", "/a*/b", nullptr}, {"/a/b?", "/a", "b?"},
                    {"/a/", "/a/", nullptr},     {"none*", "none*", nullptr}};
  for (auto const& row : rows) {
    ConstData folder;
    EXPECT_STREQ(MakeFileLocationWithWildcardUnix(row.path, folder), row.pattern);
    EXPECT_EQ(MakeString(folder), row.folder);
  }
}

}  // namespace
