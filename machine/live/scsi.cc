#include "machine/live/scsi.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "machine/live/text.h"

namespace machine::live {
namespace {

constexpr char kHosts[] = "/sys/class/scsi_host";
constexpr char kDevices[] = "/sys/bus/scsi/devices";
constexpr char kParallelTargets[] = "/sys/class/spi_transport";

// The number between two texts, and nothing else there: no other spelling of it.
std::optional<std::uint8_t> NumberBetween(std::string_view name, std::string_view before,
                                          std::string_view after) {
  if (!name.starts_with(before) || !name.ends_with(after)) return {};
  if (name.size() < before.size() + after.size()) return {};
  name = name.substr(before.size(), name.size() - before.size() - after.size());
  if (name.size() > 1 && name.front() == '0') return {};
  return ParseNumber<std::uint8_t>(name);
}

std::vector<std::uint8_t> NumbersIn(std::vector<std::string> const& names, std::string_view before,
                                    std::string_view after) {
  std::vector<std::uint8_t> numbers;
  for (std::string const& name : names) {
    if (auto const number = NumberBetween(name, before, after)) numbers.push_back(*number);
  }
  std::ranges::sort(numbers);
  return numbers;
}

// "H:0:", what the names of a bus's targets and devices begin with.
std::string FirstChannelOf(std::uint8_t bus) { return std::to_string(bus) + ":0:"; }

// A transfer period of 100 nanoseconds is ten million transfers a second, which is what "fast"
// stands for. The kernel writes whole nanoseconds, or a fraction behind a point; "reserved" for
// none.
bool IsFastPeriod(std::string_view nanoseconds) {
  constexpr unsigned kFastNanoseconds = 100;
  std::string_view const whole = nanoseconds.substr(0, nanoseconds.find('.'));
  bool const has_fraction =
      nanoseconds.find_first_not_of("0", whole.size() + 1) < std::string::npos;
  auto const number = ParseNumber<unsigned>(whole);
  return number && *number + (has_fraction ? 1 : 0) <= kFastNanoseconds;
}

}  // namespace

Fact<std::vector<std::uint8_t>> Scsi::BusNumbers() const {
  Fact<std::vector<std::string>> const names = root_.List(kHosts);
  if (!names) return names.absence();
  return NumbersIn(*names, "host", "");
}

Fact<ScsiBus> Scsi::Bus(std::uint8_t bus) const {
  Fact<std::vector<std::uint8_t>> const numbers = BusNumbers();
  if (!numbers) return numbers.absence();
  if (!std::ranges::binary_search(*numbers, bus)) {
    return Absence{Outcome::kAbsent, kHosts, "host" + std::to_string(bus)};
  }
  ScsiBus found;
  AddTransfers(bus, found);
  return found;
}

// Width and synchronous transfers are matters of parallel SCSI alone, and its kernel attributes say
// what adapter and target have agreed upon, so one target that transfers so proves that the bus
// can. The attributes of SAS and ATA links speak of serial speeds and tell neither; a version is
// told by none.
void Scsi::AddTransfers(std::uint8_t number, ScsiBus& bus) const {
  Fact<std::vector<std::string>> const names = root_.List(kParallelTargets);
  if (!names) return;
  std::string const before = "target" + FirstChannelOf(number);
  for (std::uint8_t const target : NumbersIn(*names, before, "")) {
    std::string const folder =
        std::string(kParallelTargets) + "/" + before + std::to_string(target) + "/";
    Fact<std::string> const width = root_.ReadText(folder + "width");
    if (width && *width == "1") bus.adapter_inquiry |= kWide16Scsi;
    Fact<std::string> const offset = root_.ReadText(folder + "offset");
    if (!offset || ParseNumber<unsigned>(*offset).value_or(0) == 0) continue;  // asynchronous
    Fact<std::string> const period = root_.ReadText(folder + "period");
    if (period && IsFastPeriod(*period)) bus.feature_flags |= kFastScsi;
  }
}

Fact<std::vector<std::uint8_t>> Scsi::TargetNumbers(std::uint8_t bus) const {
  Fact<std::vector<std::string>> const names = root_.List(kDevices);
  if (!names) return names.absence();
  return NumbersIn(*names, FirstChannelOf(bus), ":0");
}

Fact<std::string> Scsi::Inquiry(std::uint8_t bus, std::uint8_t target) const {
  std::string const path =
      std::string(kDevices) + "/" + FirstChannelOf(bus) + std::to_string(target) + ":0/inquiry";
  Fact<std::string> data = root_.ReadFile(path);
  if (data && data->empty()) return Absence{Outcome::kMalformed, path, "empty"};
  return data;
}

}  // namespace machine::live
