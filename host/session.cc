#include "host/session.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>

#include "host/expression_lines.h"
#include "host/host_context.h"
#include "host/plug_ins.h"
#include "host/settings.h"

namespace gatotu::host {
namespace {

constexpr std::string_view kPrompt = "gatotu> ";

// An open file, closed at the end.
class File {
 public:
  explicit File(int descriptor) : descriptor_(descriptor) {}
  ~File() {
    if (descriptor_ > STDERR_FILENO) ::close(descriptor_);
  }
  File(File const&) = delete;
  File& operator=(File const&) = delete;
  int Descriptor() const { return descriptor_; }

 private:
  int descriptor_;
};

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
      AskFile();
    } else if (line_.expressions.empty()) {
      ::isatty(STDIN_FILENO) == 1 ? AskTerminal() : AskLines(STDIN_FILENO, "standard input");
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

  void AskFile() {
    bool const is_standard_input = line_.file == "-";
    File const file(is_standard_input ? STDIN_FILENO
                                      : ::open(line_.file.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.Descriptor() < 0) {
      status_ = Worse(status_, Refuse(line_.file + ": " + std::strerror(errno)));
      return;
    }
    AskLines(file.Descriptor(), is_standard_input ? "standard input" : line_.file);
  }

  void AskLines(int descriptor, std::string const& name) {
    ExpressionLines lines(descriptor);
    std::string line;
    for (;;) {
      switch (lines.Next(line)) {
        case ExpressionLines::Result::kLine:
          if (!IsIdleLine(line) && !Ask(line)) return;
          break;
        case ExpressionLines::Result::kInterrupted:
          if (!Watchdog::TakeInterrupt()) break;
          status_ = Worse(status_, ExitStatus::kInterrupted);
          return;
        case ExpressionLines::Result::kFailed:
          status_ = Worse(status_, Refuse(name + ": " + std::strerror(lines.Error())));
          return;
        case ExpressionLines::Result::kEnd:
          return;
      }
    }
  }

  // Here an interrupt or the time limit ends the expression only.
  void AskTerminal() {
    ExpressionLines lines(STDIN_FILENO);
    std::string line;
    for (;;) {
      Show(kPrompt);
      switch (lines.Next(line)) {
        case ExpressionLines::Result::kLine:
          if (!IsIdleLine(line)) Ask(line);
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
  if (line.machine != "live") {
    Complain(line.machine +
             ": captures cannot be read by this version; only \"live\" can be asked");
    return ExitStatus::kUnusable;
  }

  HostContext context(settings);
  PlugIns plug_ins;
  if (ExitStatus const status = LoadVocabularies(line, plug_ins); status != ExitStatus::kAnswered) {
    return status;
  }
  if (line.command == CommandLine::Command::kVocabulary) {
    Output output(STDOUT_FILENO);
    WriteVocabulary(line.vocabulary, line.format, output);
    return ExitStatus::kAnswered;
  }
  SetInspectorContext(&context);
  ExitStatus const status = Conversation(line).Hold();
  SetInspectorContext(nullptr);
  return status;
}

}  // namespace gatotu::host
