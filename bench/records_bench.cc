// Reading and writing directory records. Speeds are of the text's bytes.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "inspectors/activedirectory/directory/active_directory_local_computer.h"

namespace {

// A computer in as many groups as make ten megabytes.
ActiveDirectoryLocalComputer const& Computer() {
  static ActiveDirectoryLocalComputer const computer = [] {
    std::vector<ActiveDirectoryGroup> groups;
    for (std::size_t size = 0, number = 1000; size < 10'000'000; ++number) {
      std::string const name = "Staff of department " + std::to_string(number);
      ActiveDirectoryGroup& group = groups.emplace_back(name);
      group.SetDistinguishedName("CN=" + name + ",OU=Groups,OU=Headquarters,DC=corp,DC=example");
      group.SetSid("S-1-5-21-1004336348-1177238915-682003330-" + std::to_string(number));
      group.SetLastSampleTime({1795244400000001});
      size += group.ToXml().size();
    }
    ActiveDirectoryLocalComputer record;
    record.SetGroups(std::move(groups));
    return record;
  }();
  return computer;
}

void Read(benchmark::State& state) {
  std::string const text = Computer().ToXml();
  for (auto _ : state) {
    ActiveDirectoryLocalComputer record;
    record.FromXml(text);
    if (record.GetGroups().empty()) state.SkipWithError("not read");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void Write(benchmark::State& state) {
  std::size_t size = 0;
  for (auto _ : state) size = Computer().ToXml().size();
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
}

BENCHMARK(Read)->Unit(benchmark::kMillisecond);
BENCHMARK(Write)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
