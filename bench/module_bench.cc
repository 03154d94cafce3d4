#include "bench/module_bench.h"

#include <iostream>
#include <string>

#include "evaluator/evaluator.h"

void EvaluateExpression(benchmark::State& state, char const* expression) {
  auto compilation = gatotu::Compile(expression);
  if (!compilation.expression) {
    state.SkipWithError("the expression does not compile");
    return;
  }
  for (auto _ : state) {
    gatotu::Evaluate(*compilation.expression, [](gatotu::Value const& value) {
      benchmark::DoNotOptimize(&value);
      return true;
    });
  }
}

int main(int argc, char** argv) {
  std::string error;
  auto plug_in = gatotu::PlugIn::Load(GATOTU_MODULE, error);
  if (plug_in == nullptr) {
    std::cerr << error << '\n';
    return 1;
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
