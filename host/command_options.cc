#include "host/command_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

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

// An option that not every command has.
struct Described {
  CLI::Option* option;
  std::vector<Command> commands;
};

template <typename Target>
CLI::Option* Add(CLI::App& app, char const* name, char const* type, Target& target,
                 char const* help) {
  return app.add_option(name, target, help)->type_name(type);
}

std::vector<Described> DescribeOwn(CLI::App& app, CommandLine& line, GivenOptions& given) {
  std::vector<Command> const ask = {Command::kAsk};
  std::vector<Command> const ask_and_capture = {Command::kAsk, Command::kCapture};
  std::vector<Command> const capture = {Command::kCapture};
  return {
      {Add(app, "--machine", "live|FOLDER", given.machines,
           "the machine to ask: live, or a capture's folder; repeatable")
           ->allow_extra_args(false),
       ask_and_capture},
      {Add(app, "--machines", "FILE", line.several.file,
           "ask the captures of a file, a folder a line; - is stdin"),
       ask},
      {Add(app, "--jobs", "N", given.jobs, "how many of several machines to ask at a time"), ask},
      {Add(app, "--user", "NAME", line.user, "whose home ~ is on a capture"), ask_and_capture},
      {Add(app, "--format", "FORMAT", given.format, "text, json, csv or tsv"),
       {Command::kAsk, Command::kVocabulary}},
      {Add(app, "--file", "FILE", line.file,
           "read expressions from a file, one a line; - is stdin"),
       ask_and_capture},
      {Add(app, "--time-limit", "DURATION", given.time_limit,
           "end an evaluation after this long (30s, 500ms, 2m; 0: never)"),
       ask_and_capture},
      {Add(app, "--wait-for-directory", "DURATION", given.directory_wait,
           "wait at most this long for directory records that were not read yet"),
       ask},
      {app.add_flag("--check", line.ask.check_only, "compile only"), ask},
      {app.add_flag("--explain", line.ask.explain, "show the typed tree instead of evaluating"),
       ask},
      {app.add_flag("--evidence", line.ask.evidence, "show the sources that an answer rests on"),
       ask},
      {app.add_flag("--timing", line.ask.timing, "show the time taken"), ask},
      {Add(app, "--type", "TYPE", line.vocabulary.type, "vocabulary: what can be asked of a type"),
       {Command::kVocabulary}},
      {Add(app, "--for", "EXPRESSION", given.capture_expressions,
           "capture: only what these expressions need; repeatable"),
       capture},
      {Add(app, "--with-files", "PATTERN", line.capture.patterns,
           "capture: take files along, such as '/etc/**/*.conf'; repeatable"),
       capture},
      {Add(app, "--limit-bytes", "SIZE", given.most_bytes,
           "capture: most bytes of files' contents together (64M)"),
       capture},
      {Add(app, "--limit-file-bytes", "SIZE", given.most_file_bytes,
           "capture: most bytes of each file that is taken along"),
       capture},
      {app.add_flag("--redact", line.capture.is_redacted,
                    "capture: replace the names of people and machines, and serial numbers"),
       capture},
      {app.add_flag("--verify", line.capture.is_to_verify,
                    "capture: write none, but tell what is not as it was written"),
       capture},
  };
}

void DescribeCommand(CLI::App& app, CommandLine& line) {
  app.description("Answers questions about a machine, asked as short expressions.");
  app.formatter(std::make_shared<HelpFormatter>());
  app.footer(kHelpEnd);
  app.allow_extras();
  app.set_version_flag("--version", "gatotu " GATOTU_VERSION);
  Add(app, "--setting", "SECTION:NAME=VALUE", line.settings,
      "set an item, over the settings files; repeatable")
      ->allow_extra_args(false);
  Add(app, "--plug-in", "FILE", line.plug_ins, "load a further plug-in; repeatable")
      ->allow_extra_args(false);
}

// The library would take the next word for the value that "--file=" does not have.
bool LacksValue(std::string const& word) {
  return word.starts_with("--") && word.find('=') == word.size() - 1;
}

// More often a variable that was never set than what somebody means, and some options would be as
// good as not given.
bool IsEmpty(CLI::Option const* option) {
  auto const& values = option->results();
  return std::find(values.begin(), values.end(), "") != values.end();
}

std::optional<Farewell> RefuseEmptyValues(CLI::App const& app) {
  for (CLI::Option const* option : app.get_options()) {
    if (IsEmpty(option)) return RefuseUsage(option->get_name() + ": its value is empty");
  }
  return std::nullopt;
}

}  // namespace

std::variant<GivenOptions, Farewell> ReadOptions(std::vector<std::string> arguments,
                                                 CommandLine& line) {
  GivenOptions given;
  // To describe all options takes a good part of a short run.
  bool const has_options = std::any_of(arguments.begin(), arguments.end(),
                                       [](auto const& word) { return word.starts_with('-'); });
  if (!has_options) {
    given.words = std::move(arguments);
    return given;
  }
  auto const lacking = std::find_if(arguments.begin(), arguments.end(), LacksValue);
  if (lacking != arguments.end()) return RefuseUsage(*lacking + " lacks its value");
  CLI::App app;
  DescribeCommand(app, line);
  auto const own = DescribeOwn(app, line, given);
  std::reverse(arguments.begin(), arguments.end());
  try {
    app.parse(std::move(arguments));
  } catch (CLI::CallForHelp const&) {
    return Farewell{app.help()};
  } catch (CLI::CallForVersion const&) {
    return Farewell{app.version() + "\n"};
  } catch (CLI::ParseError const& error) {
    return RefuseUsage(error.what());
  }
  if (auto refusal = RefuseEmptyValues(app)) return *std::move(refusal);
  for (auto const& [option, commands] : own) {
    if (option->count() != 0) given.own.push_back({option->get_name(), commands});
  }
  given.words = app.remaining();
  return given;
}

Farewell RefuseUsage(std::string why) {
  return {std::move(why) + "; see gatotu --help", ExitStatus::kRefused};
}

}  // namespace gatotu::host
