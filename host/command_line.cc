#include "host/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>

#include "host/time_limit.h"

namespace gatotu::host {
namespace {

constexpr char kHelpEnd[] = R"(Commands:
  vocabulary [WORDS]          lists what can be asked: every registration whose name
                              has the words, or all of a type (--type)
  capture FOLDER              writes what the machine answers into a folder, to be asked with
                              --machine FOLDER; all that is known, or what expressions need (--for),
                              and files (--with-files); or looks whether it is unchanged (--verify)

With several --machine, or those of --machines, each is asked; answers are labelled with it.

With no expression, expressions are read from standard input, one a line. "--" ends the options
and commands, so that an expression may begin with "-" or be called "vocabulary".

Exit status: 0 answered, 1 no such object or another failure, 2 expression or usage refused,
3 time limit or interrupt, 4 machine unusable; of several the largest.

Settings are read from /etc/gatotu/settings.ini, then $XDG_CONFIG_HOME/gatotu/settings.ini, then
from --setting.)";

// The usage, since what follows the options is told apart by us.
class HelpFormatter final : public CLI::Formatter {
 public:
  HelpFormatter() { column_width(36); }
  std::string make_usage(CLI::App const*, std::string) const override {
    return "Usage: gatotu [OPTIONS] EXPRESSION...\n"
           "       gatotu [OPTIONS] vocabulary [WORDS]\n"
           "       gatotu [OPTIONS] capture FOLDER [--for EXPRESSION...] [--with-files "
           "PATTERN...]\n"
           "       gatotu capture FOLDER --verify\n";
  }
};

using Command = CommandLine::Command;

// The texts of options, still to be understood.
struct Raw {
  std::vector<std::string> machines;
  std::optional<std::string> jobs;
  std::string format = "text";
  std::string time_limit = "30s";
  std::string directory_wait = "0";
  std::string most_bytes, most_file_bytes;
  std::vector<std::string> capture_expressions;
};

// An option that not every command has, with those that have it.
struct OwnOption {
  CLI::Option* option;
  std::vector<Command> commands;
};

std::vector<OwnOption> DescribeOwnOptions(CLI::App& app, CommandLine& line, Raw& raw) {
  std::vector<Command> const ask = {Command::kAsk};
  std::vector<Command> const ask_and_capture = {Command::kAsk, Command::kCapture};
  std::vector<Command> const capture = {Command::kCapture};
  return {
      {app.add_option("--machine", raw.machines,
                      "the machine to ask: live, or a capture's folder; repeatable")
           ->type_name("live|FOLDER")
           ->allow_extra_args(false),
       ask_and_capture},
      {app.add_option("--machines", line.several.file,
                      "ask the captures of a file, a folder a line; - is stdin")
           ->type_name("FILE"),
       ask},
      {app.add_option("--jobs", raw.jobs, "how many of several machines to ask at a time")
           ->type_name("N"),
       ask},
      {app.add_option("--user", line.user, "whose home ~ is on a capture")->type_name("NAME"),
       ask_and_capture},
      {app.add_option("--format", raw.format, "text, json, csv or tsv")->type_name("FORMAT"),
       {Command::kAsk, Command::kVocabulary}},
      {app.add_option("--file", line.file, "read expressions from a file, one a line; - is stdin")
           ->type_name("FILE"),
       ask_and_capture},
      {app.add_option("--time-limit", raw.time_limit,
                      "end an evaluation after this long (30s, 500ms, 2m; 0: never)")
           ->type_name("DURATION"),
       ask_and_capture},
      {app.add_option("--wait-for-directory", raw.directory_wait,
                      "wait at most this long for directory records that were not read yet")
           ->type_name("DURATION"),
       ask},
      {app.add_flag("--check", line.ask.check_only, "compile only"), ask},
      {app.add_flag("--explain", line.ask.explain, "show the typed tree instead of evaluating"),
       ask},
      {app.add_flag("--evidence", line.ask.evidence, "show the sources that an answer rests on"),
       ask},
      {app.add_flag("--timing", line.ask.timing, "show the time taken"), ask},
      {app.add_option("--type", line.vocabulary.type, "vocabulary: what can be asked of a type")
           ->type_name("TYPE"),
       {Command::kVocabulary}},
      {app.add_option("--for", raw.capture_expressions,
                      "capture: only what these expressions need; repeatable")
           ->type_name("EXPRESSION"),
       capture},
      {app.add_option("--with-files", line.capture.patterns,
                      "capture: take files along, such as '/etc/**/*.conf'; repeatable")
           ->type_name("PATTERN"),
       capture},
      {app.add_option("--limit-bytes", raw.most_bytes,
                      "capture: most bytes of files' contents together (64M)")
           ->type_name("SIZE"),
       capture},
      {app.add_option("--limit-file-bytes", raw.most_file_bytes,
                      "capture: most bytes of each file that is taken along")
           ->type_name("SIZE"),
       capture},
      {app.add_flag("--redact", line.capture.is_redacted,
                    "capture: replace the names of people and machines, and serial numbers"),
       capture},
      {app.add_flag("--verify", line.capture.is_to_verify,
                    "capture: write none, but tell what is not as it was written"),
       capture},
  };
}

std::vector<OwnOption> Describe(CLI::App& app, CommandLine& line, Raw& raw) {
  app.description("Answers questions about a machine, asked as short expressions.");
  app.formatter(std::make_shared<HelpFormatter>());
  app.footer(kHelpEnd);
  app.allow_extras();
  app.set_version_flag("--version", "gatotu " GATOTU_VERSION);
  app.add_option("--setting", line.settings, "set an item, over the settings files; repeatable")
      ->type_name("SECTION:NAME=VALUE")
      ->allow_extra_args(false);
  app.add_option("--plug-in", line.plug_ins, "load a further plug-in; repeatable")
      ->type_name("FILE")
      ->allow_extra_args(false);
  return DescribeOwnOptions(app, line, raw);
}

Farewell Refuse(std::string text) {
  return {std::move(text) + "; see gatotu --help", ExitStatus::kRefused};
}

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

std::optional<Farewell> RefuseForeign(std::vector<OwnOption> const& options, Command command) {
  for (auto const& [option, commands] : options) {
    bool const is_own = std::find(commands.begin(), commands.end(), command) != commands.end();
    if (option->count() == 0 || is_own) continue;
    // What cannot be asked with belongs to one command alone.
    std::string const why = command == Command::kAsk
                                ? " goes with " + std::string(NameOf(commands.front())) + " only"
                                : " does not go with " + std::string(NameOf(command));
    return Refuse(option->get_name() + why);
  }
  return std::nullopt;
}

std::optional<Farewell> TakeFolder(CommandLine& line, std::vector<std::string> const& words) {
  if (words.empty() || words.front().empty())
    return Refuse("capture: name the folder to write, before --for and --with-files");
  if (words.size() > 1) return Refuse("capture: one folder; expressions stand behind --for");
  line.capture.folder = words.front();
  return std::nullopt;
}

// Whether the words that are left are those of a command, and which.
std::optional<Farewell> TakeWords(CommandLine& line, std::vector<std::string> words) {
  for (std::string const& word : words) {
    if (word.size() > 1 && word.front() == '-') return Refuse("unknown option " + word);
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

// What asks no machine, or has one to speak with.
std::optional<Farewell> RefuseOfSeveral(CommandLine const& line) {
  if (line.command == Command::kCapture) return Refuse("capture: one --machine");
  if (line.ask.check_only) return Refuse("--check: compiling asks no machine; leave them out");
  if (line.ask.explain) return Refuse("--explain: it is the same of all machines; leave them out");
  return std::nullopt;
}

// One is asked as such. A list is one of several whatever its length, so that what reads the
// answers can rely on labels.
std::optional<Farewell> TakeMachines(CommandLine& line, Raw const& raw) {
  bool const is_one = raw.machines.size() == 1 && !line.several.file;
  if (is_one) line.machine = raw.machines.front();
  if (!is_one) line.several.names = raw.machines;
  auto const& names = line.several.names;
  bool const is_live = line.several.IsAsked()
                           ? std::find(names.begin(), names.end(), "live") != names.end()
                           : line.machine == "live";
  if (is_live && !line.user.empty()) {
    return Refuse("--user: on the live machine ~ is the home of the user who asks");
  }
  if (!line.several.IsAsked()) {
    if (!raw.jobs) return std::nullopt;
    return Refuse("--jobs goes with several machines only");
  }
  auto const jobs = raw.jobs ? ParseJobs(*raw.jobs) : DefaultJobs();
  if (!jobs) {
    return Refuse("--jobs: " + *raw.jobs + " is not a number from 1 to " +
                  std::to_string(kMostJobs));
  }
  line.several.jobs = *jobs;
  return RefuseOfSeveral(line);
}

std::optional<Farewell> TakeSize(std::string const& option, std::string const& text,
                                 std::optional<std::uint64_t>& size) {
  if (text.empty()) return std::nullopt;
  size = ParseByteSize(text);
  if (!size) return Refuse(option + ": " + text + " is not a size such as 64M");
  return std::nullopt;
}

std::optional<Farewell> Understand(CommandLine& line, Raw const& raw) {
  struct Name {
    std::string_view name;
    Format format;
  };
  constexpr Name kFormats[] = {{"text", Format::kText},
                               {"json", Format::kJson},
                               {"csv", Format::kCsv},
                               {"tsv", Format::kTsv}};
  auto const* const named = std::find_if(std::begin(kFormats), std::end(kFormats),
                                         [&](Name const& each) { return each.name == raw.format; });
  if (named == std::end(kFormats)) return Refuse("--format: there is no format " + raw.format);
  line.format = named->format;
  if (line.command == Command::kVocabulary && line.format == Format::kCsv) {
    return Refuse("--format: the vocabulary is written as text, json or tsv");
  }
  auto const limit = ParseDuration(raw.time_limit);
  if (!limit) return Refuse("--time-limit: " + raw.time_limit + " is not a duration such as 30s");
  line.ask.time_limit = *limit;
  auto const wait = ParseDuration(raw.directory_wait);
  if (!wait) {
    return Refuse("--wait-for-directory: " + raw.directory_wait + " is not a duration such as 30s");
  }
  line.ask.directory_wait = *wait;
  if (auto refusal = TakeMachines(line, raw)) return refusal;
  if (auto refusal = TakeSize("--limit-bytes", raw.most_bytes, line.capture.most_bytes)) {
    return refusal;
  }
  return TakeSize("--limit-file-bytes", raw.most_file_bytes, line.capture.most_file_bytes);
}

// Takes the options away. To describe them all takes a good part of a short run, so that is left
// where there are none.
std::optional<Farewell> TakeOptions(CommandLine& line, Raw& raw,
                                    std::vector<std::string>& arguments) {
  bool const has_options = std::any_of(arguments.begin(), arguments.end(),
                                       [](auto const& word) { return word.starts_with('-'); });
  if (!has_options) return TakeWords(line, std::move(arguments));
  CLI::App app;
  auto const own = Describe(app, line, raw);
  std::reverse(arguments.begin(), arguments.end());
  try {
    app.parse(std::move(arguments));
  } catch (CLI::CallForHelp const&) {
    return Farewell{app.help()};
  } catch (CLI::CallForVersion const&) {
    return Farewell{app.version() + "\n"};
  } catch (CLI::ParseError const& error) {
    return Refuse(error.what());
  }
  if (auto refusal = TakeWords(line, app.remaining())) return refusal;
  return RefuseForeign(own, line.command);
}

// Everything before a "--"; what follows are expressions or words as they stand.
std::optional<Farewell> ReadOptions(CommandLine& line, std::vector<std::string> arguments) {
  Raw raw;
  if (auto farewell = TakeOptions(line, raw, arguments)) return farewell;
  if (line.command == Command::kCapture) line.expressions = std::move(raw.capture_expressions);
  return Understand(line, raw);
}

}  // namespace

std::variant<CommandLine, Farewell> ReadCommandLine(int argc, char const* const* argv) {
  std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  auto const end = std::find(arguments.begin(), arguments.end(), "--");
  bool const is_ended = end != arguments.end();
  std::vector<std::string> literal(is_ended ? std::next(end) : end, arguments.end());
  arguments.erase(end, arguments.end());

  CommandLine line;
  if (auto farewell = ReadOptions(line, std::move(arguments))) return *farewell;
  auto& words = line.command == Command::kVocabulary ? line.vocabulary.words : line.expressions;
  std::move(literal.begin(), literal.end(), std::back_inserter(words));
  line.capture.is_for_expressions = !line.expressions.empty() || !line.file.empty();
  bool const is_to_write =
      line.capture.is_for_expressions || line.capture.is_redacted || !line.capture.patterns.empty();
  if (line.capture.is_to_verify && is_to_write) {
    return Refuse("--verify: looks at a capture and writes none");
  }
  return line;
}

}  // namespace gatotu::host
