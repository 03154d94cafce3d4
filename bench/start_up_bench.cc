// A whole run of the command, from its start to its end, beside that of the smallest C++ program.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void RunProgram(benchmark::State& state, char const* program, char const* argument) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  char* arguments[] = {const_cast<char*>(program), const_cast<char*>(argument), nullptr};
  for (auto _ : state) {
    pid_t child = 0;
    int status = -1;
    if (posix_spawn(&child, program, &actions, nullptr, arguments, environ) != 0 ||
        waitpid(child, &status, 0) != child || status != 0) {
      state.SkipWithError("the program failed");
      break;
    }
  }
  posix_spawn_file_actions_destroy(&actions);
}

void HelloWorld(benchmark::State& state) { RunProgram(state, HELLO_PROGRAM, nullptr); }
BENCHMARK(HelloWorld)->Unit(benchmark::kMicrosecond)->UseRealTime()->MinTime(2);

void Hostname(benchmark::State& state) { RunProgram(state, GATOTU_PROGRAM, "hostname"); }
BENCHMARK(Hostname)->Unit(benchmark::kMicrosecond)->UseRealTime()->MinTime(2);

}  // namespace

BENCHMARK_MAIN();
