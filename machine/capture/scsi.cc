#include "machine/capture/scsi.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace machine::capture {
namespace {

constexpr std::size_t kMostBuses = std::size_t{std::numeric_limits<std::uint8_t>::max()} + 1;

// What a bus does not tell is 0.
template <typename Number>
Fact<Number> NumberIn(Field const& field) {
  if (!field.exists()) return Number{0};
  Fact<std::uint64_t> const number = field.Unsigned(std::numeric_limits<Number>::max());
  if (!number) return number.absence();
  return static_cast<Number>(*number);
}

Fact<ScsiBus> BusIn(Field const& field) {
  auto const version = NumberIn<std::uint8_t>(field["Version"]);
  auto const flags = NumberIn<std::uint32_t>(field["FeatureFlags"]);
  auto const inquiry = NumberIn<std::uint8_t>(field["HBAInquiry"]);
  if (!version) return version.absence();
  if (!flags) return flags.absence();
  if (!inquiry) return inquiry.absence();
  return ScsiBus{*version, *flags, *inquiry};
}

Fact<std::uint8_t> NumberOfTarget(Field const& target) {
  Field const number = target["Target"];
  if (!number.exists()) return number.Malformed({});
  return NumberIn<std::uint8_t>(number);
}

Fact<std::string> InquiryIn(Field const& target) {
  Field const field = target["Inquiry"];
  Fact<std::string> data = field.Text();
  if (data && data->empty()) return field.Malformed("empty");
  return data;
}

}  // namespace

std::string NameOfScsiBus(std::uint8_t bus) {
  return std::string(kScsiBuses) + "." + std::to_string(bus);
}

std::string NameOfScsiTarget(std::uint8_t bus, std::uint8_t target) {
  return NameOfScsiBus(bus) + "." + std::to_string(target);
}

// `read` is given the array. Without one, the reason is that of what was asked for, or of all.
template <typename Read>
auto Scsi::Ask(std::string const& name, Read&& read) const
    -> decltype(read(std::declval<Field>())) {
  if (!facts_[kScsiBuses].exists() && facts_["Absent"][name].exists()) return facts_.Missing(name);
  return facts_.Ask(kScsiBuses, [&](Field const& buses) -> decltype(read(buses)) {
    if (buses.As<RecordArray>() == nullptr) return buses.Malformed("not an array");
    return read(buses);
  });
}

// What is not in a list: where only what was asked is recorded, nobody knows.
Absence Scsi::Unlisted(std::string const& name, char const* why) const {
  char const* const known = facts_.IsPartial(kScsiBuses) ? kNotRecorded : why;
  return AbsenceIn(facts_["Absent"][name], {Outcome::kAbsent, name, known});
}

Fact<Field> Scsi::BusAt(Field const& buses, std::uint8_t number) const {
  auto const& array = *buses.As<RecordArray>();
  std::string const name = NameOfScsiBus(number);
  if (number >= array.size()) return Unlisted(name, kNoSuchBus);
  Field bus(&array[number], buses.path() + "[" + std::to_string(number) + "]");
  if (IsAbsence(bus)) return AbsenceIn(bus, {Outcome::kAbsent, name, {}});
  if (bus.As<RecordDictionary>() == nullptr) return bus.Malformed("not a dictionary");
  return bus;
}

Fact<std::vector<Field>> Scsi::TargetsOf(Field const& buses, std::uint8_t number) const {
  Fact<Field> const bus = BusAt(buses, number);
  if (!bus) return bus.absence();
  Field const targets = (*bus)["Targets"];
  if (targets.exists() && targets.As<RecordArray>() == nullptr) {
    return targets.Malformed("not an array");
  }
  return targets.Items();
}

Fact<std::vector<std::uint8_t>> Scsi::BusNumbers() const {
  return Ask(kScsiBuses, [](Field const& buses) -> Fact<std::vector<std::uint8_t>> {
    std::vector<std::uint8_t> numbers;
    auto const& array = *buses.As<RecordArray>();
    for (std::size_t i = 0; i < std::min(array.size(), kMostBuses); ++i) {
      if (!IsAbsence(Field(&array[i], {}))) numbers.push_back(static_cast<std::uint8_t>(i));
    }
    return numbers;
  });
}

Fact<ScsiBus> Scsi::Bus(std::uint8_t bus) const {
  return Ask(NameOfScsiBus(bus), [&](Field const& buses) -> Fact<ScsiBus> {
    Fact<Field> const field = BusAt(buses, bus);
    if (!field) return field.absence();
    return BusIn(*field);
  });
}

Fact<std::vector<std::uint8_t>> Scsi::TargetNumbers(std::uint8_t bus) const {
  return Ask(NameOfScsiBus(bus), [&](Field const& buses) -> Fact<std::vector<std::uint8_t>> {
    Fact<std::vector<Field>> const targets = TargetsOf(buses, bus);
    if (!targets) return targets.absence();
    std::vector<std::uint8_t> numbers;
    for (Field const& target : *targets) {
      Fact<std::uint8_t> const number = NumberOfTarget(target);
      if (!number) return number.absence();
      if (!IsAbsence(target)) numbers.push_back(*number);
    }
    std::ranges::sort(numbers);
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
  });
}

// Of equal numbers the first counts.
Fact<std::string> Scsi::Inquiry(std::uint8_t bus, std::uint8_t target) const {
  std::string const name = NameOfScsiTarget(bus, target);
  return Ask(name, [&](Field const& buses) -> Fact<std::string> {
    Fact<std::vector<Field>> const targets = TargetsOf(buses, bus);
    if (!targets) return targets.absence();
    for (Field const& each : *targets) {
      Fact<std::uint8_t> const number = NumberOfTarget(each);
      if (!number) return number.absence();
      if (*number != target) continue;
      if (IsAbsence(each)) return AbsenceIn(each, {Outcome::kAbsent, name, {}});
      return InquiryIn(each);
    }
    return Unlisted(name, "no such target");
  });
}

}  // namespace machine::capture
