#include <ctime>

#include "machine/live/sources.h"
#include "machine/live/text.h"

namespace machine::live {

Fact<std::int64_t> Clock::MicrosecondsSince1970() const {
  if (!root_.is_running()) return AnnounceAbsence(Outcome::kNotSupported, "clock");
  timespec now;
  ::clock_gettime(CLOCK_REALTIME, &now);
  Announce("clock", Outcome::kAnswered);
  return std::int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}

Fact<std::int64_t> Clock::BootSecondsSince1970() const {
  constexpr char const* kPath = "/proc/stat";
  Fact<std::string> const text = root_.ReadFile(kPath);
  if (!text) return text.absence();
  std::string_view rest = *text;
  while (!rest.empty()) {
    std::string_view const line = TakeLine(rest);
    if (!line.starts_with("btime ")) continue;
    if (auto const seconds = ParseNumber<std::int64_t>(Trim(line.substr(6)))) return *seconds;
    return Absence{Outcome::kMalformed, kPath, "btime"};
  }
  return Absence{Outcome::kAbsent, kPath, "btime"};
}

}  // namespace machine::live
