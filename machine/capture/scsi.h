// The SCSI buses of a capture: "SCSIBuses", an array whose places are the numbers of the buses. A
// bus is a dictionary, or the reason why there is none of that number.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "machine/capture/facts.h"
#include "machine/scsi.h"

namespace machine::capture {

inline constexpr char kScsiBuses[] = "SCSIBuses";
inline constexpr char kNoSuchBus[] = "no such bus";

// What a bus, or a target of it, is called where it is absent: "SCSIBuses.0", "SCSIBuses.0.3".
std::string NameOfScsiBus(std::uint8_t bus);
std::string NameOfScsiTarget(std::uint8_t bus, std::uint8_t target);

class Scsi final : public ScsiSource {
 public:
  explicit Scsi(Facts const& facts) : facts_(facts) {}
  Fact<std::vector<std::uint8_t>> BusNumbers() const override;
  Fact<ScsiBus> Bus(std::uint8_t bus) const override;
  Fact<std::vector<std::uint8_t>> TargetNumbers(std::uint8_t bus) const override;
  Fact<std::string> Inquiry(std::uint8_t bus, std::uint8_t target) const override;

 private:
  template <typename Read>
  auto Ask(std::string const& name, Read&& read) const -> decltype(read(std::declval<Field>()));
  Fact<Field> BusAt(Field const& buses, std::uint8_t number) const;
  Fact<std::vector<Field>> TargetsOf(Field const& buses, std::uint8_t number) const;
  Absence Unlisted(std::string const& name, char const* why) const;

  Facts const& facts_;
};

}  // namespace machine::capture
