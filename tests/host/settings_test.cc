#include "host/settings.h"

#include <gtest/gtest.h>

#include "host/shown_text.h"
#include "host/time_limit.h"

namespace gatotu::host {
namespace {

TEST(Settings, ReadsItemsOfSections) {
  Settings settings;
  settings.Assign("A", "kept", "old");
  ASSERT_EQ(
      settings.ReadText("; comment\n\n[A]\n x = 1 = 2 \r\n[ B ]\nx=\" padded \"\n#y\ny=\n", "f"),
      std::nullopt);
  EXPECT_EQ(*settings.Find("A", "kept"), "old");
  EXPECT_EQ(*settings.Find("A", "x"), "1 = 2");
  EXPECT_EQ(*settings.Find("B", "x"), " padded ");
  EXPECT_EQ(*settings.Find("B", "y"), "");
  EXPECT_EQ(settings.Find("a", "x"), nullptr);
}

TEST(Settings, RefusesBrokenTextWholeWithTheLine) {
  std::pair<std::string_view, char const*> const cases[] = {
      {"[A]\nx=1\n\nnonsense\n", "f:4: expected [Section] or name = value"},
      {"x=1", "f:1: an item before the first [Section]"},
      {"[A\n", "f:1: a section is written [Name]"},
      {"[ ]\n", "f:1: a section without a name"},
      {"[A]\n=1\n", "f:2: a value without a name"},
      {"[A]\nx=\"1\n", "f:2: a quoted value ends with its line and holds no other quote"},
      {{"[A]\nx\0=1\n", 9}, "f:2: a NUL byte; not a settings file"},
  };
  for (auto const& [text, message] : cases) {
    Settings settings;
    EXPECT_EQ(settings.ReadText(text, "f").value_or(""), message);
    EXPECT_EQ(settings.Find("A", "x"), nullptr) << text;
  }
}

TEST(Settings, AssignmentsOfTheCommandLine) {
  Settings settings;
  EXPECT_EQ(settings.ReadAssignment("A:x=y:z=1"), std::nullopt);
  EXPECT_EQ(*settings.Find("A", "x"), "y:z=1");
  for (char const* broken : {"", "A", "A:x", "A=x", ":x=1", "A:=1"}) {
    EXPECT_NE(settings.ReadAssignment(broken), std::nullopt) << broken;
  }
}

TEST(Duration, UnitsAndRefusals) {
  using namespace std::chrono_literals;
  EXPECT_EQ(ParseDuration("30"), 30s);
  EXPECT_EQ(ParseDuration("1.5s"), 1500ms);
  EXPECT_EQ(ParseDuration("500ms"), 500ms);
  EXPECT_EQ(ParseDuration("2m"), 2min);
  EXPECT_EQ(ParseDuration("0"), 0s);
  EXPECT_GT(*ParseDuration("0.0000000001s"), 0s);
  for (char const* broken :
       {"", "s", "-1", "1 s", "1d", "inf", "nan", "1e3", "1e400", "99999999h"}) {
    EXPECT_EQ(ParseDuration(broken), std::nullopt) << broken;
  }
}

TEST(ShownText, KeepsUtf8AndReadsTheRestAsMacRoman) {
  std::string storage;
  for (std::string_view const utf8 :
       {"", "plain", "\xc3\xa9", "\xef\xbf\xbf", "\xf4\x8f\xbf\xbf"}) {
    EXPECT_EQ(ShownText(utf8, storage), utf8);
  }
  EXPECT_EQ(ShownText("caf\x8e", storage), "caf\xc3\xa9");
  EXPECT_EQ(ShownText("\xdb\xf0", storage), "\xe2\x82\xac\xef\xa3\xbf");
  for (std::string_view const broken :
       {"\xc0\x80", "\xe0\x80\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xc3", "\x80", "\xff"}) {
    EXPECT_FALSE(IsUtf8(broken));
    EXPECT_TRUE(IsUtf8(ShownText(broken, storage)));
  }
}

}  // namespace
}  // namespace gatotu::host
