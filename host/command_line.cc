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

With no expression, expressions are read from standard input, one a line. "--" ends the options
and commands, so that an expression may begin with "-" or be called "vocabulary".

Exit status: 0 answered, 1 no such object or another failure, 2 expression or usage refused,
3 time limit or interrupt, 4 machine unusable; of several the largest.

Settings are read from /etc/gatotu/settings.ini, then $XDG_CONFIG_HOME/gatotu/settings.ini, then
from --setting.)";

// Two lines of usage, since what follows the options is told apart by us.
class HelpFormatter final : public CLI::Formatter {
 public:
  HelpFormatter() { column_width(36); }
  std::string make_usage(CLI::App const*, std::string) const override {
    return "Usage: gatotu [OPTIONS] EXPRESSION...\n       gatotu [OPTIONS] vocabulary [WORDS]\n";
  }
};

// The texts of options, still to be understood.
struct Raw {
  std::string format = "text";
  std::string time_limit = "30s";
};

// Options that go with one of the two commands only.
struct OwnOptions {
  std::vector<CLI::Option*> ask;
  std::vector<CLI::Option*> vocabulary;
};

OwnOptions Describe(CLI::App& app, CommandLine& line, Raw& raw) {
  OwnOptions own;
  app.description("Answers questions about a machine, asked as short expressions.");
  app.formatter(std::make_shared<HelpFormatter>());
  app.footer(kHelpEnd);
  app.allow_extras();
  app.set_version_flag("--version", "gatotu " GATOTU_VERSION);
  app.add_option("--format", raw.format, "text, json, csv or tsv")->type_name("FORMAT");
  app.add_option("--setting", line.settings, "set an item, over the settings files; repeatable")
      ->type_name("SECTION:NAME=VALUE")
      ->allow_extra_args(false);
  app.add_option("--plug-in", line.plug_ins, "load a further plug-in; repeatable")
      ->type_name("FILE")
      ->allow_extra_args(false);
  own.ask = {
      app.add_option("--machine", line.machine, "the machine to ask: live, or a capture's folder")
          ->type_name("live|FOLDER"),
      app.add_option("--file", line.file, "read expressions from a file, one a line; - is stdin")
          ->type_name("FILE"),
      app.add_option("--time-limit", raw.time_limit,
                     "end an evaluation after this long (30s, 500ms, 2m; 0: never)")
          ->type_name("DURATION"),
      app.add_flag("--check", line.ask.check_only, "compile only"),
      app.add_flag("--explain", line.ask.explain, "show the typed tree instead of evaluating"),
      app.add_flag("--evidence", line.ask.evidence, "show the sources that an answer rests on"),
      app.add_flag("--timing", line.ask.timing, "show the time taken"),
  };
  own.vocabulary = {
      app.add_option("--type", line.vocabulary.type, "vocabulary: what can be asked of a type")
          ->type_name("TYPE"),
  };
  return own;
}

Farewell Refuse(std::string text) {
  return {std::move(text) + "; see gatotu --help", ExitStatus::kRefused};
}

std::optional<Farewell> RefuseForeign(std::vector<CLI::Option*> const& options, char const* why) {
  for (CLI::Option const* option : options) {
    if (option->count() > 0) return Refuse(option->get_name() + why);
  }
  return std::nullopt;
}

// Whether the words that are left are those of a command, and which.
std::optional<Farewell> TakeWords(CommandLine& line, std::vector<std::string> words) {
  for (std::string const& word : words) {
    if (word.size() > 1 && word.front() == '-') return Refuse("unknown option " + word);
  }
  if (words.empty() || words.front() != "vocabulary") {
    line.expressions = std::move(words);
    return std::nullopt;
  }
  line.command = CommandLine::Command::kVocabulary;
  line.vocabulary.words.assign(std::next(words.begin()), words.end());
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
  if (line.command == CommandLine::Command::kVocabulary && line.format == Format::kCsv) {
    return Refuse("--format: the vocabulary is written as text, json or tsv");
  }
  auto const limit = ParseDuration(raw.time_limit);
  if (!limit) return Refuse("--time-limit: " + raw.time_limit + " is not a duration such as 30s");
  line.ask.time_limit = *limit;
  return std::nullopt;
}

// Everything before a "--"; what follows are expressions or words as they stand.
std::optional<Farewell> ReadOptions(CommandLine& line, std::vector<std::string> arguments) {
  CLI::App app;
  Raw raw;
  OwnOptions const own = Describe(app, line, raw);
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
  bool const is_vocabulary = line.command == CommandLine::Command::kVocabulary;
  auto refusal = is_vocabulary ? RefuseForeign(own.ask, " does not go with vocabulary")
                               : RefuseForeign(own.vocabulary, " goes with vocabulary only");
  if (refusal) return refusal;
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
  auto& words =
      line.command == CommandLine::Command::kVocabulary ? line.vocabulary.words : line.expressions;
  std::move(literal.begin(), literal.end(), std::back_inserter(words));
  return line;
}

}  // namespace gatotu::host
