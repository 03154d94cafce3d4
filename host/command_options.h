// The options of the command: what there is, as the help tells it, and what was given of it.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/command_line.h"

namespace gatotu::host {

// One that not every command has, with those that have it.
struct OwnOption {
  std::string name;
  std::vector<CommandLine::Command> commands;
};

// Beside what options say as it stands, which is in the `CommandLine`.
struct GivenOptions {
  // Texts, still to be understood.
  std::vector<std::string> machines;
  std::optional<std::string> jobs;
  std::string format = "text";
  std::string time_limit = "30s";
  std::string directory_wait = "0";
  std::string most_bytes, most_file_bytes;
  std::vector<std::string> capture_expressions;

  std::vector<OwnOption> own;
  std::vector<std::string> words;  // what is no option
};

std::variant<GivenOptions, Farewell> ReadOptions(std::vector<std::string> arguments,
                                                 CommandLine& line);

// Where what is asked of the command makes no sense: with a hint at the help.
Farewell RefuseUsage(std::string why);

}  // namespace gatotu::host
