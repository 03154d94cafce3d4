// Counting what lies below a folder and digesting a file, by expressions and by C calls.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "evaluator/evaluator.h"

namespace {

constexpr char const* kFolder = "/usr";

// Asks for each item's status and attributes, as a catalogue of the folder would.
long CountBelow(std::string& path) {
  DIR* const open = opendir(path.c_str());
  if (open == nullptr) return 0;
  long count = 0;
  std::size_t const size = path.size();
  while (dirent const* const entry = readdir(open)) {
    std::string_view const name = entry->d_name;
    if (name == "." || name == "..") continue;
    ++count;
    (path += '/') += name;
    struct statx status;
    char attributes[256];
    statx(dirfd(open), entry->d_name, AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME,
          &status);
    benchmark::DoNotOptimize(llistxattr(path.c_str(), attributes, sizeof(attributes)));
    if (S_ISDIR(status.stx_mode)) count += CountBelow(path);
    path.resize(size);
  }
  closedir(open);
  return count;
}

void DescendantsByCalls(benchmark::State& state) {
  for (auto _ : state) {
    std::string path = kFolder;
    state.counters["items"] = static_cast<double>(CountBelow(path));
  }
}
BENCHMARK(DescendantsByCalls)->Unit(benchmark::kMillisecond);

void Ask(benchmark::State& state, std::string const& expression) {
  auto const compilation = gatotu::Compile(expression);
  if (!compilation.expression) {
    state.SkipWithError("the expression does not compile");
    return;
  }
  for (auto _ : state) {
    auto const evaluation =
        gatotu::Evaluate(*compilation.expression, [](gatotu::Value const& value) {
          benchmark::DoNotOptimize(&value);
          return true;
        });
    if (!evaluation.IsAnswered()) state.SkipWithError("no answer");
  }
}

void DescendantsByExpression(benchmark::State& state) {
  Ask(state, std::string("number of descendants of folder \"") + kFolder + '"');
}
BENCHMARK(DescendantsByExpression)->Unit(benchmark::kMillisecond);

class LargeFile {
 public:
  LargeFile() {
    std::string const block(1 << 20, '\x5a');
    std::ofstream file(kPath, std::ios::binary);
    for (int i = 0; i < kMegabytes; ++i) file << block;
  }
  ~LargeFile() { std::filesystem::remove(kPath); }

  static constexpr int kMegabytes = 256;
  static constexpr char const* kPath = "/tmp/gatotu_files_bench";
};

void DigestByProgram(benchmark::State& state) {
  LargeFile const file;
  std::string const command = std::string("sha256sum ") + file.kPath + " >/dev/null";
  for (auto _ : state) {
    if (std::system(command.c_str()) != 0) state.SkipWithError("sha256sum fails");
  }
  state.SetBytesProcessed(state.iterations() * (std::int64_t{file.kMegabytes} << 20));
}
BENCHMARK(DigestByProgram)->Unit(benchmark::kMillisecond)->UseRealTime();

void DigestByExpression(benchmark::State& state) {
  LargeFile const file;
  Ask(state, std::string("sha256 of file \"") + file.kPath + '"');
  state.SetBytesProcessed(state.iterations() * (std::int64_t{file.kMegabytes} << 20));
}
BENCHMARK(DigestByExpression)->Unit(benchmark::kMillisecond)->UseRealTime();

void LinesByExpression(benchmark::State& state) {
  LargeFile const file;
  std::ofstream text(file.kPath, std::ios::binary | std::ios::trunc);
  for (int i = 0; i < 1'000'000; ++i) text << "line " << i << " of a file with many lines\n";
  text.close();
  Ask(state, std::string("number of lines of file \"") + file.kPath + '"');
  state.SetItemsProcessed(state.iterations() * 1'000'000);
}
BENCHMARK(LinesByExpression)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
