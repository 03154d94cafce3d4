#include "portable/file_name.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

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
  } const rows[] = {{"Xyz", "xyz", false, true, -1}, {"Abc", "abc", false, false, -1},
                    {"aBC", "abc", false, true, -1}, {"bz", "BZ", false, true, 1},
                    {"{", "[", false, false, 1},     {"É", "é", false, false, -1},
                    {"same", "same", true, true, 0}, {"ab", "abc", false, false, -1},
                    {"", "", true, true, 0},         {"\xFF", "é", false, false, 1}};
  for (auto const& row : rows) {
    SCOPED_TRACE(std::string(row.one) + " " + row.other);
    FileName const one = Named(row.one), other = Named(row.other);
    EXPECT_EQ(Equal(one, other), row.equal);
    EXPECT_EQ(EqualIgnoringCase(one, other), row.equal_folded);
    EXPECT_EQ(StrCmp(one, other), row.order);
    EXPECT_EQ(StrCmp(other, one), -row.order);
  }
}

// What is left of the name, "no" where it has none such.
template <typename Mismatch>
std::string Rest(auto const& take) {
  try {
    return take().MakeUTF8String();
  } catch (Mismatch const&) {
    return "no";
  }
}

TEST(FileName, KnowsItsEnds) {
  struct {
    char const *name, *end;
    bool ignore_case;
    std::string behind_prefix;
    bool is_suffix;
    std::string before_extension;
  } const rows[] = {
      {"ABCD", "abc", true, "no", false, "no"},   {"BCDE", "bcd", true, "E", false, "no"},
      {"BCDE", "bcd", false, "no", false, "no"},  {"same", "same", false, "", true, "no"},
      {"a", "ab", false, "no", false, "no"},      {"a", "", false, "a", true, "no"},
      {"bAr", "bar", true, "no", false, "no"},    {"txt", "txt", false, "", true, "no"},
      {"a.txt", "txt", false, "no", true, "a"},   {"a.txt", ".txt", false, "no", true, "a"},
      {".txt", "txt", false, "no", true, ""},     {".txt", ".txt", false, "", true, ""},
      {"atxt", "txt", false, "no", true, "no"},   {"x.TXT", "txt", true, "no", true, "x"},
      {"x.TXT", "txt", false, "no", false, "no"}, {"x.APP", "app", true, "no", false, "no"},
      {"a.b.c", "b.c", false, "no", true, "a"}};
  for (auto const& row : rows) {
    SCOPED_TRACE(std::string(row.name) + " " + row.end);
    FileName const name = Named(row.name);
    bool const fold = row.ignore_case;
    auto const expect = [&](auto const& end) {
      EXPECT_EQ(name.HasPrefix(end, fold), row.behind_prefix != "no");
      EXPECT_EQ(Rest<PrefixDoesNotMatch>([&] { return name.NameAfterPrefix(end, fold); }),
                row.behind_prefix);
      EXPECT_EQ(name.HasSuffix(end, fold), row.is_suffix);
      EXPECT_EQ(name.HasExtension(end, fold), row.before_extension != "no");
      EXPECT_EQ(Rest<ExtensionDoesNotMatch>([&] { return name.NameBeforeExtension(end, fold); }),
                row.before_extension);
    };
    expect(Named(row.end));
    expect(row.end);
  }
}

TEST(FileName, FallsIntoParts) {
  using Kind = FileName::Kind;
  struct {
    char const *name, *base, *digits;
    Kind kind = Kind::kPlain;
  } const rows[] = {{"archive.tar.gz", "archive.tar", ""},
                    {"README", "README", ""},
                    {".profile", "", ""},
                    {"2009report", "2009report", "2009"},
                    {"12.APP", "12", "12", Kind::kApplication},
                    {"٣.framework", "٣", "", Kind::kBundle},
                    {"a.pkg", "a", "", Kind::kPackage},
                    {"app", "app", ""},
                    {"", "", ""}};
  for (auto const& row : rows) {
    SCOPED_TRACE(row.name);
    FileName const name = Named(row.name);
    EXPECT_EQ(name.BaseName().MakeUTF8String(), row.base);
    EXPECT_EQ(name.PrefixDigits().MakeUTF8String(), row.digits);
    EXPECT_EQ(name.ExtensionType(), row.kind);
  }
}

// The rules as they are told, which take for ever on some patterns.
bool MatchesByTheRules(std::string_view name, std::string_view pattern) {
  if (pattern.empty()) return name.empty();
  std::string_view const rest = pattern.substr(1);
  if (!name.empty() && (pattern[0] == '?' || pattern[0] == name[0])) {
    return MatchesByTheRules(name.substr(1), rest);
  }
  if (pattern[0] != '*') return false;
  bool matches = rest.empty() || MatchesByTheRules(name, rest);
  for (std::size_t i = 1; i < name.size(); ++i) matches |= MatchesByTheRules(name.substr(i), rest);
  return matches;
}

TEST(Wildcard, FollowsTheRulesEverywhereInBoundedTime) {
  struct {
    char const *name, *pattern;
    bool matches;
  } const rows[] = {{".txt", "*.txt", true}, {"ac", "a?c", false}, {"abc", "A*", false},
                    {"é", "?", true},        {"é", "\xE9", true},  {"*ab", "*b", false},
                    {"a", "[a]", false}};
  for (auto const& row : rows) {
    EXPECT_EQ(Named(row.name).MatchesWildCard(row.pattern), row.matches) << row.name;
  }
  auto const texts = [](std::string_view letters) {
    std::vector<std::string> all = {""};
    for (std::size_t i = 0; all[i].size() < 5; ++i) {
      for (char c : letters) all.push_back(all[i] + c);
    }
    return all;
  };
  std::vector<std::string> const patterns = texts("a*?");
  for (std::string const& name : texts("ab*")) {
    for (std::string const& pattern : patterns) {
      ASSERT_EQ(Named(name).MatchesWildCard(pattern.c_str()), MatchesByTheRules(name, pattern))
          << name << " " << pattern;
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
