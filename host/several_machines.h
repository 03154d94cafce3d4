// Which machines are asked, where it is not just one.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gatotu::host {

constexpr std::size_t kMostJobs = 128;

struct SeveralMachines {
  std::vector<std::string> names;   // "live" or folders
  std::optional<std::string> file;  // of further folders; "-" for standard input
  std::size_t jobs = 1;             // processes that ask at the same time

  bool IsAsked() const { return !names.empty() || file.has_value(); }
};

// As many as there are processors.
std::size_t DefaultJobs();

// Nothing for what is not a number from 1 to the most.
std::optional<std::size_t> ParseJobs(std::string_view text);

}  // namespace gatotu::host
