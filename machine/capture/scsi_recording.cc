#include "machine/capture/scsi_recording.h"

#include <algorithm>

#include "machine/capture/facts.h"
#include "machine/capture/scsi.h"

namespace machine::capture {

void RecordedScsi::KeepBusNumbers(Fact<std::vector<std::uint8_t>> const& numbers) {
  std::lock_guard lock(guard_);
  bus_numbers_ = numbers;
}

void RecordedScsi::KeepBus(std::uint8_t number, Fact<ScsiBus> const& bus) {
  std::lock_guard lock(guard_);
  buses_[number].facts = bus;
}

void RecordedScsi::KeepTargetNumbers(std::uint8_t bus,
                                     Fact<std::vector<std::uint8_t>> const& numbers) {
  std::lock_guard lock(guard_);
  buses_[bus].target_numbers = numbers;
}

void RecordedScsi::KeepInquiry(std::uint8_t bus, std::uint8_t target,
                               Fact<std::string> const& data) {
  std::lock_guard lock(guard_);
  buses_[bus].inquiries.insert_or_assign(target, data);
}

bool RecordedScsi::Knows(std::uint8_t number) const {
  std::lock_guard lock(guard_);
  auto const bus = buses_.find(number);
  return bus != buses_.end() && bus->second.facts;
}

bool RecordedScsi::IsWhole() const {
  auto const is_whole_bus = [this](std::uint8_t number) {
    auto const found = buses_.find(number);
    if (found == buses_.end() || !found->second.facts) return false;
    Bus const& bus = found->second;
    if (!*bus.facts) return true;
    return bus.target_numbers && *bus.target_numbers &&
           std::ranges::all_of(**bus.target_numbers, [&bus](std::uint8_t target) {
             return bus.inquiries.contains(target);
           });
  };
  return bus_numbers_ && *bus_numbers_ && std::ranges::all_of(**bus_numbers_, is_whole_bus);
}

void RecordedScsi::AddTo(RecordDictionary& document, RecordDictionary& absent,
                         RecordArray& partial) const {
  std::lock_guard lock(guard_);
  bool const is_whole = IsWhole();
  RecordArray array;
  for (auto const& [number, bus] : buses_) {
    if (!bus.facts || !*bus.facts) continue;
    // The place in the array is the number, so places between have to be filled.
    while (array.size() < number) array.push_back(RecordOfGap(array.size(), is_whole));
    array.push_back(RecordOfBus(bus));
  }
  for (auto const& [number, bus] : buses_) {
    bool const is_absent = bus.facts && !*bus.facts && number >= array.size();
    if (is_absent) absent.Add(NameOfScsiBus(number), RecordOf(bus.facts->absence()));
  }
  bool const is_listed = bus_numbers_ && *bus_numbers_;
  if (array.empty() && !is_listed) {
    if (bus_numbers_) absent.Add(kScsiBuses, RecordOf(bus_numbers_->absence()));
    return;
  }
  document.Add(kScsiBuses, std::move(array));
  if (!is_whole) partial.emplace_back(std::string(kScsiBuses));
}

Record RecordedScsi::RecordOfGap(std::size_t number, bool is_whole) const {
  auto const bus = static_cast<std::uint8_t>(number);
  auto const asked = buses_.find(bus);
  if (asked != buses_.end() && asked->second.facts) {
    return RecordOf(asked->second.facts->absence());
  }
  return RecordOf({Outcome::kAbsent, NameOfScsiBus(bus), is_whole ? kNoSuchBus : kNotRecorded});
}

Record RecordedScsi::RecordOfBus(Bus const& bus) {
  RecordArray targets;
  for (auto const& [number, data] : bus.inquiries) {
    RecordDictionary target;
    if (!data) target = *RecordOf(data.absence()).As<RecordDictionary>();
    target.Add("Target", std::int64_t{number});
    if (data) target.Add("Inquiry", RecordBytes{*data});
    targets.emplace_back(std::move(target));
  }
  ScsiBus const& facts = **bus.facts;
  RecordDictionary entries;
  entries.Add("Version", std::int64_t{facts.version});
  entries.Add("FeatureFlags", std::int64_t{facts.feature_flags});
  entries.Add("HBAInquiry", std::int64_t{facts.adapter_inquiry});
  entries.Add("Targets", std::move(targets));
  return entries;
}

Fact<std::vector<std::uint8_t>> RecordingScsi::BusNumbers() const {
  auto numbers = asked_.BusNumbers();
  recorded_.KeepBusNumbers(numbers);
  return numbers;
}

Fact<ScsiBus> RecordingScsi::Bus(std::uint8_t bus) const {
  Fact<ScsiBus> found = asked_.Bus(bus);
  recorded_.KeepBus(bus, found);
  return found;
}

Fact<std::vector<std::uint8_t>> RecordingScsi::TargetNumbers(std::uint8_t bus) const {
  auto numbers = asked_.TargetNumbers(bus);
  recorded_.KeepTargetNumbers(bus, numbers);
  return numbers;
}

// A target is recorded in its bus, so that has to be known too.
Fact<std::string> RecordingScsi::Inquiry(std::uint8_t bus, std::uint8_t target) const {
  if (!recorded_.Knows(bus)) Bus(bus);
  Fact<std::string> data = asked_.Inquiry(bus, target);
  recorded_.KeepInquiry(bus, target, data);
  return data;
}

}  // namespace machine::capture
