#include "host/several_machines.h"

#include <algorithm>
#include <charconv>
#include <thread>

namespace gatotu::host {

std::size_t DefaultJobs() {
  return std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, kMostJobs);
}

std::optional<std::size_t> ParseJobs(std::string_view text) {
  std::size_t jobs = 0;
  char const* const end = text.data() + text.size();
  auto const [rest, error] = std::from_chars(text.data(), end, jobs);
  if (error != std::errc() || rest != end || jobs < 1 || jobs > kMostJobs) return std::nullopt;
  return jobs;
}

}  // namespace gatotu::host
