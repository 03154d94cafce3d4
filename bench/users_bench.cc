// All users named by the command, beside `getent passwd`: whole runs, over the accounts of this
// machine and, where we may put another list in its place, over many.
#include <benchmark/benchmark.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cstdio>
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

void UsersByCommand(benchmark::State& state) { Run(state, {GATOTU_PROGRAM, "names of users"}); }
void UsersByGetent(benchmark::State& state) { Run(state, {GETENT_PROGRAM, "passwd"}); }

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

void Register(std::string const& accounts) {
  auto const add = [&accounts](char const* name, auto* run) {
    benchmark::RegisterBenchmark((name + accounts).c_str(), run)
        ->Unit(benchmark::kMicrosecond)
        ->UseRealTime()
        ->MinTime(2);
  };
  add("UsersByGetent/", &UsersByGetent);
  add("UsersByCommand/", &UsersByCommand);
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Register("Own");
  benchmark::RunSpecifiedBenchmarks();
  benchmark::ClearRegisteredBenchmarks();
  if (!ReplaceAccounts()) {
    std::puts("not over many accounts: their list cannot be put in place of this machine's");
    return 0;
  }
  Register("Many");
  benchmark::RunSpecifiedBenchmarks();
}
