// What the families tell the evaluator beyond their functions.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
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
