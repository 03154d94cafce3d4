#include "host/expression_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "host/expression_lines.h"
#include "host/output.h"
#include "host/time_limit.h"
#include "machine/file_descriptor.h"

namespace gatotu::host {
namespace {

ExitStatus Refuse(std::string const& name, int error) {
  Complain(name + ": " + std::strerror(error));
  return ExitStatus::kRefused;
}

ExitStatus AskLines(int descriptor, std::string const& name, AskExpression ask) {
  ExpressionLines lines(descriptor);
  std::string line;
  for (;;) {
    switch (lines.Next(line)) {
      case ExpressionLines::Result::kLine:
        if (!IsIdleLine(line) && !ask(line)) return ExitStatus::kAnswered;
        break;
      case ExpressionLines::Result::kInterrupted:
        if (!Watchdog::TakeInterrupt()) break;
        return ExitStatus::kInterrupted;
      case ExpressionLines::Result::kFailed:
        return Refuse(name, lines.Error());
      case ExpressionLines::Result::kEnd:
        return ExitStatus::kAnswered;
    }
  }
}

}  // namespace

ExitStatus AskFile(std::string const& path, AskExpression ask) {
  if (path == "-") return AskLines(STDIN_FILENO, "standard input", ask);
  machine::FileDescriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.is_open()) return Refuse(path, errno);
  return AskLines(file.number(), path, ask);
}

}  // namespace gatotu::host
