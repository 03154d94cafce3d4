#include "inspectors/activedirectory/directory/sid.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

std::string const kDomainUser =
    "\1\5\0\0\0\0\0\5\x15\0\0\0\1\2\3\4\xFF\xFF\xFF\xFF\0\0\0\x80\0\2\0\0"s;

TEST(Sid, IsWrittenAsText) {
  struct {
    char const* name;
    std::string sid, text;
  } const rows[] = {
      {"five sub-authorities", kDomainUser, "S-1-5-21-67305985-4294967295-2147483648-512"},
      {"bytes behind it", kDomainUser + "x", "S-1-5-21-67305985-4294967295-2147483648-512"},
      {"sub-authorities of 0", "\1\3\0\0\0\0\0\5\0\0\0\0\x20\0\0\0\0\0\0\0"s, "S-1-5-32"},
      {"only those", "\1\1\0\0\0\0\0\1\0\0\0\0"s, "S-1-1"},
      {"no sub-authority", "\1\0\0\0\0\0\0\5"s, "S-1-5"},
      {"authority 0", "\1\1\0\0\0\0\0\0\1\0\0\0"s, "S-1-0-1"},
      {"upper authority bytes", "\1\1\7\7\1\2\3\4\1\0\0\0"s, "S-1-16909060-1"},
      {"revision is one character", "\x0A\0\0\0\0\0\0\5"s, "S-:-5"},
      {"one byte short", kDomainUser.substr(0, 27), ""},
      {"more announced than there are", "\1\xFF\0\0\0\0\0\5\1\0\0\0"s, ""},
      {"no whole header", "\1\0\0\0\0\0\0"s, ""},
      {"nothing", "", ""},
  };
  for (auto const& row : rows) {
    EXPECT_EQ(XQConvertSidToStringSid(ConstData(row.sid)), row.text) << row.name;
  }
}

TEST(Sid, IsReadFromText) {
  std::string most = "S-1-5", more;
  for (int i = 0; i < 255; ++i) most += "-7";
  more = most + "-7";
  struct {
    char const* name;
    std::string text, sid;
  } const rows[] = {
      {"two sub-authorities", "S-1-5-32-544", "\1\2\0\0\0\0\0\5\x20\0\0\0\x20\2\0\0"s},
      {"one", "S-1-1-0", "\1\1\0\0\0\0\0\1\0\0\0\0"s},
      {"large numbers", "S-1-16909060-4294967295", "\1\1\0\0\1\2\3\4\xFF\xFF\xFF\xFF"s},
      {"beyond 32 bits", "S-1-4294967297-4294967298", "\1\1\0\0\0\0\0\1\2\0\0\0"s},
      {"prefix unchecked", "x y-5-6-7", "I\1\0\0\0\0\0\5\6\0\0\0"s},
      {"not digits", "S-1-5-:0", "\1\1\0\0\0\0\0\5\x64\0\0\0"s},
      {"two dashes count themselves", "S-15-6", "\1\2\0\0\0\0\0\0\6\0\0\0\6\0\0\0"s},
      {"text runs out", "S-1-5-6-", "\1\2\0\0\0\0\0\5\6\0\0\0\6\0\0\0"s},
      {"empty piece", "S-1-5--6", "\1\2\0\0\0\0\0\5\0\0\0\0\6\0\0\0"s},
      {"no sub-authority", "S-1-5", ""},
      {"nothing behind the dash", "S-1-5-", ""},
      {"nothing behind the prefix", "S-1-", ""},
      {"no dash", "S1256", ""},
      {"short", "S-1", ""},
      {"nothing", "", ""},
      {"more than a SID can have", more, ""},
  };
  for (auto const& row : rows) {
    EXPECT_EQ(XQConvertStringSidToSid(ConstData(row.text)), row.sid) << row.name;
  }
  std::string const largest = XQConvertStringSidToSid(ConstData(most));
  EXPECT_EQ(XQConvertSidToStringSid(ConstData(largest)), most);
}

TEST(Sid, EqualsItsLikeOnly) {
  EXPECT_TRUE(XQEqualSid(ConstData(kDomainUser), ConstData(kDomainUser + "behind")));
  for (std::size_t const at : {0, 1, 2, 7, 8, 27}) {
    std::string other = kDomainUser;
    ++other[at];
    EXPECT_FALSE(XQEqualSid(ConstData(kDomainUser), ConstData(other))) << at;
  }
  EXPECT_FALSE(XQEqualSid(ConstData(kDomainUser), {}));
  EXPECT_FALSE(XQEqualSid({}, {}));
}

}  // namespace
