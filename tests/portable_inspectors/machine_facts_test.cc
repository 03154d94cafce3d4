// Times and environment of the machine at hand, against what GNU date says.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "answers.h"
#include "portable_inspectors/moment.h"
#include "program_output.h"

namespace {

// Leap years and the ends of years; summer and winter, both sides of both changes, and before any
// daylight saving.
TEST(LocalTime, AgreesWithGnuDate) {
  for (char const* zone : {"Europe/Berlin", "America/St_Johns", "Asia/Kolkata", "UTC"}) {
    ASSERT_EQ(setenv("TZ", zone, 1), 0);
    for (std::int64_t seconds :
         {0LL, -1LL, 951'782'399LL, 951'782'400LL, 951'868'800LL, 4'107'542'399LL, 4'107'542'400LL,
          1'735'689'599LL, 1'720'000'000LL, 1'730'000'000LL, 1'711'846'799LL, 1'711'846'800LL,
          1'729'990'799LL, 1'729'990'800LL, -1'000'000'000LL, 4'102'444'800LL, 1'763'713'406LL}) {
      std::string const date = "date -d @" + std::to_string(seconds) + " '+";
      std::string const time = "(unix epoch + (" + std::to_string(seconds) + ") * second)";
      std::string const text = FirstLineOf(date + "%FT%T.000000%:z'");
      EXPECT_EQ(Answer(time + " as string"), text) << zone;
      EXPECT_EQ(Answer("\"" + text + "\" as time = " + time), "true") << zone << ' ' << text;
      EXPECT_EQ(Answer("(year of it, month of it, day of it, day_of_week of it, day_of_year of it, "
                       "weekday of it, hour of it, minute of it, second of it) of " +
                       time),
                FirstLineOf("LC_ALL=C " + date + "%-Y, %-m, %-d, %u, %-j, %A, %-H, %-M, %-S'"))
          << zone << ' ' << seconds;
    }
    EXPECT_EQ(Answer("name of time zone"), zone);
  }
}

// The local one by the standard offset of the present, in summer as well.
TEST(Epochs, CountFromTheirDates) {
  EXPECT_EQ(january_1_1970().MicrosecondsSince1970(), 0);
  EXPECT_EQ(january_1_1904_GMT() + 2'082'844'800 * second_of(), january_1_1970());
  for (auto const& [zone, hours] : {std::pair("Europe/Berlin", 1), std::pair("CST6CDT", -6)}) {
    ASSERT_EQ(setenv("TZ", zone, 1), 0);
    EXPECT_EQ(january_1_1904_GMT() - january_1_1904_Local(), hours * 3600 * second_of()) << zone;
  }
}

// Regular expressions, encodings and digests are loaded when first needed.
TEST(StartUp, LoadsNothingExpensive) {
  EXPECT_EQ(FirstLineOf("ldd /proc/" + std::to_string(getpid()) +
                        "/exe | grep -cE 'libre2|libicu|libcrypto'"),
            "0");
}

TEST(EnvironmentVariables, AreThoseOfTheProcess) {
  ASSERT_EQ(setenv("GATOTU_TEST", "a=b", 1), 0);
  EXPECT_EQ(Answer(R"(value of environment variable "GATOTU_TEST")"), "a=b");
  EXPECT_EQ(Answer(R"(variable "GATOTU_TEST" of environment)"), "GATOTU_TEST=a=b");
  EXPECT_EQ(Answer(R"(values of environment variables whose (name of it = "GATOTU_TEST"))"), "a=b");
  EXPECT_EQ(Answer(R"(environment variable "GATOTU NONE")"), "no such object");
}

}  // namespace
