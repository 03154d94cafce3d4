#include "inspectors/system/scsi_bus.h"

#include "evaluator/plugin/exceptions.h"

// The registrations of buses stand with those of devices, in `scsi_device.cc`.

scsibus::scsibus(unsigned long long number) {
  block_.scsiPBLength = sizeof block_;
  block_.scsiFunctionCode = SCSIBusInquiry;
  block_.scsiDevice.bus = static_cast<UInt8>(number);
  OSErr const status = SCSIAction(&block_);
  if (status == scsiPBLengthError) throw OSError(status);
  if (status != noErr) throw NoSuchObject();
}

scsibus SCSIBusIterator::First() {
  next_ = 1;
  return scsibus(0);
}

scsibus SCSIBusIterator::Next() {
  scsibus const bus(next_);
  ++next_;
  return bus;
}

scsibus scsi_bus_of(unsigned long long number) { return scsibus(number); }

inspector_version version_of(scsibus const& bus) {
  return MacintoshPlatform::inspector_version(bus.Block().scsiVersionNumber, 0, 0, 0, 0);
}

boolean fast_scsi_of(scsibus const& bus) {
  return (bus.Block().scsiFeatureFlags & scsiBusFastSCSI) != 0;
}

boolean wide16_scsi_of(scsibus const& bus) {
  return (bus.Block().scsiHBAInquiry & scsiBusWide16) != 0;
}

boolean wide32_scsi_of(scsibus const& bus) {
  return (bus.Block().scsiHBAInquiry & scsiBusWide32) != 0;
}
