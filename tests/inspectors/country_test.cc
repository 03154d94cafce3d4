#include "inspectors/system/country.h"

#include <set>
#include <string_view>

#include "inspectors/system/country_codes.h"
#include "tests/inspectors/asking.h"

namespace {

country Named(std::string_view name) { return country_of(Bytes(std::string(name)), name.size()); }

TEST(Country, NamesAreFoundByTheirExactBytes) {
  EXPECT_EQ(Named("verUS").region_code, 0u);
  EXPECT_EQ(Named("vervariantDenmark").region_code, 32u);
  EXPECT_EQ(Named("verNepal").region_code, 106u);
  using namespace std::string_view_literals;
  for (std::string_view const name : {""sv, "ver"sv, "verus"sv, "VERUS"sv, " verUS"sv, "verUS "sv,
                                      "verUS\0"sv, "verUSA"sv, "zebra"sv, "aaa"sv, "\xFF"sv}) {
    EXPECT_THROW(Named(name), NoSuchObject) << name;
  }
}

TEST(Country, TheTableIsSortedAndEveryRowIsFound) {
  std::set<std::uint32_t> codes;
  for (std::size_t i = 0; i < kCountryCodeCount; ++i) {
    std::string_view const name = kCountryCodes[i].name;
    if (i > 0) {
      EXPECT_LT(std::string_view(kCountryCodes[i - 1].name), name);
    }
    EXPECT_EQ(Named(name).region_code, kCountryCodes[i].value);
    codes.insert(kCountryCodes[i].value);
  }
  EXPECT_EQ(codes.size(), 98u);
  EXPECT_EQ(*codes.rbegin(), 106u);
  EXPECT_EQ(kCountryCodes[kCountryCodeCount].name, nullptr);
}

TEST(Country, EqualityComparesCodes) {
  EXPECT_NE(RecordingEvaluator::Instance().Find("Binary_Operator", "6", "country"), nullptr);
  EXPECT_TRUE(Named("verFrance") == Named("verFrance"));
  EXPECT_FALSE(Named("verFrance") == Named("verFrSwiss"));
}

}  // namespace
