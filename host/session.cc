#include "host/session.h"

#include <unistd.h>

#include <optional>

#include "host/capture_command.h"
#include "host/conversation.h"
#include "host/host_context.h"
#include "host/machine_choice.h"
#include "host/plug_ins.h"
#include "host/settings.h"
#include "machine/capture/capture.h"

namespace gatotu::host {
namespace {

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

}  // namespace

ExitStatus Run(CommandLine const& line) {
  Settings settings;
  if (auto const failure = ReadSettings(line, settings)) return Refuse(*failure);
  auto opened = OpenMachine(line.machine, line.user);
  if (!opened) {
    Complain(machine::CaptureMessage(opened.absence()));
    return ExitStatus::kUnusable;
  }
  std::shared_ptr<machine::Machine const> machine = std::move(opened).value();
  machine::SetCurrentMachine(machine);

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
  ExitStatus const status = line.command == CommandLine::Command::kCapture
                                ? Capture(line, std::move(machine))
                                : Converse(line, {});
  SetInspectorContext(nullptr);
  return status;
}

}  // namespace gatotu::host
