#include "inspectors/system/scsi_device.h"

#include <algorithm>
#include <array>

#include "evaluator/plugin/exceptions.h"
#include "frame/inspector_strings.h"
#include "frame/registration.h"

namespace {

constexpr std::uint16_t kMostTargets = 8;

// One INQUIRY.
class scsiIO {
 public:
  // The buffer has 256 bytes and the command asks for 255, so "less data than room" is the answer
  // of every device, whatever it has sent.
  scsiIO(unsigned long long bus, unsigned long long target, unsigned char* buffer) {
    block_.scsiPBLength = sizeof block_;
    block_.scsiFunctionCode = SCSIExecIO;
    block_.scsiDevice.bus = static_cast<UInt8>(bus);
    block_.scsiDevice.targetID = static_cast<UInt8>(target);
    block_.scsiFlags = scsiDirectionIn | scsiDisableAutosense | scsiSIMQNoFreeze;
    block_.scsiDataPtr = buffer;
    block_.scsiDataLength = sizeof scsiDevice::inquiry;
    block_.scsiCDBLength = kCommand.size();
    std::ranges::copy(kCommand, block_.scsiCDB.cdbBytes);
    block_.scsiTimeout = 600;
    block_.scsiSelectTimeout = 250;
    OSErr const status = SCSIAction(&block_);
    if (status != noErr && status != scsiDataRunError) throw NoSuchObject();
  }

 private:
  static constexpr std::array<UInt8, 6> kCommand = {0x12, 0, 0, 0, 0xFF, 0};

  SCSIExecIOPB block_ = {};
};

// A ring: a full cache overwrites the device that was asked first.
std::array<scsiDevice, 8> scsiDeviceInfo;
std::size_t nextCacheSlot = 0;
std::size_t fullCacheSlots = 0;

inspector_string BytesOf(scsiDevice const& device, std::size_t first, std::size_t length) {
  return AsInspectorString(ConstData(device.inquiry + first, length));
}

// By peripheral device type, lengths in front. That optical memory, the last, reads as a disk is
// meant so.
constexpr char const* kTypes[] = {"\4DISK", "\4TAPE",  "\7PRINTER", "\3CPU",
                                  "\4WORM", "\5CDROM", "\4SCAN",    "\4DISK"};
constexpr char kUnknownType[] = "\7UNKNOWN";

}  // namespace

scsiDevice::scsiDevice(unsigned long long bus_number, unsigned long long target_number)
    : target(target_number), bus(bus_number) {
  scsiIO(bus_number, target_number, inquiry);
}

scsiDevice SCSIDeviceIterator1::First(scsibus const& bus) {
  next_target_ = 0;
  return Next(bus);
}

scsiDevice SCSIDeviceIterator1::Next(scsibus const& bus) {
  if (next_target_ >= kMostTargets) throw NoSuchObject();
  scsiDevice const device(bus.Number(), next_target_);
  ++next_target_;
  return device;
}

scsiDevice SCSIDeviceIterator2::First() {
  next_bus_ = 1;
  scsibus const first(0);
  next_target_ = 0;
  return Next();
}

scsiDevice SCSIDeviceIterator2::Next() {
  while (next_target_ >= kMostTargets) {
    next_target_ = 0;
    scsibus const next(next_bus_++);
  }
  scsiDevice const device(next_bus_ - 1u, next_target_);
  ++next_target_;
  return device;
}

scsiDevice get_scsi_device(unsigned long long bus, unsigned long long target) {
  for (std::size_t i = 0; i < fullCacheSlots; ++i) {
    scsiDevice const& known = scsiDeviceInfo[i];
    if (known.target == target && known.bus == bus) return known;
  }
  scsiDevice const device(bus, target);
  scsiDeviceInfo[nextCacheSlot] = device;
  fullCacheSlots = std::max(fullCacheSlots, nextCacheSlot + 1);
  nextCacheSlot = (nextCacheSlot + 1) % scsiDeviceInfo.size();
  return device;
}

void ClearscsiDevCache(Instant&, void*) {
  fullCacheSlots = 0;
  nextCacheSlot = 0;
}

scsiDevice scsi_device_of(unsigned long long target) { return get_scsi_device(0, target); }

scsiDevice scsi_device_of(unsigned long long target, scsibus const& bus) {
  return get_scsi_device(bus.Number(), target);
}

inspector_string vendor_of(scsiDevice const& device) { return BytesOf(device, 8, 8); }
inspector_string product_of(scsiDevice const& device) { return BytesOf(device, 16, 16); }
inspector_string revision_of(scsiDevice const& device) { return BytesOf(device, 32, 4); }

inspector_string type_of(scsiDevice const& device) {
  std::size_t const type = device.inquiry[0] & 0x1F;
  char const* const text = type < std::size(kTypes) ? kTypes[type] : kUnknownType;
  return AsInspectorString(ConstData(text + 1, static_cast<unsigned char>(text[0])));
}

namespace {

Type<scsibus, kNoFingerprinting> bus_type;
Type<scsiDevice, kNoFingerprinting> device_type;
NumberedGlobalProperty<scsibus> bus("scsibus", "scsibuses", scsi_bus_of, nullptr);
NumberedGlobalProperty<scsiDevice> device("scsidevice", "scsidevices", scsi_device_of, nullptr);
Property<scsibus, inspector_version> bus_version("version", "versions", version_of, nullptr);
Property<scsibus, boolean> fast_scsi("fast scsi", "fast scsis", fast_scsi_of, nullptr);
Property<scsibus, boolean> wide16_scsi("wide16 scsi", "wide16 scsis", wide16_scsi_of, nullptr);
Property<scsibus, boolean> wide32_scsi("wide32 scsi", "wide32 scsis", wide32_scsi_of, nullptr);
NumberedProperty<scsibus, scsiDevice> device_of_bus("scsidevice", "scsidevices", scsi_device_of,
                                                    nullptr);
Property<scsiDevice, inspector_string> vendor("vendor", "vendors", vendor_of, nullptr);
Property<scsiDevice, inspector_string> type("type", "types", type_of, nullptr);
Property<scsiDevice, inspector_string> product("product", "products", product_of, nullptr);
Property<scsiDevice, inspector_string> revision("revision", "revisions", revision_of, nullptr);
IteratedProperty<SCSIDeviceIterator1, scsibus, scsiDevice> devices_of_bus("scsidevice",
                                                                          "scsidevices", nullptr);
IteratedGlobalProperty<SCSIDeviceIterator2, scsiDevice> devices("scsidevice", "scsidevices",
                                                                nullptr);
IteratedGlobalProperty<SCSIBusIterator, scsibus> buses("scsibus", "scsibuses", nullptr);
CacheRegistration cache(ClearscsiDevCache);

}  // namespace
