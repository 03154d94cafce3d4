// All users named by the command, beside `getent passwd`: whole runs, over the accounts of this
// machine and, where we may put another list in its place, over many.
#include <benchmark/benchmark.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "bench/program_run.h"

namespace {

constexpr int kMany = 20'000;

void Run(benchmark::State& state, std::vector<std::string> const& words) {
  for (auto _ : state) {
    if (!RunProgram(words)) {
      state.SkipWithError("the program failed");
      break;
    }
  }
}

std::string ManyAccounts() {
  std::string text = "root:x:0:0:root:/root:/bin/bash\n";
  for (int number = kMany; number < 2 * kMany; ++number) {
    std::string const id = std::to_string(number);
    text += "person" + id + ":x:" + id + ":" + id + ":Person Number " + id + ",,,:/home/person" +
            id + ":/bin/bash\n";
  }
  return text;
}

// For this process and those that it runs. False where that is not allowed.
bool ReplaceAccounts() {
  char path[] = "/tmp/accounts-XXXXXX";
  if (::unshare(CLONE_NEWNS) != 0) return false;
  if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return false;
  int const file = ::mkstemp(path);
  if (file < 0) return false;
  ::close(file);
  std::ofstream(path) << ManyAccounts();
  bool const is_replaced = ::mount(path, "/etc/passwd", nullptr, MS_BIND, nullptr) == 0;
  ::unlink(path);
  return is_replaced;
}

void RunWithMany(benchmark::State& state, std::vector<std::string> const& words) {
  static bool const is_replaced = ReplaceAccounts();
  if (!is_replaced) return state.SkipWithError("this machine's list cannot be replaced");
  Run(state, words);
}

void UsersByGetent(benchmark::State& state) { Run(state, {GETENT_PROGRAM, "passwd"}); }
void UsersByCommand(benchmark::State& state) { Run(state, {GATOTU_PROGRAM, "names of users"}); }
// Behind those, whose list they replace.
void ManyByGetent(benchmark::State& state) { RunWithMany(state, {GETENT_PROGRAM, "passwd"}); }
void ManyByCommand(benchmark::State& state) {
  RunWithMany(state, {GATOTU_PROGRAM, "names of users"});
}

BENCHMARK(UsersByGetent)->Unit(benchmark::kMicrosecond)->UseRealTime()->MinTime(2);
BENCHMARK(UsersByCommand)->Unit(benchmark::kMicrosecond)->UseRealTime()->MinTime(2);
BENCHMARK(ManyByGetent)->Unit(benchmark::kMicrosecond)->UseRealTime()->MinTime(2);
BENCHMARK(ManyByCommand)->Unit(benchmark::kMicrosecond)->UseRealTime()->MinTime(2);

}  // namespace

BENCHMARK_MAIN();
