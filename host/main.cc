#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <exception>

#include "host/command_line.h"
#include "host/directory_refresher.h"
#include "host/output.h"
#include "host/session.h"
#include "machine/live/worker.h"

namespace {

using namespace gatotu::host;

// Else a file that is opened takes the place of a stream that we were started without, and is read
// or written as if it were that. What is put there fails like a closed one.
bool OccupyStandardStreams() {
  for (int const stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) >= 0) continue;
    int const wrong_way = stream == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    if (::open("/dev/null", wrong_way) != stream) return false;
  }
  return true;
}

ExitStatus Leave(Farewell const& farewell) {
  if (farewell.status != ExitStatus::kAnswered) {
    Complain(farewell.text);
    return farewell.status;
  }
  Output output(STDOUT_FILENO);
  output.Write(farewell.text);
  output.Flush();
  return EndOfAnswers(output.Error());
}

ExitStatus Main(int argc, char** argv) {
  auto const read = ReadCommandLine(argc, argv);
  if (auto const* farewell = std::get_if<Farewell>(&read)) return Leave(*farewell);
  return Run(std::get<CommandLine>(read));
}

// All is written by now. A call that hangs is not waited for, and no destructor runs beside it.
int End(ExitStatus status) {
  int const code = static_cast<int>(status);
  bool const is_any_abandoned =
      machine::live::IsAnyCallAbandoned() || DirectoryRefresher::IsAnyAbandoned();
  if (is_any_abandoned) ::_exit(code);
  return code;
}

}  // namespace

int main(int argc, char** argv) {
  // A reader that went away is seen by the write that fails.
  ::signal(SIGPIPE, SIG_IGN);
  if (!OccupyStandardStreams()) return End(ExitStatus::kNoAnswer);
  try {
    return End(Main(argc, argv));
  } catch (std::exception const& failure) {
    Complain(failure.what());
    return End(ExitStatus::kNoAnswer);
  }
}
