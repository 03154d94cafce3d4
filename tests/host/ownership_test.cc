// Whether the evaluator and the module give back what they took of the machine, however an
// evaluation ends.
#include <gtest/gtest.h>

#include "evaluator/evaluator.h"
#include "tests/support/scripted_machine.h"
#include "tests/support/scripted_registry.h"

namespace gatotu::tests {
namespace {

TEST(Ownership, NoEvaluationKeepsEntriesOfTheRegistry) {
  std::string error;
  auto const module = PlugIn::Load(GATOTU_MODULE, error);
  ASSERT_NE(module, nullptr) << error;
  auto const registry = std::make_shared<ScriptedRegistry>();
  auto const machine = std::make_shared<ScriptedMachine>();
  machine->registry = registry;
  MachineInUse const use(machine);
  std::string const top = " of service plane of iokit registry";
  struct {
    std::string expression;
    Outcome outcome;
  } const cases[] = {
      {"names of nodes" + top, Outcome::kAnswered},
      {"(name of it, path of it) of nodes" + top, Outcome::kAnswered},
      {"names of (nodes" + top + "; node \"b\"" + top + ")", Outcome::kAnswered},
      {"names of nodes whose (exists node \"c\" of it)" + top, Outcome::kAnswered},
      {"keys of dictionary" + top, Outcome::kAnswered},
      {"string \"key\" of dictionary of node \"b\"" + top, Outcome::kNoSuchObject},
      {"string \"none\" of dictionary" + top, Outcome::kNoSuchObject},
      {"name of node \"none\" of nodes" + top, Outcome::kNoSuchObject},
      {"name of usb plane of iokit registry", Outcome::kNoSuchObject},
  };
  for (auto const& row : cases) {
    auto const compilation = Compile(row.expression);
    ASSERT_NE(compilation.expression, nullptr) << row.expression;
    // To the end, and to the first value.
    for (bool const goes_on : {true, false}) {
      auto const run = Evaluate(*compilation.expression, [&](Value const&) { return goes_on; });
      EXPECT_EQ(run.outcome, row.outcome) << row.expression;
      EXPECT_EQ(registry->LiveNodes(), 0) << row.expression;
    }
  }
}

}  // namespace
}  // namespace gatotu::tests
