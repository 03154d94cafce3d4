// The SCSI buses that a Linux kernel knows: a bus is a host adapter, by the number the kernel gave
// it, and its targets are those of the adapter's first channel. What hangs on ATA, SAS or USB is
// there too: to the kernel all of it is SCSI.
#pragma once

#include <string>
#include <vector>

#include "machine/live/root.h"
#include "machine/scsi.h"

namespace machine::live {

class Scsi final : public ScsiSource {
 public:
  explicit Scsi(Root const& root) : root_(root) {}
  Fact<std::vector<std::uint8_t>> BusNumbers() const override;
  Fact<ScsiBus> Bus(std::uint8_t bus) const override;
  Fact<std::vector<std::uint8_t>> TargetNumbers(std::uint8_t bus) const override;
  Fact<std::string> Inquiry(std::uint8_t bus, std::uint8_t target) const override;

 private:
  void AddTransfers(std::uint8_t number, ScsiBus& bus) const;

  Root const& root_;
};

}  // namespace machine::live
