// A thousand captures asked one question by one run of the command: captures a second.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "bench/program_run.h"
#include "tests/support/temporary_folder.h"

namespace {

constexpr int kMachines = 1000;

// Copies of one capture, since names of the same file would be read faster than a fleet is.
void AskFleet(benchmark::State& state, std::vector<std::string> const& how_to_capture) {
  gatotu::tests::TemporaryFolder const folder;
  std::vector<std::string> capture = {GATOTU_PROGRAM, "capture", folder.Path("0")};
  capture.insert(capture.end(), how_to_capture.begin(), how_to_capture.end());
  if (!RunProgram(capture)) return state.SkipWithError("no capture");
  std::string list = folder.Path("0") + "\n";
  for (int i = 1; i < kMachines; ++i) {
    std::string const path = folder.Path(std::to_string(i));
    std::filesystem::copy(folder.Path("0"), path, std::filesystem::copy_options::recursive);
    list += path + "\n";
  }
  folder.Write("list", list);
  for (auto _ : state) {
    if (!RunProgram({GATOTU_PROGRAM, "--machines", folder.Path("list"), "hostname"})) {
      state.SkipWithError("the command failed");
      break;
    }
  }
  state.SetItemsProcessed(state.iterations() * kMachines);
}

void Small(benchmark::State& state) { AskFleet(state, {"--for", "hostname"}); }
BENCHMARK(Small)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2);

// Of all that a machine is known to be asked for.
void Whole(benchmark::State& state) { AskFleet(state, {}); }
BENCHMARK(Whole)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2);

}  // namespace

BENCHMARK_MAIN();
