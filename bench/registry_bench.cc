// Walking the kernel's devices through the registry, beside `find`, and the firmware's version by
// an expression.
#include <IOKit/IOKitLib.h>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <string>

#include "evaluator/evaluator.h"
#include "machine/machine.h"
#include "tests/machine/recorded_devices.h"

namespace {

void FindFolders(benchmark::State& state) {
  char const* const arguments[] = {"find", "/sys/devices", "-type", "d", nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  for (auto _ : state) {
    pid_t process = 0;
    int status = 0;
    if (posix_spawnp(&process, "find", &actions, nullptr, const_cast<char**>(arguments), environ) ==
        0) {
      waitpid(process, &status, 0);
    }
  }
  posix_spawn_file_actions_destroy(&actions);
}
BENCHMARK(FindFolders)->Unit(benchmark::kMicrosecond)->UseRealTime();

// The entries below one, each with its name.
long Walk(io_registry_entry_t entry) {
  io_iterator_t children = IO_OBJECT_NULL;
  if (IORegistryEntryCreateIterator(entry, kIOServicePlane, 0, &children) != KERN_SUCCESS) return 0;
  long count = 0;
  while (io_object_t const child = IOIteratorNext(children)) {
    io_name_t name;
    if (IORegistryEntryGetNameInPlane(child, kIOServicePlane, name) == KERN_SUCCESS) ++count;
    benchmark::DoNotOptimize(name);
    count += Walk(child);
    IOObjectRelease(child);
  }
  IOObjectRelease(children);
  return count;
}

void WalkOfTheServicePlane(benchmark::State& state) {
  long count = 0;
  for (auto _ : state) {
    io_registry_entry_t const first = IORegistryEntryFromPath(MACH_PORT_NULL, "IOService:/");
    count = Walk(first);
    IOObjectRelease(first);
  }
  state.counters["entries"] = static_cast<double>(count);
}
BENCHMARK(WalkOfTheServicePlane)->Unit(benchmark::kMicrosecond)->UseRealTime();

void VersionOfBios(benchmark::State& state) {
  RecordedTree tree;
  WriteFirmware(tree);
  auto const before = machine::SetCurrentMachine(tree.Machine());
  auto const compilation = gatotu::Compile("version of bios");
  std::size_t answers = 0;
  for (auto _ : state) {
    if (!compilation.expression) break;
    gatotu::Evaluate(*compilation.expression, [&](gatotu::Value const&) { return ++answers > 0; });
  }
  if (answers == 0) state.SkipWithError("no answer");
  machine::SetCurrentMachine(before);
}
BENCHMARK(VersionOfBios)->Unit(benchmark::kMicrosecond);

}  // namespace
