// A whole run of the command, from its start to its end, beside that of the smallest C++ program.
#include <benchmark/benchmark.h>

#include "bench/program_run.h"

namespace {

void Run(benchmark::State& state, std::vector<std::string> const& words) {
  for (auto _ : state) {
    if (!RunProgram(words)) {
      state.SkipWithError("the program failed");
      break;
    }
  }
}

void HelloWorld(benchmark::State& state) { Run(state, {HELLO_PROGRAM}); }
BENCHMARK(HelloWorld)->Unit(benchmark::kMicrosecond)->UseRealTime()->MinTime(2);

void Hostname(benchmark::State& state) { Run(state, {GATOTU_PROGRAM, "hostname"}); }
BENCHMARK(Hostname)->Unit(benchmark::kMicrosecond)->UseRealTime()->MinTime(2);

}  // namespace

BENCHMARK_MAIN();
