#include "host/option_values.h"

#include <algorithm>
#include <iterator>

#include "host/time_limit.h"

namespace gatotu::host {
namespace {

using Command = CommandLine::Command;

std::optional<Farewell> TakeFormat(std::string const& text, CommandLine& line) {
  struct Name {
    std::string_view name;
    Format format;
  };
  constexpr Name kFormats[] = {{"text", Format::kText},
                               {"json", Format::kJson},
                               {"csv", Format::kCsv},
                               {"tsv", Format::kTsv}};
  auto const* const named = std::find_if(std::begin(kFormats), std::end(kFormats),
                                         [&](Name const& each) { return each.name == text; });
  if (named == std::end(kFormats)) return RefuseUsage("--format: there is no format " + text);
  line.format = named->format;
  if (line.command == Command::kVocabulary && line.format == Format::kCsv) {
    return RefuseUsage("--format: the vocabulary is written as text, json or tsv");
  }
  return std::nullopt;
}

template <typename Duration>
std::optional<Farewell> TakeDuration(std::string const& option, std::string const& text,
                                     Duration& duration) {
  auto const parsed = ParseDuration(text);
  if (!parsed) return RefuseUsage(option + ": " + text + " is not a duration such as 30s");
  duration = *parsed;
  return std::nullopt;
}

std::optional<Farewell> TakeSize(std::string const& option, std::string const& text,
                                 std::optional<std::uint64_t>& size) {
  if (text.empty()) return std::nullopt;
  size = ParseByteSize(text);
  if (!size) return RefuseUsage(option + ": " + text + " is not a size such as 64M");
  return std::nullopt;
}

// What asks no machine, or has one to speak with.
std::optional<Farewell> RefuseOfSeveral(CommandLine const& line) {
  if (line.command == Command::kCapture) return RefuseUsage("capture: one --machine");
  if (line.ask.check_only) {
    return RefuseUsage("--check: compiling asks no machine; leave them out");
  }
  if (line.ask.explain) {
    return RefuseUsage("--explain: it is the same of all machines; leave them out");
  }
  return std::nullopt;
}

std::optional<Farewell> TakeJobs(std::optional<std::string> const& text, CommandLine& line) {
  auto const jobs = text ? ParseJobs(*text) : DefaultJobs();
  if (!jobs) {
    return RefuseUsage("--jobs: " + *text + " is not a number from 1 to " +
                       std::to_string(kMostJobs));
  }
  line.several.jobs = *jobs;
  return std::nullopt;
}

// One is asked as such. A list is one of several whatever its length, so that what reads the
// answers can rely on labels.
std::optional<Farewell> TakeMachines(GivenOptions const& given, CommandLine& line) {
  bool const is_one = given.machines.size() == 1 && !line.several.file;
  if (is_one) line.machine = given.machines.front();
  if (!is_one) line.several.names = given.machines;
  auto const& names = line.several.names;
  bool const is_live = line.several.IsAsked()
                           ? std::find(names.begin(), names.end(), "live") != names.end()
                           : line.machine == "live";
  if (is_live && !line.user.empty()) {
    return RefuseUsage("--user: on the live machine ~ is the home of the user who asks");
  }
  if (line.several.IsAsked()) {
    auto refusal = TakeJobs(given.jobs, line);
    return refusal ? refusal : RefuseOfSeveral(line);
  }
  if (!given.jobs) return std::nullopt;
  return RefuseUsage("--jobs goes with several machines only");
}

}  // namespace

std::optional<Farewell> Understand(GivenOptions const& given, CommandLine& line) {
  auto refusal = TakeFormat(given.format, line);
  if (!refusal) refusal = TakeDuration("--time-limit", given.time_limit, line.ask.time_limit);
  if (!refusal) {
    refusal = TakeDuration("--wait-for-directory", given.directory_wait, line.ask.directory_wait);
  }
  if (!refusal) refusal = TakeMachines(given, line);
  if (!refusal) refusal = TakeSize("--limit-bytes", given.most_bytes, line.capture.most_bytes);
  if (!refusal) {
    refusal = TakeSize("--limit-file-bytes", given.most_file_bytes, line.capture.most_file_bytes);
  }
  return refusal;
}

}  // namespace gatotu::host
