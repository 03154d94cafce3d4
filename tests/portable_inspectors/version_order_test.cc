#include "portable_inspectors/version_order.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// Classes of equal versions in ascending order.
std::vector<std::vector<std::string>> const& Ladder() {
  static std::vector<std::vector<std::string>> const ladder = {
      {"0", "0.0", "00", "v0"},
      {"0.0.1"},
      {"1~~"},
      {"1~", "1.0~"},
      {"1.0d3", "1d3"},
      {"1.0a1", "1.0.0alpha1", "1.0-alpha.1"},
      {"1.0a2"},
      {"1.0b1", "1-beta1", "1.0~beta1", "1.0.pre1"},
      {"1.0rc2", "1.0-rc.2", "1.0.0fc2"},
      {"1", "1.0", "1.0.0.0", "01.0", "v1", "V1.0", "1-0", "1."},
      {"1-1", "1.0-1"},
      {"1.0.0.0.5"},
      {"1.0.1"},
      {"1.1.1~rc1"},
      {"1.1.1"},
      {"1.1.1-3.el8"},
      {"1.1.1-553.el8", "1.1.1-553.EL8"},
      {"1.1.1-553.el9"},
      {"1.1.1a"},
      {"1.1.1w"},
      {"1.1.2"},
      {"1.9"},
      {"1.10"},
      {"4.18.0-553.el8"},
      {"20A361"},
      {"20B28"},
      {"20D64"},
      {"65536"},
      {"18446744073709551616"},
      {"99999999999999999999999999999999999999"},
      {"1:0.1"},
      {"1:2.3-1", "01:2.3-1"},
      {"12:0"},
  };
  return ladder;
}

TEST(VersionOrder, IsTotalAndAgreesWithEquality) {
  for (std::size_t i = 0; i < Ladder().size(); ++i) {
    for (std::size_t j = 0; j < Ladder().size(); ++j) {
      for (std::string const& left : Ladder()[i]) {
        ASSERT_TRUE(IsVersionText(left)) << left;
        for (std::string const& right : Ladder()[j]) {
          EXPECT_EQ(CompareVersionTexts(left, right), std::weak_ordering(i <=> j))
              << left << " against " << right;
        }
      }
    }
  }
}

// Random texts of everything the order looks at: transitive, and antisymmetric.
TEST(VersionOrder, IsTransitiveOnAnyTexts) {
  std::vector<std::string> texts;
  unsigned state = 1;
  auto const next = [&](unsigned bound) {
    return (state = state * 1103515245 + 12345) / 65536 % bound;
  };
  char const* const pieces[] = {"0", "1", "10", ".",  "-", "~", "+",
                                "a", "b", "rc", "el", "d", "00"};
  for (int i = 0; i < 90; ++i) {
    std::string text = "1";
    for (unsigned n = next(7); n > 0; --n) text += pieces[next(std::size(pieces))];
    texts.push_back(text);
  }
  for (auto const& a : texts) {
    for (auto const& b : texts) {
      auto const ab = CompareVersionTexts(a, b);
      ASSERT_EQ(ab, 0 <=> CompareVersionTexts(b, a)) << a << ' ' << b;
      for (auto const& c : texts) {
        if (ab <= 0 && CompareVersionTexts(b, c) <= 0) {
          ASSERT_TRUE(CompareVersionTexts(a, c) <= 0) << a << ' ' << b << ' ' << c;
        }
      }
    }
  }
}

TEST(VersionOrder, RefusesWhatIsNoVersion) {
  for (char const* text : {"", "v", "a1", ".1", "-1", "1:", ":1", "1:2:3", "1 2", "1,2", "1/2",
                           "None", "\xC3\xA9", "1\xFF", "1:v2"}) {
    EXPECT_FALSE(IsVersionText(text)) << text;
  }
}

}  // namespace
