// The SCSI buses of the machine.
#pragma once

#include <CoreServices/CoreServices.h>

#include <cstdint>

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "frame/inspector_version.h"

// A bus as the SCSI Manager told of it.
class scsibus {
 public:
  // Of the number the low byte counts. `NoSuchObject` where there is no such bus.
  explicit scsibus(unsigned long long number);

  unsigned char Number() const { return block_.scsiDevice.bus; }
  SCSIBusInquiryPB const& Block() const { return block_; }

 private:
  SCSIBusInquiryPB block_ = {};
};

template <>
struct InspectorTypeName<scsibus> {
  static constexpr char const* kName = "scsibus";
};

// From 0 on, up to the first number that is no bus's.
class SCSIBusIterator {
 public:
  scsibus First();
  scsibus Next();

 private:
  std::uint16_t next_ = 0;
};

scsibus scsi_bus_of(unsigned long long number);
inspector_version version_of(scsibus const& bus);
boolean fast_scsi_of(scsibus const& bus);
boolean wide16_scsi_of(scsibus const& bus);
boolean wide32_scsi_of(scsibus const& bus);
