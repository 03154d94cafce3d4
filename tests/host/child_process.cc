#include "tests/host/child_process.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <thread>

namespace gatotu::tests {
namespace {

using TemporaryFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

TemporaryFile MakeFile() { return {std::tmpfile(), &std::fclose}; }

std::string Content(std::FILE* file) {
  std::ifstream stream("/proc/self/fd/" + std::to_string(::fileno(file)));
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

testing::Matcher<ProcessResult const&> Ends(testing::Matcher<int> status,
                                            testing::Matcher<std::string> output,
                                            testing::Matcher<std::string> errors) {
  return testing::AllOf(testing::Field("status", &ProcessResult::status, status),
                        testing::Field("output", &ProcessResult::output, output),
                        testing::Field("errors", &ProcessResult::errors, errors));
}

void PrintTo(ProcessResult const& run, std::ostream* stream) {
  *stream << "status " << run.status << ", output:\n" << run.output << "errors:\n" << run.errors;
}

ProcessResult RunCommand(Launch const& launch) {
  std::vector<std::string> arguments = {launch.program.empty() ? GATOTU_COMMAND : launch.program};
  arguments.insert(arguments.end(), launch.arguments.begin(), launch.arguments.end());
  // Values of preferences are kept for ever on purpose.
  std::vector<std::string> environment = {"PATH=/usr/bin:/bin", "HOME=/nonexistent",
                                          "LSAN_OPTIONS=suppressions=" LEAKS_ON_PURPOSE};
  environment.insert(environment.end(), launch.environment.begin(), launch.environment.end());
  auto argv = Pointers(arguments);
  auto envp = Pointers(environment);

  TemporaryFile const input = MakeFile();
  TemporaryFile const output = MakeFile();
  TemporaryFile const errors = MakeFile();
  std::fwrite(launch.input.data(), 1, launch.input.size(), input.get());
  std::rewind(input.get());

  auto const begin = std::chrono::steady_clock::now();
  pid_t const child = ::fork();
  if (child == 0) {
    ::dup2(::fileno(input.get()), STDIN_FILENO);
    ::dup2(::fileno(output.get()), STDOUT_FILENO);
    ::dup2(::fileno(errors.get()), STDERR_FILENO);
    ::execvpe(argv[0], argv.data(), envp.data());
    ::_exit(127);
  }
  EXPECT_GT(child, 0);
  if (launch.interrupt_after.count() > 0) {
    std::this_thread::sleep_for(launch.interrupt_after);
    ::kill(child, SIGINT);
  }
  int status = 0;
  rusage usage{};
  ::wait4(child, &status, 0, &usage);

  ProcessResult run;
  run.took = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - begin);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  run.most_memory = static_cast<std::size_t>(usage.ru_maxrss) * 1024;
  run.output = Content(output.get());
  run.errors = Content(errors.get());
  return run;
}

ProcessResult Gatotu(std::vector<std::string> arguments, std::string input) {
  return RunCommand({.arguments = std::move(arguments), .input = std::move(input)});
}

ProcessResult AsNobody(std::vector<std::string> arguments) {
  if (::geteuid() != 0) return Gatotu(std::move(arguments));
  std::vector<std::string> const change = {"--reuid=65534", "--regid=65534", "--clear-groups",
                                           GATOTU_COMMAND};
  arguments.insert(arguments.begin(), change.begin(), change.end());
  return RunCommand({.arguments = std::move(arguments), .program = "setpriv"});
}

ProcessResult RunShell(std::string line, std::string shell) {
  return RunCommand({.arguments = {"-c", std::move(line)}, .program = std::move(shell)});
}

std::vector<std::string> Lines(std::string const& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string Repeat(std::string_view text, std::size_t times) {
  std::string result;
  result.reserve(text.size() * times);
  for (; times > 0; --times) result += text;
  return result;
}

}  // namespace gatotu::tests
