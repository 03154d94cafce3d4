// The devices on SCSI buses, by their standard INQUIRY data.
//
// Those asked for by number are remembered, eight at most, until the evaluator clears its caches.
// The SCSI Manager is given the low byte of a number, while what is remembered goes by the whole.
#pragma once

#include <cstdint>

#include "evaluator/plugin/entry_points.h"
#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "inspectors/system/scsi_bus.h"

struct scsiDevice {
  // No device.
  scsiDevice() = default;
  // Asks the device; `NoSuchObject` where it does not answer.
  scsiDevice(unsigned long long bus_number, unsigned long long target_number);
  // On bus 0.
  explicit scsiDevice(unsigned long long target_number) : scsiDevice(0, target_number) {}

  unsigned char inquiry[256] = {};  // zeros where the device sent fewer bytes
  std::uint64_t target = 0;
  std::uint64_t bus = 0;
};

template <>
struct InspectorTypeName<scsiDevice> {
  static constexpr char const* kName = "scsidevice";
};

// The first eight targets of a bus, up to the first that does not answer.
class SCSIDeviceIterator1 {
 public:
  scsiDevice First(scsibus const& bus);
  scsiDevice Next(scsibus const& bus);

 private:
  std::uint16_t next_target_ = 0;
};

// The first eight targets of one bus after the other, up to the first that does not answer.
class SCSIDeviceIterator2 {
 public:
  scsiDevice First();
  scsiDevice Next();

 private:
  std::uint16_t next_target_ = 0;
  std::uint16_t next_bus_ = 0;  // the current one is before
};

// From the cache, else of the device itself.
scsiDevice get_scsi_device(unsigned long long bus, unsigned long long target);
// Of the evaluator: forgets all devices.
void ClearscsiDevCache(Instant& now, void* context);

// On bus 0.
scsiDevice scsi_device_of(unsigned long long target);
scsiDevice scsi_device_of(unsigned long long target, scsibus const& bus);
// Bytes of the device as they stand, with the blanks behind them; not copied.
inspector_string vendor_of(scsiDevice const& device);
inspector_string product_of(scsiDevice const& device);
inspector_string revision_of(scsiDevice const& device);
inspector_string type_of(scsiDevice const& device);
