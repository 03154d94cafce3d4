// What the families tell the evaluator beyond their functions.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tests/support/recording_evaluator.h"

namespace {

// The inspectors are part of this program; the libraries that it needs register too.
bool IsOfThisProgram(RecordedRegistration const& registration) {
  static int const here = 0;
  Dl_info own, other;
  return ::dladdr(&here, &own) != 0 && ::dladdr(registration.handle, &other) != 0 &&
         own.dli_fbase == other.dli_fbase;
}

std::vector<RecordedRegistration> Own() {
  std::vector<RecordedRegistration> own;
  for (RecordedRegistration const& each : RecordingEvaluator::Instance().registered) {
    if (IsOfThisProgram(each)) own.push_back(each);
  }
  return own;
}

// The evaluator may keep such a result, so it must be one that cannot change.
TEST(Registrations, FewDependOnTheirParametersAlone) {
  std::vector<std::string> kept;
  for (RecordedRegistration const& each : Own()) {
    if (each.Text().ends_with(" DOP")) kept.push_back(each.name + " of " + each.object);
  }
  EXPECT_THAT(kept, testing::UnorderedElementsAre("registry of ", "string of dummy type",
                                                  "computer of ", "ram of ", "main processor of ",
                                                  "family name of processor", "type of processor"));
}

TEST(Registrations, PluralsEndInSButForThese) {
  std::map<std::string, std::string> const others = {{"country", "countries"},
                                                     {"process", "processes"},
                                                     {"registry", "registries"},
                                                     {"virtual memory", "virtual memories"}};
  int count = 0;
  for (RecordedRegistration const& each : Own()) {
    if (!each.call.ends_with("Property")) continue;
    auto const other = others.find(each.name);
    EXPECT_EQ(each.plural, other != others.end() ? other->second : each.name + "s");
    ++count;
  }
  EXPECT_GT(count, 25);
}

}  // namespace
