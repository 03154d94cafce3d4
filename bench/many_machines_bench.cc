// Many captures asked one question by one run of the command: captures a second.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "bench/program_run.h"
#include "tests/support/temporary_folder.h"

namespace {

// Each has folders of its own, with the same files: copies would take longer to write than to ask.
class Fleet {
 public:
  Fleet(int size, std::vector<std::string> const& how_to_capture) : size_(size) {
    std::string const first = folder_.Path("0");
    std::vector<std::string> capture = {GATOTU_PROGRAM, "capture", first};
    capture.insert(capture.end(), how_to_capture.begin(), how_to_capture.end());
    if (!RunProgram(capture)) return;
    std::string list = first + "\n";
    for (int i = 1; i < size; ++i) {
      std::string const path = folder_.Path(std::to_string(i));
      std::filesystem::copy(first, path,
                            std::filesystem::copy_options::recursive |
                                std::filesystem::copy_options::create_hard_links);
      list += path + "\n";
    }
    folder_.Write("list", list);
  }

  int Size() const { return size_; }
  // False as well when there is no capture.
  bool Ask() const {
    return RunProgram({GATOTU_PROGRAM, "--machines", folder_.Path("list"), "hostname"});
  }

 private:
  int size_;
  gatotu::tests::TemporaryFolder const folder_;
};

void Ask(benchmark::State& state, Fleet const& fleet) {
  for (auto _ : state) {
    if (!fleet.Ask()) {
      state.SkipWithError("the command failed");
      break;
    }
  }
  state.SetItemsProcessed(state.iterations() * fleet.Size());
}

void Small(benchmark::State& state) {
  static Fleet const fleet(1000, {"--for", "hostname"});
  Ask(state, fleet);
}
BENCHMARK(Small)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2);

// Of all that a machine is known to be asked for.
void Whole(benchmark::State& state) {
  static Fleet const fleet(200, {});
  Ask(state, fleet);
}
BENCHMARK(Whole)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2);

}  // namespace

BENCHMARK_MAIN();
