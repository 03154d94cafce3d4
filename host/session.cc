#include "host/session.h"

#include <unistd.h>

#include <optional>

#include "host/capture_command.h"
#include "host/conversation.h"
#include "host/host_context.h"
#include "host/machine_choice.h"
#include "host/many_machines.h"
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

ExitStatus Answer(CommandLine const& line, std::shared_ptr<machine::Machine const> machine) {
  if (line.several.IsAsked()) return AskManyMachines(line);
  if (line.command == CommandLine::Command::kCapture) return Capture(line, std::move(machine));
  return Converse(line, {});
}

}  // namespace

ExitStatus Run(CommandLine const& line) {
  Settings settings;
  if (auto const failure = ReadSettings(line, settings)) return Refuse(*failure);
  auto const directory = ReadDirectoryOptions(settings);
  if (auto const* failure = std::get_if<std::string>(&directory)) return Refuse(*failure);
  std::shared_ptr<machine::Machine const> machine;
  // Several are put in use each in its own process.
  if (!line.several.IsAsked()) {
    auto opened = OpenMachine(line.machine, line.user);
    if (!opened) {
      Complain(machine::CaptureMessage(opened.absence()));
      return ExitStatus::kUnusable;
    }
    machine = std::move(opened).value();
    machine::SetCurrentMachine(machine);
  }

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
    return EndOfAnswers(output.Error());
  }
  SetInspectorContext(&context);
  ExitStatus const status = Answer(line, std::move(machine));
  SetInspectorContext(nullptr);
  return status;
}

}  // namespace gatotu::host
