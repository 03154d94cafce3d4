#include "inspectors/activedirectory/directory/active_directory_local_computer.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"
#include "tests/support/on_scripted_machine.h"

namespace {

// 2026-11-21T07:00:00.000001Z
constexpr Instant kSampled{1795244400000001};

class Records : public OnScriptedMachine {
 protected:
  Records() { machine_->SetZone("Europe/Berlin", "CET-1CEST,M3.5.0,M10.5.0/3"); }
};

ActiveDirectoryGroup Group(std::string name, std::string sid) {
  ActiveDirectoryGroup group(std::move(name));
  group.SetSid(std::move(sid));
  return group;
}

void FillBase(ActiveDirectoryBase& record) {
  record.SetName("n");
  record.SetDistinguishedName("CN=n,DC=<&>");
  record.SetErrorMessage("failed");
  record.SetErrorCount(3);
  record.SetLastSampleTime(kSampled);
  record.SetCacheState(kFilledFromDirectory);
}

constexpr char kBaseXml[] =
    "<Name>n</Name><DistinguishedName>CN=n,DC=<&></DistinguishedName>"
    "<ErrorMessage>failed</ErrorMessage><ErrorCount>3</ErrorCount>"
    "<SampleTime>2026-11-21T08:00:00.000001+01:00</SampleTime>";

TEST_F(Records, AreWrittenFieldByField) {
  ActiveDirectoryLocalComputer computer;
  EXPECT_EQ(computer.ToXml(),
            "<Computer><Version>1.0</Version><CacheState>0</CacheState></Computer>");
  ActiveDirectoryGroup full = Group("", "S-1-5-32-544");
  FillBase(full);
  FillBase(computer);
  computer.SetGroupsErrorMessage("none");
  computer.SetGroups({full, Group("a", ""), Group("", "S-1-1-1")});
  std::string const base = kBaseXml;
  EXPECT_EQ(computer.ToXml(), "<Computer><Version>1.0</Version><CacheState>2</CacheState>" + base +
                                  "<GroupsErrorMessage>none</GroupsErrorMessage><Groups><Group>" +
                                  base +
                                  "<Sid>S-1-5-32-544</Sid></Group><Group><Name>a</Name></Group>"
                                  "<Group><Sid>S-1-1-1</Sid></Group></Groups></Computer>");
}

TEST_F(Records, LeaveOutATimeThatHasNoText) {
  ActiveDirectoryGroup group;
  group.SetLastSampleTime({INT64_MAX});
  EXPECT_EQ(group.ToXml(), "<Group></Group>");
}

// Each row stands behind `<User><Version>1.0</Version>`, and is followed by `</User>`.
TEST_F(Records, AreReadBack) {
  std::string const group_a = "<Group><Name>a</Name></Group>";
  std::string const groups = "<Groups>" + group_a + "</Groups>";
  struct {
    char const* name;
    std::string text, content;
  } const rows[] = {
      {"what was written",
       "<Name>n</Name><DistinguishedName>d</DistinguishedName><ErrorMessage>e</ErrorMessage>"
       "<ErrorCount>4294967295</ErrorCount>"
       "<SampleTime>2026-11-21T08:00:00.000001+01:00</SampleTime>"
       "<GroupsErrorMessage>g</GroupsErrorMessage><Domain>D</Domain><Groups>"
       "<Group><Name>a</Name><DistinguishedName>b</DistinguishedName>"
       "<ErrorMessage>c</ErrorMessage>"
       "<SampleTime>2026-11-21T08:00:00.000001+01:00</SampleTime><Sid>S</Sid></Group></Groups>",
       "="},
      {"references", "<Name>&lt;&#x41;&amp;&apos;</Name>", "<Name><A&&apos;</Name>"},
      {"raw sign eats what follows", "<Name>a&b</Name><Domain>c;d</Domain>", ""},
      {"in pieces", "<Name>a<![CDATA[<b>]]><!-- c -->d</Name>", "<Name>a<b>d</Name>"},
      {"twice", "<Name>a</Name><Name>b</Name>", "<Name>ab</Name>"},
      {"field outside of fields", "a<Name></Name>b", ""},
      {"no numerals", "<ErrorCount>3x</ErrorCount><CacheState>-1</CacheState>", ""},
      {"too large", "<ErrorCount>4294967296</ErrorCount>", ""},
      {"no time", "<SampleTime>yesterday</SampleTime>", ""},
      {"good time, then bad",
       "<SampleTime>2026-11-21T07:00:00Z</SampleTime><SampleTime>x"
       "</SampleTime>",
       "<SampleTime>2026-11-21T08:00:00.000000+01:00</SampleTime>"},
      {"group's error count", "<Groups><Group><ErrorCount>5</ErrorCount></Group></Groups>",
       "<Groups><Group></Group></Groups>"},
      {"group's bad time", "<Groups><Group><SampleTime>x</SampleTime></Group></Groups>",
       "<Groups><Group></Group></Groups>"},
      {"group without a list", group_a, ""},
      {"list later", group_a + groups, groups},
      {"list ended again", groups + "</Groups>", groups},
      {"list anew", groups + "<Groups></Groups>", ""},
      {"empty list keeps what is there", groups + "<Groups/>", groups},
      {"group ended twice", "<Groups>" + group_a + "</Group></Groups>",
       "<Groups>" + group_a + group_a + "</Groups>"},
      {"group's name is not the record's", "<Name>n</Name>" + groups, "<Name>n</Name>" + groups},
      {"unknown element hides", "<Other></Other><Name>n</Name>", ""},
      {"until a group ends", "<Other></Other><Group></Group><Name>n</Name>", "<Name>n</Name>"},
      {"unknown end hides", "</Other><Name>n</Name>", ""},
      {"computer is unknown", "<Computer><Name>n</Name>", ""},
      {"record anew", "<Name>a</Name><User><Name>b</Name>", "<Name>b</Name>"},
      {"attributes", "<Name x='1'>n</Name>", "<Name>n</Name>"},
  };
  for (auto const& row : rows) {
    std::string const start = "<User><Version>1.0</Version>", end = "</User>";
    ActiveDirectoryLocalUser user;
    user.FromXml(start + row.text + end);
    EXPECT_EQ(user.ToXml(), start + "<CacheState>0</CacheState>" +
                                (row.content == "=" ? row.text : row.content) + end)
        << row.name;
  }
}

TEST_F(Records, OfAnotherVersionAreEmpty) {
  std::string const empty = ActiveDirectoryLocalComputer().ToXml();
  struct {
    char const* name;
    std::string text, error;
  } const rows[] = {
      {"other version", "<Computer><Version>1.1</Version></Computer>", ""},
      {"no version", "<Computer><CacheState>2</CacheState></Computer>", ""},
      {"longer version", "<Computer><Version>1.0 </Version></Computer>", ""},
      {"version twice", "<Computer><Version>1.0</Version><Version>1.0</Version></Computer>", ""},
      {"injected by a name", "<Computer><Version>1.0</Version><Name></Name><Version>2</Version>",
       ""},
      {"cut short", "<Computer><Version>1.0</Version><ErrorMessage>new</ErrorMess", "old"},
      {"cut before the end", "<Computer><Version>1.0</Version><ErrorMessage>new</ErrorMessage>",
       "new"},
      {"user", "<User><ErrorMessage>new</ErrorMessage></User>", "old"},
      {"nothing", "", "old"},
      {"no XML", std::string("bplist00\0\xFF\xFE", 11), "old"},
  };
  for (auto const& row : rows) {
    ActiveDirectoryLocalComputer computer;
    FillBase(computer);
    computer.SetErrorMessage("old");
    computer.SetGroups({Group("a", "")});
    computer.FromXml(row.text);
    EXPECT_EQ(computer.GetErrorMessage(), row.error) << row.name;
    EXPECT_EQ(computer.ToXml() == empty, row.error.empty()) << row.name;
    EXPECT_EQ(computer.GetGroups().empty(), row.error.empty()) << row.name;
  }
  ActiveDirectoryLocalUser user("u", "d");
  user.SetStatus(ActiveDirectoryLocalUser::Status::kSucceeded);
  user.FromXml("<User></User>");
  EXPECT_EQ(user.ToXml(), ActiveDirectoryLocalUser().ToXml());
  EXPECT_EQ(user.GetStatus(), ActiveDirectoryLocalUser::Status::kNeverRefreshed);
}

TEST_F(Records, FindGroupsByName) {
  ActiveDirectoryLocalComputer computer;
  ActiveDirectoryLocalUser user;
  computer.SetGroups({Group("Other", "0"), Group("Staff", "1"), Group("staff", "2")});
  user.SetGroups(computer.GetGroups());
  struct {
    char const *name, *of_computer, *of_user;
  } const rows[] = {{"Staff", "1", "1"},
                    {"staff", "1", "2"},
                    {"STAFF", "1", "-"},
                    {"Staf", "-", "-"},
                    {"", "-", "-"}};
  auto const sid_of = [](char const* name, auto const& account) {
    ActiveDirectoryGroup group = Group("", "-");
    bool const is_found = account.GetGroup(name, group);
    EXPECT_EQ(is_found, group.GetSid() != "-") << name;
    return group.GetSid();
  };
  for (auto const& row : rows) {
    EXPECT_EQ(sid_of(row.name, computer), row.of_computer) << row.name;
    EXPECT_EQ(sid_of(row.name, user), row.of_user) << row.name;
  }
}

TEST_F(Records, KeepTheSidOfAClearedGroup) {
  ActiveDirectoryGroup group = Group("", "S-1-1-1");
  FillBase(group);
  group.ClearData();
  EXPECT_EQ(group.ToXml(), "<Group><Sid>S-1-1-1</Sid></Group>");
  EXPECT_EQ(group.GetCacheState(), kNeverFilled);
}

std::string Repeated(std::string const& text, std::size_t size) {
  std::string all;
  while (all.size() < size) all += text;
  return all;
}

// Every one of these would take hours, or more memory than there is, if it were simply obeyed.
TEST_F(Records, AskForNoEndlessWork) {
  constexpr std::size_t kHalf = kLargestRecordFile / 2;
  std::string const many_groups = "<Groups>" + Repeated("</Group>", kHalf);
  struct {
    char const* name;
    std::string text;
  } const rows[] = {
      {"one group over and over",
       "<Group><Name>" + Repeated("n", kHalf) + "</Name>" + Repeated("</Group>", kHalf)},
      {"many groups over and over", many_groups + Repeated("</Groups>", kHalf)},
      {"a text over and over", "<Name>" + Repeated("n", kHalf) + Repeated("</Name>", kHalf)},
      {"a numeral", "<CacheState>" + Repeated("0", kHalf) + Repeated("</CacheState>", kHalf)},
      {"a time", "<SampleTime>2026-11-21T08:00:00." + Repeated("0", kHalf) +
                     Repeated("</SampleTime>", kHalf)},
  };
  for (auto const& row : rows) {
    ActiveDirectoryLocalComputer computer;
    EXPECT_THROW(computer.FromXml("<Computer>" + row.text), DirectoryRecordTooLarge) << row.name;
  }
  ActiveDirectoryLocalComputer computer;
  computer.FromXml(Repeated("<Computer>", kHalf));
  computer.FromXml("<Computer><Version>1.0</Version>" + many_groups.substr(0, 400'000) +
                   "</Groups>");
  EXPECT_EQ(computer.GetGroups().size(), 49999u);
}

}  // namespace
