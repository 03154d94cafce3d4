// SCSI buses and what is attached to them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "machine/export.h"
#include "machine/fact.h"

namespace machine {

// Bits as SCSI managers publish them: of the feature flags, then of the adapter's inquiry byte. One
// that is not set is one that the machine does not tell.
inline constexpr std::uint32_t kFastScsi = 0x02;
inline constexpr std::uint8_t kWide16Scsi = 0x20, kWide32Scsi = 0x40;

struct ScsiBus {
  std::uint8_t version = 0;  // of the adapter; 0 where the machine does not tell
  std::uint32_t feature_flags = 0;
  std::uint8_t adapter_inquiry = 0;
};

class MACHINE_API ScsiSource {
 public:
  virtual ~ScsiSource() = default;
  // In ascending order.
  virtual Fact<std::vector<std::uint8_t>> BusNumbers() const;
  virtual Fact<ScsiBus> Bus(std::uint8_t bus) const;
  // Of the targets that may answer, in ascending order.
  virtual Fact<std::vector<std::uint8_t>> TargetNumbers(std::uint8_t bus) const;
  // The device's standard INQUIRY data as it sent them, which may be short but are never empty.
  // Unit 0 of the target.
  virtual Fact<std::string> Inquiry(std::uint8_t bus, std::uint8_t target) const;
};

}  // namespace machine
