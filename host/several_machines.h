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
  std::vector<std::string> names;  // "live" or folders
  std::string file;                // of further folders; empty for none, "-" for standard input
  std::size_t jobs = 1;            // processes that ask at the same time

  bool IsAsked() const { return !names.empty() || !file.empty(); }
};

// From 1 to the most; the number of processors for an empty text, nothing for any other.
std::optional<std::size_t> ParseJobs(std::string_view text);

}  // namespace gatotu::host
