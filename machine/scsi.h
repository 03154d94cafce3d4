// SCSI buses and what is attached to them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "machine/export.h"
#include "machine/fact.h"

namespace machine {

struct ScsiBus {
  std::uint8_t version = 0;
  std::uint32_t feature_flags = 0;
  std::uint8_t adapter_inquiry = 0;
};

class MACHINE_API ScsiSource {
 public:
  virtual ~ScsiSource() = default;
  virtual Fact<ScsiBus> Bus(std::uint8_t bus) const;
  // The device's standard INQUIRY data as it sent them, which may be short. Unit 0 of the target.
  virtual Fact<std::string> Inquiry(std::uint8_t bus, std::uint8_t target) const;
};

}  // namespace machine
