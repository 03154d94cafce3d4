#include "host/command_line.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "host/command_options.h"
#include "host/option_values.h"

namespace gatotu::host {
namespace {

using Command = CommandLine::Command;

std::string_view NameOf(Command command) {
  switch (command) {
    case Command::kAsk:
      return "";
    case Command::kVocabulary:
      return "vocabulary";
    case Command::kCapture:
      return "capture";
  }
  return {};
}

std::optional<Farewell> RefuseForeign(std::vector<OwnOption> const& given, Command command) {
  for (auto const& [name, commands] : given) {
    if (std::find(commands.begin(), commands.end(), command) != commands.end()) continue;
    // What cannot be asked with belongs to one command alone.
    std::string const why = command == Command::kAsk
                                ? " goes with " + std::string(NameOf(commands.front())) + " only"
                                : " does not go with " + std::string(NameOf(command));
    return RefuseUsage(name + why);
  }
  return std::nullopt;
}

std::optional<Farewell> TakeFolder(CommandLine& line, std::vector<std::string> const& words) {
  if (words.empty() || words.front().empty())
    return RefuseUsage("capture: name the folder to write, before --for and --with-files");
  if (words.size() > 1) return RefuseUsage("capture: one folder; expressions stand behind --for");
  line.capture.folder = words.front();
  return std::nullopt;
}

// Whether the words that are left are those of a command, and which.
std::optional<Farewell> TakeWords(CommandLine& line, std::vector<std::string> words) {
  for (std::string const& word : words) {
    if (word.size() > 1 && word.front() == '-') return RefuseUsage("unknown option " + word);
  }
  for (Command const command : {Command::kVocabulary, Command::kCapture}) {
    if (!words.empty() && words.front() == NameOf(command)) line.command = command;
  }
  if (line.command != Command::kAsk) words.erase(words.begin());
  switch (line.command) {
    case Command::kAsk:
      line.expressions = std::move(words);
      break;
    case Command::kVocabulary:
      line.vocabulary.words = std::move(words);
      break;
    case Command::kCapture:
      return TakeFolder(line, words);
  }
  return std::nullopt;
}

// Everything before a "--"; what follows are expressions or words as they stand.
std::optional<Farewell> TakeArguments(CommandLine& line, std::vector<std::string> arguments) {
  auto read = ReadOptions(std::move(arguments), line);
  if (auto* farewell = std::get_if<Farewell>(&read)) return std::move(*farewell);
  auto& given = std::get<GivenOptions>(read);
  if (auto refusal = TakeWords(line, std::move(given.words))) return refusal;
  if (auto refusal = RefuseForeign(given.own, line.command)) return refusal;
  if (line.command == Command::kCapture) line.expressions = std::move(given.capture_expressions);
  return Understand(given, line);
}

}  // namespace

std::variant<CommandLine, Farewell> ReadCommandLine(int argc, char const* const* argv) {
  std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  auto const end = std::find(arguments.begin(), arguments.end(), "--");
  bool const is_ended = end != arguments.end();
  std::vector<std::string> literal(is_ended ? std::next(end) : end, arguments.end());
  arguments.erase(end, arguments.end());

  CommandLine line;
  if (auto farewell = TakeArguments(line, std::move(arguments))) return *farewell;
  auto& words = line.command == Command::kVocabulary ? line.vocabulary.words : line.expressions;
  std::move(literal.begin(), literal.end(), std::back_inserter(words));
  line.capture.is_for_expressions = !line.expressions.empty() || !line.file.empty();
  CaptureRequest const& capture = line.capture;
  bool const is_to_write = capture.is_for_expressions || capture.is_redacted ||
                           !capture.patterns.empty() || capture.most_bytes ||
                           capture.most_file_bytes;
  if (capture.is_to_verify && is_to_write) {
    return RefuseUsage("--verify: looks at a capture and writes none");
  }
  return line;
}

}  // namespace gatotu::host
