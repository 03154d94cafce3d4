// Counting processes by an expression, and by a loop of C calls that reads the same files.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "bench/module_bench.h"

namespace {

bool IsNumber(char const* name) {
  for (; *name != '\0'; ++name) {
    if (*name < '0' || *name > '9') return false;
  }
  return true;
}

// Opens and reads `comm` of every process, as a snapshot of the process table does.
long CountProcessesAbove(long least) {
  long count = 0;
  DIR* folder = opendir("/proc");
  while (dirent* entry = readdir(folder)) {
    if (!IsNumber(entry->d_name)) continue;
    char path[300];
    std::snprintf(path, sizeof(path), "/proc/%s/comm", entry->d_name);
    int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) continue;
    char name[32];
    long length = read(file, name, sizeof(name));
    close(file);
    benchmark::DoNotOptimize(name);
    if (length > 0 && std::atol(entry->d_name) > least) ++count;
  }
  closedir(folder);
  return count;
}

void ProcessesByCalls(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(CountProcessesAbove(100));
}
BENCHMARK(ProcessesByCalls)->Unit(benchmark::kMicrosecond);

void ProcessesByExpression(benchmark::State& state) {
  EvaluateExpression(state, "number of processes whose (pid of it > 100)");
}
BENCHMARK(ProcessesByExpression)->Unit(benchmark::kMicrosecond);

}  // namespace
