
#include <dlfcn.h>

#include <map>
#include <sstream>
#include <tuple>

#include "evaluator/evaluator.h"
#include "tests/host/child_process.h"
#include "tests/support/scripted_machine.h"
#include "tests/support/scripted_registry.h"

namespace gatotu::tests {
namespace {

bool IsLoaded() {
  void* const module = ::dlopen(GATOTU_MODULE, RTLD_NOW | RTLD_NOLOAD);
  return module != nullptr && ::dlclose(module) == 0;
}

std::string Evaluated(std::string_view text) {
  std::string answer;
  auto const compilation = Compile(text);
  if (compilation.expression == nullptr) return "refused";
  Evaluate(*compilation.expression, [&](Value const& value) {
    answer = value.Text();
    return true;
  });
  return answer;
}

TEST(Module, LoadsAndUnloadsAgainAndAgain) {
  std::size_t const before = Vocabulary().size();
  for (int round = 0; round < 3; ++round) {
    std::string error;
    auto module = PlugIn::Load(GATOTU_MODULE, error);
    ASSERT_NE(module, nullptr) << error;
    EXPECT_TRUE(IsLoaded());
    EXPECT_GT(Vocabulary().size(), before);

    Compilation const compilation = Compile("name of process 1");
    ASSERT_NE(compilation.expression, nullptr);
    EXPECT_THAT(Evaluated("name of process 1"), testing::Not(testing::AnyOf("", "refused")));

    module.reset();
    EXPECT_FALSE(IsLoaded());
    EXPECT_EQ(Vocabulary().size(), before);
    auto const stale = Evaluate(*compilation.expression, [](Value const&) { return true; });
    EXPECT_EQ(stale.outcome, Outcome::kStale);
    EXPECT_EQ(Evaluated("name of process 1"), "refused");
  }
}

TEST(Module, HasNoUniqueSymbols) {
  ProcessResult const run = RunShell("readelf --dyn-syms --wide " GATOTU_MODULE);
  EXPECT_THAT(run.output, testing::HasSubstr("Register_Type"));
  EXPECT_THAT(run.output, testing::Not(testing::HasSubstr(" UNIQUE ")));
}

TEST(Module, ThatCannotBeLoadedLeavesTheEvaluatorUsable) {
  std::string error;
  EXPECT_EQ(PlugIn::Load("/proc/version", error), nullptr);
  EXPECT_FALSE(error.empty());
  EXPECT_EQ(Evaluated("2"), "2");
}

// However an evaluation ends.
TEST(Module, KeepsNoEntriesOfTheRegistry) {
  std::string error;
  auto const module = PlugIn::Load(GATOTU_MODULE, error);
  ASSERT_NE(module, nullptr) << error;
  auto const registry = std::make_shared<ScriptedRegistry>();
  auto const machine = std::make_shared<ScriptedMachine>();
  machine->registry = registry;
  MachineInUse const use(machine);
  std::string const top = " of service plane of iokit registry";
  std::pair<std::string, Outcome> const cases[] = {
      {"(name of it, path of it) of nodes" + top, Outcome::kAnswered},
      {"names of (nodes" + top + "; node \"b\"" + top + ")", Outcome::kAnswered},
      {"names of nodes whose (exists node \"c\" of it)" + top, Outcome::kAnswered},
      {"keys of dictionary" + top, Outcome::kAnswered},
      {"string \"key\" of dictionary of node \"b\"" + top, Outcome::kNoSuchObject},
      {"string \"none\" of dictionary" + top, Outcome::kNoSuchObject},
      {"name of node \"none\" of nodes" + top, Outcome::kNoSuchObject},
      {"name of usb plane of iokit registry", Outcome::kNoSuchObject},
  };
  for (auto const& [expression, outcome] : cases) {
    auto const compilation = Compile(expression);
    ASSERT_NE(compilation.expression, nullptr) << expression;
    // To the end, and to the first value.
    for (bool const goes_on : {true, false}) {
      auto const run = Evaluate(*compilation.expression, [&](Value const&) { return goes_on; });
      EXPECT_EQ(run.outcome, outcome) << expression;
      EXPECT_EQ(registry->LiveNodes(), 0) << expression;
    }
  }
}

// Whoever loads both finds each question in one of them only.
TEST(Vocabulary, ThePortableAndTheMachinesShareNothing) {
  std::map<std::tuple<std::string, std::string, std::string>, std::string> owners;
  std::map<std::string, int> counts;
  for (std::string const& line : Lines(Gatotu({"vocabulary", "--format", "tsv"}).output)) {
    std::vector<std::string> columns;
    std::istringstream stream(line + '\t');
    for (std::string column; std::getline(stream, column, '\t');) columns.push_back(column);
    ASSERT_EQ(columns.size(), 8U) << line;
    if (columns[0] != "property" && columns[0] != "iterated") continue;
    auto const& library = columns[7];
    ++counts[library];
    EXPECT_EQ(owners.try_emplace({columns[1], columns[3], columns[4]}, library).first->second,
              library)
        << line;
  }
  EXPECT_GT(counts["portable"], 0);
  EXPECT_GT(counts["gatotu"], 0);
}

}  // namespace
}  // namespace gatotu::tests
