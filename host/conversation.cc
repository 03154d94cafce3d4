#include "host/conversation.h"

#include <unistd.h>

#include <memory>

#include "host/expression_file.h"
#include "host/expression_lines.h"

namespace gatotu::host {
namespace {

constexpr std::string_view kPrompt = "gatotu> ";

class Conversation {
 public:
  Conversation(CommandLine const& line, AnswerLabel const& label)
      : line_(line),
        writer_(MakeAnswerWriter(line.format, answers_, errors_, label)),
        asker_(line.ask, *writer_, answers_) {}

  ExitStatus Hold() {
    for (std::string const& expression : line_.expressions) {
      if (!Ask(expression)) return End();
    }
    if (!line_.file.empty()) {
      AskAllOf(line_.file);
    } else if (line_.expressions.empty()) {
      ::isatty(STDIN_FILENO) == 1 ? AskTerminal() : AskAllOf("-");
    }
    return End();
  }

 private:
  // False when the command is to end: after an interrupt or the time limit, or when nobody reads.
  bool Ask(std::string_view expression) {
    ExitStatus const status = asker_.Ask(expression);
    status_ = Worse(status_, status);
    return status != ExitStatus::kInterrupted && !answers_.IsBroken();
  }

  // Before waiting for the next expression.
  bool AskAndTend(std::string_view expression) {
    bool const goes_on = Ask(expression);
    if (goes_on) asker_.TendDirectory();
    return goes_on;
  }

  void AskAllOf(std::string const& file) {
    ExitStatus const read =
        AskFile(file, [this](std::string_view expression) { return AskAndTend(expression); });
    status_ = Worse(status_, read);
  }

  // Here an interrupt or the time limit ends the expression only.
  void AskTerminal() {
    ExpressionLines lines(STDIN_FILENO);
    std::string line;
    for (;;) {
      Show(kPrompt);
      switch (lines.Next(line)) {
        case ExpressionLines::Result::kLine:
          if (!IsIdleLine(line)) AskAndTend(line);
          if (answers_.IsBroken()) return;
          break;
        case ExpressionLines::Result::kInterrupted:
          if (Watchdog::TakeInterrupt()) Show("\n");
          break;
        default:
          Show("\n");
          return;
      }
      Watchdog::TakeInterrupt();
    }
  }

  void Show(std::string_view text) {
    answers_.Write(text);
    answers_.Flush();
  }

  ExitStatus End() {
    answers_.Flush();
    return Worse(status_, EndOfAnswers(answers_.Error()));
  }

  CommandLine const& line_;
  Output answers_{STDOUT_FILENO};
  Output errors_{STDERR_FILENO};
  std::unique_ptr<AnswerWriter> writer_;
  ExitStatus status_ = ExitStatus::kAnswered;
  Asker asker_;
};

}  // namespace

ExitStatus Converse(CommandLine const& line, AnswerLabel const& label) {
  return Conversation(line, label).Hold();
}

}  // namespace gatotu::host
