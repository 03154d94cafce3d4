// What the evaluator adds to the work of the inspectors: a property, operators, compilation. The
// allocations counted are those of an evaluation in the steady state.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <iostream>
#include <string_view>

#include "bench/allocation_counter.h"
#include "evaluator/evaluator.h"
#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"

struct bottle {
  integer size;
};
template <>
struct InspectorTypeName<bottle> {
  static constexpr char const* kName = "bottle";
};

namespace {

constexpr unsigned char kLabel[] = "hock 1976";

// Kept from the optimiser, so that the inspectors do some work.
integer volatile bottle_size = 3;

bottle bottle_of_world() { return {bottle_size}; }
integer size_of_bottle(bottle const& value) { return value.size; }
inspector_string label_of_bottle(bottle const&) { return {kLabel, sizeof(kLabel) - 1}; }

class BottleIterator {
 public:
  bottle First() {
    index_ = 0;
    return Next();
  }
  bottle Next() {
    if (index_ == 1000) throw NoSuchObject();
    return {index_++};
  }

 private:
  integer index_ = 0;
};

Type<bottle> bottle_type;
GlobalProperty<bottle> world_bottle("bottle", "bottles", bottle_of_world, nullptr);
IteratedGlobalProperty<BottleIterator, bottle> world_bottles("bottle", "bottles", nullptr);
Property<bottle, integer> bottle_size_property("size", "sizes", size_of_bottle, nullptr);
Property<bottle, inspector_string> bottle_label("label", "labels", label_of_bottle, nullptr);

std::unique_ptr<gatotu::Expression const> MustCompile(std::string_view text) {
  gatotu::Compilation compilation = gatotu::Compile(text, gatotu::Purpose::kUse);
  for (auto const& diagnostic : compilation.diagnostics) {
    std::cerr << gatotu::Render(diagnostic, text);
  }
  if (!compilation.expression) std::exit(1);
  return std::move(compilation.expression);
}

void Evaluate(benchmark::State& state, std::string_view text) {
  auto expression = MustCompile(text);
  auto once = [&] {
    bool is_answered = gatotu::Evaluate(*expression, [](gatotu::Value const& value) {
                         benchmark::DoNotOptimize(value.Address());
                         return true;
                       }).IsAnswered();
    if (!is_answered) state.SkipWithError("not answered");
  };
  once();
  std::uint64_t before = CountAllocations();
  for (auto _ : state) once();
  state.counters["allocations"] = benchmark::Counter(
      static_cast<double>(CountAllocations() - before), benchmark::Counter::kAvgIterations);
}

// The inspectors alone, called as the adapters call them.
void InspectorsAlone(benchmark::State& state) {
  for (auto _ : state) {
    bottle value = bottle_of_world();
    benchmark::DoNotOptimize(value);
    integer size = size_of_bottle(value);
    benchmark::DoNotOptimize(size);
  }
}
BENCHMARK(InspectorsAlone);

void PropertyOfWorld(benchmark::State& state) { Evaluate(state, "bottle"); }
BENCHMARK(PropertyOfWorld);

void PropertyOfObject(benchmark::State& state) { Evaluate(state, "size of bottle"); }
BENCHMARK(PropertyOfObject);

void ComparisonAndStartsWith(benchmark::State& state) {
  Evaluate(state, "size of bottle = 3 and label of bottle starts with \"hock\"");
}
BENCHMARK(ComparisonAndStartsWith);

void FilterOfThousand(benchmark::State& state) {
  Evaluate(state, "number of bottles whose (size of it > 100)");
}
BENCHMARK(FilterOfThousand);

void UniqueValuesOfThousand(benchmark::State& state) {
  Evaluate(state, "number of unique values of sizes of bottles");
}
BENCHMARK(UniqueValuesOfThousand);

void CompileSixtyCharacters(benchmark::State& state) {
  std::string_view text = "labels of bottles whose (size of it > 3 and not false = true)";
  MustCompile(text);
  for (auto _ : state) {
    auto compilation = gatotu::Compile(text);
    benchmark::DoNotOptimize(compilation.expression);
  }
  state.counters["characters"] = static_cast<double>(text.size());
}
BENCHMARK(CompileSixtyCharacters);

}  // namespace

BENCHMARK_MAIN();
