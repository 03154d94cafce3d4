#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <tuple>

#include "evaluator/evaluator.h"
#include "tests/host/child_process.h"

namespace gatotu::tests {
namespace {

bool IsMapped(std::string const& file) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (line.ends_with(file)) return true;
  }
  return false;
}

std::string Evaluated(Expression const& expression) {
  std::string text;
  EXPECT_TRUE(Evaluate(expression, [&](Value const& value) {
                text = value.Text();
                return true;
              }).IsAnswered());
  return text;
}

TEST(Module, LoadsAndUnloadsAgainAndAgain) {
  std::size_t const before = Vocabulary().size();
  for (int round = 0; round < 3; ++round) {
    std::string error;
    auto module = PlugIn::Load(GATOTU_MODULE, error);
    ASSERT_NE(module, nullptr) << error;
    EXPECT_TRUE(IsMapped("/Gatotu.so"));
    EXPECT_GT(Vocabulary().size(), before);

    Compilation const compilation = Compile("name of process 1");
    ASSERT_NE(compilation.expression, nullptr);
    EXPECT_FALSE(Evaluated(*compilation.expression).empty());

    module.reset();
    EXPECT_FALSE(IsMapped("/Gatotu.so"));
    EXPECT_EQ(Vocabulary().size(), before);
    auto const stale = Evaluate(*compilation.expression, [](Value const&) { return true; });
    EXPECT_EQ(stale.outcome, Outcome::kStale);
    EXPECT_FALSE(Compile("name of process 1").diagnostics.empty());
  }
}

TEST(Module, HasNoUniqueSymbols) {
  Launch launch;
  launch.program = "sh";
  launch.arguments = {"-c", std::string("readelf --dyn-syms --wide ") + GATOTU_MODULE};
  ProcessResult const run = RunCommand(launch);
  EXPECT_THAT(run.output, testing::HasSubstr("Register_Type"));
  EXPECT_THAT(run.output, testing::Not(testing::HasSubstr(" UNIQUE ")));
}

TEST(Module, ThatCannotBeLoadedLeavesTheEvaluatorUsable) {
  std::string error;
  EXPECT_EQ(PlugIn::Load("/proc/version", error), nullptr);
  EXPECT_FALSE(error.empty());
  Compilation const compilation = Compile("2");
  ASSERT_NE(compilation.expression, nullptr);
  EXPECT_EQ(Evaluated(*compilation.expression), "2");
}

// Whoever loads both finds each question in one of them only.
TEST(Vocabulary, ThePortableAndTheMachinesShareNothing) {
  std::map<std::tuple<std::string, std::string, std::string>, std::string> owners;
  auto const lines = Lines(Gatotu({"vocabulary", "--format", "tsv"}).output);
  ASSERT_GT(lines.size(), 1U);
  std::map<std::string, int> counts;
  for (std::string const& line : lines) {
    std::vector<std::string> columns;
    std::istringstream stream(line + '\t');
    for (std::string column; std::getline(stream, column, '\t');) columns.push_back(column);
    ASSERT_EQ(columns.size(), 8U) << line;
    if (columns[0] != "property" && columns[0] != "iterated") continue;
    ++counts[columns[7]];
    auto const [found, is_new] =
        owners.try_emplace({columns[1], columns[3], columns[4]}, columns[7]);
    EXPECT_TRUE(is_new || found->second == columns[7]) << line;
  }
  EXPECT_GT(counts["portable"], 0);
  EXPECT_GT(counts["gatotu"], 0);
}

}  // namespace
}  // namespace gatotu::tests
