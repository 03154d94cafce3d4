#include "machine/time_zone.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <tuple>

#include "tests/machine/recorded_tree.h"
#include "tests/portable_inspectors/program_output.h"

namespace {

using machine::ZoneRules;

constexpr std::int64_t kJanuary2024 = 1704067200, kJuly2024 = 1719792000;

std::string ZoneFile(std::string const& name) {
  return OutputOf("cat /usr/share/zoneinfo/" + name + " 2>/dev/null");
}

// The C library is the judge, every 40 hours and some up to the year 2100.
void ExpectLikeTheLibrary(std::string const& zone, ZoneRules const& rules, std::int64_t from) {
  ::setenv("TZ", zone.c_str(), 1);
  ::tzset();
  for (std::int64_t at = from; at < 4102444800; at += 146'113) {
    std::time_t const time = at;
    std::tm local;
    ::localtime_r(&time, &local);
    auto const offset = rules.At(at);
    ASSERT_EQ(offset.from_utc, local.tm_gmtoff) << zone << " at " << at;
    ASSERT_EQ(offset.is_daylight, local.tm_isdst > 0) << zone << " at " << at;
  }
}

TEST(ZoneRules, ReadCompiledFilesLikeTheLibrary) {
  for (std::string const name :
       {"Europe/Berlin", "America/New_York", "Australia/Lord_Howe", "Asia/Kolkata",
        "Africa/Casablanca", "Europe/Dublin", "America/Sao_Paulo", "Etc/UTC"}) {
    std::string const bytes = ZoneFile(name);
    if (bytes.empty()) GTEST_SKIP() << "no zone files here";
    auto const rules = ZoneRules::FromCompiledFile(bytes);
    ASSERT_NE(rules, nullptr) << name;
    ExpectLikeTheLibrary(name, *rules, -2840140800);
    for (std::size_t size = 0; size < bytes.size(); size += 7) {
      auto const cut = ZoneRules::FromCompiledFile(std::string_view(bytes).substr(0, size));
      EXPECT_EQ(cut, nullptr) << name << " cut to " << size;
    }
  }
}

TEST(ZoneRules, ReadRulesLikeTheLibrary) {
  for (std::string const text :
       {"CET-1CEST,M3.5.0,M10.5.0/3", "AEST-10AEDT,M10.1.0,M4.1.0/3", "<-03>3",
        "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", "ABC5DEF,J60/2,J300/2", "ABC5DEF,59,299/-1"}) {
    auto const rules = ZoneRules::FromPosixText(text);
    ASSERT_NE(rules, nullptr) << text;
    ExpectLikeTheLibrary(text, *rules, 86400);  // by rules it knows no earlier years
  }
  for (char const* text : {"", "AB1", "CET", "CET-25", "CET-1CEST,M3.5.0",
                           "CET-1CEST,M13.1.0,M1.1.0", "CET-1CEST,M3.6.0,M10.5.0",
                           "CET-1CEST,J0,J5", "<CET-1", "CET-1x", "CET-1CEST,M3.5.0,M10.5.0/3 "}) {
    EXPECT_EQ(ZoneRules::FromPosixText(text), nullptr) << text;
  }
}

TEST(ZoneRules, TellWhatDaylightSavingAdds) {
  std::tuple<char const*, int, int> const rows[] = {
      {"CET-1CEST,M3.5.0,M10.5.0/3", 0, 3600},
      {"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", 1800, 0},
      {"IST-1GMT0,M10.5.0,M3.5.0/1", -3600, 0},
      {"EST5EDT", 0, 3600},
  };
  for (auto const& [text, january, july] : rows) {
    auto const rules = ZoneRules::FromPosixText(text);
    EXPECT_EQ(rules->At(kJanuary2024).daylight, january) << text;
    EXPECT_EQ(rules->At(kJuly2024).daylight, july) << text;
  }
  if (auto const rules = ZoneRules::FromCompiledFile(ZoneFile("Europe/Berlin"))) {
    EXPECT_EQ(rules->At(1'000'000'000).daylight, 3600);
    EXPECT_EQ(rules->At(-776'563'200).daylight, 7200);  // double summer time, May 1945
  }
}

TEST(Zone, IsWhatTheTreeSays) {
  RecordedTree tree;
  auto const machine = tree.Machine();
  auto const zone = [&] { return machine->Zone().CurrentZone().value(); };
  EXPECT_EQ(zone().name, "UTC");
  std::string const bytes = ZoneFile("Asia/Tokyo");
  if (bytes.empty()) GTEST_SKIP() << "no zone files here";
  tree.Write("/usr/share/zoneinfo/Asia/Tokyo", bytes);
  tree.Link("/etc/localtime", "/usr/share/zoneinfo/Asia/Tokyo");
  EXPECT_EQ(zone().name, "Asia/Tokyo");
  EXPECT_EQ(zone().rules->At(0).from_utc, 9 * 3600);
  EXPECT_EQ(zone().rules, zone().rules);

  std::filesystem::remove(tree.At("/etc/localtime"));
  tree.Write("/etc/localtime", ZoneFile("Europe/Berlin"));
  EXPECT_EQ(zone().name, "CET-1CEST,M3.5.0,M10.5.0/3");
  tree.Write("/etc/timezone", "Europe/Berlin\n");
  EXPECT_EQ(zone().name, "Europe/Berlin");
  tree.Write("/etc/localtime", "no zone");
  EXPECT_EQ(machine->Zone().CurrentZone().outcome(), machine::Outcome::kMalformed);
}

TEST(Zone, OfTheRunningMachineFollowsItsVariable) {
  auto const zone = [](char const* text) {
    ::setenv("TZ", text, 1);
    return machine::MakeLiveMachine("/")->Zone().CurrentZone();
  };
  EXPECT_EQ(zone("")->name, "UTC");
  EXPECT_EQ(zone("XYZ-5:30")->rules->At(0).from_utc, 19800);
  EXPECT_EQ(zone("Nowhere/Land").outcome(), machine::Outcome::kMalformed);
  if (ZoneFile("Asia/Tokyo").empty()) GTEST_SKIP() << "no zone files here";
  EXPECT_EQ(zone(":Asia/Tokyo")->name, "Asia/Tokyo");
  EXPECT_EQ(zone("/usr/share/zoneinfo/Asia/Tokyo")->name, "Asia/Tokyo");
}

}  // namespace
