
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
    EXPECT_TRUE(IsMapped("/Gatotu.so"));
    EXPECT_GT(Vocabulary().size(), before);

    Compilation const compilation = Compile("name of process 1");
    ASSERT_NE(compilation.expression, nullptr);
    EXPECT_THAT(Evaluated("name of process 1"), testing::Not(testing::AnyOf("", "refused")));

    module.reset();
    EXPECT_FALSE(IsMapped("/Gatotu.so"));
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
