#include "bench/program_run.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

bool RunProgram(std::vector<std::string> words) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t child = 0;
  int status = -1;
  bool const is_run =
      posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0 &&
      waitpid(child, &status, 0) == child;
  posix_spawn_file_actions_destroy(&actions);
  return is_run && status == 0;
}
