#include "host/session.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>

#include "host/capture_command.h"
#include "host/expression_file.h"
#include "host/expression_lines.h"
#include "host/host_context.h"
#include "host/machine_choice.h"
#include "host/plug_ins.h"
#include "host/settings.h"
#include "machine/capture/capture.h"

namespace gatotu::host {
namespace {

constexpr std::string_view kPrompt = "gatotu> ";

ExitStatus Refuse(std::string const& message) {
  Complain(message);
  return ExitStatus::kRefused;
}

std::optional<std::string> ReadSettings(CommandLine const& line, Settings& settings) {
  AssignDefaults(settings);
  for (std::string const& file : SettingsFiles()) {
    if (auto failure = settings.ReadFile(file)) return failure;
  }
  for (std::string const& assignment : line.settings) {
    if (auto failure = settings.ReadAssignment(assignment)) return failure;
  }
  return std::nullopt;
}

ExitStatus LoadVocabularies(CommandLine const& line, PlugIns& plug_ins) {
  if (auto const failure = plug_ins.Load(MachineVocabularyPath())) {
    Complain(*failure);
    return ExitStatus::kUnusable;
  }
  for (std::string const& file : line.plug_ins) {
    if (auto const failure = plug_ins.Load(file)) return Refuse(*failure);
  }
  return ExitStatus::kAnswered;
}

class Conversation {
 public:
  explicit Conversation(CommandLine const& line)
      : line_(line),
        writer_(MakeAnswerWriter(line.format, answers_, errors_)),
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
    if (!answers_.IsBroken() || answers_.Error() == EPIPE) return status_;
    Complain(std::string("standard output: ") + std::strerror(answers_.Error()));
    return Worse(status_, ExitStatus::kNoAnswer);
  }

  CommandLine const& line_;
  Output answers_{STDOUT_FILENO};
  Output errors_{STDERR_FILENO};
  std::unique_ptr<AnswerWriter> writer_;
  ExitStatus status_ = ExitStatus::kAnswered;
  Asker asker_;
};

}  // namespace

ExitStatus Run(CommandLine const& line) {
  Settings settings;
  if (auto const failure = ReadSettings(line, settings)) return Refuse(*failure);
  auto const directory = ReadDirectoryOptions(settings);
  if (auto const* failure = std::get_if<std::string>(&directory)) return Refuse(*failure);
  auto opened = OpenMachine(line.machine, line.user);
  if (!opened) {
    Complain(machine::CaptureMessage(opened.absence()));
    return ExitStatus::kUnusable;
  }
  std::shared_ptr<machine::Machine const> machine = std::move(opened).value();
  machine::SetCurrentMachine(machine);

  // The context ends first, and with it the thread that reads directory records.
  PlugIns plug_ins;
  HostContext context(settings, std::get<DirectoryOptions>(directory),
                      line.machine == "live" ? machine.get() : nullptr);
  if (ExitStatus const status = LoadVocabularies(line, plug_ins); status != ExitStatus::kAnswered) {
    return status;
  }
  if (line.command == CommandLine::Command::kVocabulary) {
    Output output(STDOUT_FILENO);
    WriteVocabulary(line.vocabulary, line.format, output);
    return ExitStatus::kAnswered;
  }
  SetInspectorContext(&context);
  ExitStatus const status = line.command == CommandLine::Command::kCapture
                                ? Capture(line, std::move(machine))
                                : Conversation(line).Hold();
  SetInspectorContext(nullptr);
  return status;
}

}  // namespace gatotu::host
