// The names of all volumes by an expression, and by a loop of C calls that reads the table of
// mounts and asks each file system for its sizes, as telling volumes does.
#include <benchmark/benchmark.h>
#include <sys/statvfs.h>

#include <cstdio>
#include <cstring>

#include "bench/module_bench.h"

namespace {

bool HoldsFiles(char const* type) {
  for (char const* wanted : {"tmpfs", "ext4", "xfs", "btrfs", "overlay", "vfat"}) {
    if (std::strcmp(type, wanted) == 0) return true;
  }
  return false;
}

std::size_t LengthOfNames() {
  std::size_t length = 0;
  FILE* table = std::fopen("/proc/self/mountinfo", "r");
  char line[4096], point[4096], type[256];
  while (std::fgets(line, sizeof line, table) != nullptr) {
    char const* const rest = std::strstr(line, " - ");
    if (rest == nullptr || std::sscanf(rest, " - %255s", type) != 1 || !HoldsFiles(type)) continue;
    if (std::sscanf(line, "%*s %*s %*s %*s %4095s", point) != 1) continue;
    struct statvfs volume;
    if (statvfs(point, &volume) == 0) length += std::strlen(std::strrchr(point, '/') + 1);
  }
  std::fclose(table);
  return length;
}

void VolumesByCalls(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(LengthOfNames());
}
BENCHMARK(VolumesByCalls)->Unit(benchmark::kMicrosecond);

void VolumesByExpression(benchmark::State& state) { EvaluateExpression(state, "names of volumes"); }
BENCHMARK(VolumesByExpression)->Unit(benchmark::kMicrosecond);

}  // namespace
