// What the families tell the evaluator beyond their functions.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/recording_evaluator.h"

namespace {

// Those of the inspectors, which are part of this program; the libraries below register too.
std::vector<RecordedRegistration> Own() {
  static int const here = 0;
  Dl_info program, other;
  ::dladdr(&here, &program);
  auto own = RecordingEvaluator::Instance().registered;
  std::erase_if(own, [&](auto const& each) {
    return ::dladdr(each.handle, &other) == 0 || other.dli_fbase != program.dli_fbase;
  });
  return own;
}

// The evaluator may keep such a result, so it must be one that cannot change.
TEST(Registrations, FewDependOnTheirParametersAlone) {
  std::vector<std::string> kept;
  for (RecordedRegistration const& each : Own()) {
    if (each.Text().ends_with(" DOP")) kept.push_back(each.name + " of " + each.object);
  }
  EXPECT_THAT(
      kept,
      testing::UnorderedElementsAre(
          "registry of ", "string of dummy type", "computer of ", "ram of ", "main processor of ",
          "family name of processor", "type of processor", "string of bios", "operating system of ",
          "name of operating system", "version of operating system", "windows of operating system",
          "unix of operating system", "mac of operating system", "string of user attribute",
          "string of security identifier", "6 of security identifier"));
}

std::string PluralOf(std::string const& name) {
  if (name.ends_with('s') || name.ends_with('x')) return name + "es";
  if (!name.ends_with('y') || name.ends_with("ey") || name.ends_with("ay")) return name + "s";
  return name.substr(0, name.size() - 1) + "ies";
}

TEST(Registrations, HaveRegularPluralsButForThree) {
  int count = 0;
  for (RecordedRegistration const& each : Own()) {
    if (!each.call.ends_with("Property")) continue;
    std::string plural = PluralOf(each.name);
    // Two have no plural, and one is spelt so in expressions that exist.
    if (each.name == "dictionary" && each.object == "registryroot") plural = "(null)";
    if (each.name == "user" && !each.parameter.empty()) plural = "(null)";
    if (each.name == "cstring" && each.object == "osxvalue") plural = "csrings";
    EXPECT_EQ(each.plural, plural) << "of " << each.object;
    ++count;
  }
  EXPECT_GT(count, 80);
}

TEST(Registrations, CachesReserveWhatTheEvaluatorNeeds) {
  std::vector<unsigned long> reserved;
  for (RecordedRegistration const& each : Own()) {
    if (each.call == "Cache") reserved.push_back(each.reserved);
  }
  EXPECT_THAT(reserved, testing::ElementsAre(0x40, 0x40, 0x40));
}

}  // namespace
