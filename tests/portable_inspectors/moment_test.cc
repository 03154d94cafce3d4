#include "portable_inspectors/moment.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

TEST(Epochs, CountFromTheirDates) {
  EXPECT_EQ(january_1_1970().MicrosecondsSince1970(), 0);
  EXPECT_EQ(january_1_1904_GMT() + 2'082'844'800 * second_of(), january_1_1970());
}

// By the standard offset of the present, in summer as well.
TEST(Epochs, TakeTheStandardOffsetOfTheZone) {
  ASSERT_EQ(setenv("TZ", "Europe/Berlin", 1), 0);
  EXPECT_EQ(january_1_1904_GMT() - january_1_1904_Local(), 3600 * second_of());
  ASSERT_EQ(setenv("TZ", "CST6CDT", 1), 0);
  EXPECT_EQ(january_1_1904_GMT() - january_1_1904_Local(), -6 * 3600 * second_of());
}

}  // namespace
