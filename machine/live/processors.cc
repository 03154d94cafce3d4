#include <algorithm>
#include <cmath>

#include "machine/live/sources.h"
#include "machine/live/text.h"

namespace machine::live {
namespace {

constexpr char const* kInfoPath = "/proc/cpuinfo";

// Counts a list of numbers and ranges such as "0-3,6".
std::optional<std::uint32_t> CountOfList(std::string_view list) {
  std::uint32_t count = 0;
  while (!list.empty()) {
    std::string_view const item = list.substr(0, list.find(','));
    list.remove_prefix(std::min(list.size(), item.size() + 1));
    std::size_t const dash = item.find('-');
    auto const first = ParseNumber<std::uint16_t>(item.substr(0, dash));
    auto const last =
        dash == std::string_view::npos ? first : ParseNumber<std::uint16_t>(item.substr(dash + 1));
    if (!first || !last || *last < *first) return {};
    count += std::uint32_t{*last} - *first + 1;
  }
  return count == 0 ? std::nullopt : std::optional(count);
}

std::uint32_t CountOfEntries(std::string_view info) {
  std::uint32_t count = 0;
  while (!info.empty()) count += ValueIn(TakeLine(info), "processor").has_value();
  return count;
}

// "(pvr 8003 0101)" in the revision of a PowerPC.
std::optional<std::uint32_t> VersionRegister(std::string_view info) {
  auto const revision = FindValue(info, "revision");
  if (!revision) return {};
  constexpr std::string_view kMark = "(pvr ";
  std::size_t const at = revision->find(kMark);
  if (at == std::string_view::npos || revision->size() < at + kMark.size() + 9) return {};
  std::string_view const digits = revision->substr(at + kMark.size(), 9);
  auto const version = ParseNumber<std::uint32_t>(digits.substr(0, 4), 16);
  auto const number = ParseNumber<std::uint32_t>(digits.substr(5), 16);
  if (!version || !number || digits[4] != ' ') return {};
  return *version << 16 | *number;
}

// x86 tells "cpu MHz" of each processor, PowerPC "clock" with its unit.
double HighestInInfo(std::string_view info) {
  double highest = 0;
  while (!info.empty()) {
    std::string_view const line = TakeLine(info);
    auto value = ValueIn(line, "cpu MHz");
    if (!value) {
      value = ValueIn(line, "clock");
      if (!value || !value->ends_with("MHz")) continue;
    }
    highest = std::max(highest, ParseLeadingNumber<double>(*value).value_or(0));
  }
  return highest;
}

}  // namespace

Fact<std::uint32_t> Processors::OnlineCount() const {
  if (Fact<std::string> const list = root_.ReadText("/sys/devices/system/cpu/online")) {
    if (auto const count = CountOfList(*list)) return *count;
  }
  Fact<std::string> const info = root_.ReadFile(kInfoPath);
  if (!info) return info.absence();
  std::uint32_t const count = CountOfEntries(*info);
  if (count == 0) return Absence{Outcome::kAbsent, kInfoPath, "processor"};
  return count;
}

Fact<Architecture> Processors::Kind() const {
  Fact<std::string> const info = root_.ReadFile(kInfoPath);
  if (!info) return info.absence();
  if (FindValue(*info, "cpu family")) return Architecture::kX86;
  if (VersionRegister(*info)) return Architecture::kPowerPC;
  return Architecture::kOther;
}

Fact<std::uint32_t> Processors::PowerPCVersion() const {
  Fact<std::string> const info = root_.ReadFile(kInfoPath);
  if (!info) return info.absence();
  if (auto const version = VersionRegister(*info)) return *version;
  return Absence{Outcome::kAbsent, kInfoPath, "revision"};
}

Fact<std::uint32_t> Processors::HighestMegahertz() const {
  std::string const folder = "/sys/devices/system/cpu";
  double highest = 0;
  if (Fact<std::vector<std::string>> const names = root_.List(folder)) {
    for (std::string const& name : *names) {
      if (!name.starts_with("cpu") || !ParseNumber<std::uint32_t>(name.substr(3))) continue;
      Fact<std::string> const text =
          root_.ReadText(folder + "/" + name + "/cpufreq/cpuinfo_max_freq");
      if (!text) continue;
      highest = std::max(highest, ParseNumber<std::uint32_t>(*text).value_or(0) / 1000.0);
    }
  }
  if (highest == 0) {
    Fact<std::string> const info = root_.ReadFile(kInfoPath);
    if (!info) return info.absence();
    highest = HighestInInfo(*info);
  }
  if (!(highest >= 0.5)) return Absence{Outcome::kAbsent, kInfoPath, "frequency"};
  if (highest > 1e9) return Absence{Outcome::kMalformed, kInfoPath, "frequency"};
  return static_cast<std::uint32_t>(std::lround(highest));
}

}  // namespace machine::live
