#include <CoreServices/SCSI.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>

#include "machine/machine.h"

namespace {

using machine::Fact;
using machine::ScsiBus;

constexpr UInt8 kInquiryCommand = 0x12;
constexpr UInt8 kInquiryCommandBytes = 6;
constexpr UInt8 kNoBus = 0xFF;

static_assert(machine::kFastScsi == UInt32{scsiBusFastSCSI});
static_assert(machine::kWide16Scsi == UInt8{scsiBusWide16});
static_assert(machine::kWide32Scsi == UInt8{scsiBusWide32});

// Where the width is told, a target is one line of the bus; else any number may be one.
UInt8 HighestTarget(ScsiBus const& bus) {
  if ((bus.adapter_inquiry & scsiBusWide32) != 0) return 31;
  if ((bus.adapter_inquiry & scsiBusWide16) != 0) return 15;
  return std::numeric_limits<UInt8>::max();
}

OSErr InquireBus(ScsiBus const& bus, SCSIBusInquiryPB& block) {
  block.scsiFeatureFlags = bus.feature_flags;
  block.scsiVersionNumber = bus.version;
  block.scsiHBAInquiry = bus.adapter_inquiry;
  block.scsiMaxTarget = HighestTarget(bus);
  block.scsiMaxLUN = 0;
  return noErr;
}

// Of the standard data; the pages of vital product data are other questions.
bool IsInquiry(SCSIExecIOPB const& block) {
  UInt8 const* const command = block.scsiCDB.cdbBytes;
  return (block.scsiFlags & scsiCDBIsPointer) == 0 &&
         (block.scsiFlags & scsiDirectionMask) == scsiDirectionIn && block.scsiSGListCount == 0 &&
         block.scsiCDBLength == kInquiryCommandBytes && command[0] == kInquiryCommand &&
         (command[1] & 1) == 0 && command[2] == 0;
}

OSErr ExecuteInquiry(ScsiBus const& bus, SCSIExecIOPB& block) {
  DeviceIdent const device = block.scsiDevice;
  if (device.targetID > HighestTarget(bus)) return scsiTIDInvalid;
  if (device.LUN != 0) return scsiLUNInvalid;
  bool const has_room = block.scsiDataPtr != nullptr || block.scsiDataLength == 0;
  if (!IsInquiry(block) || !has_room) return scsiRequestInvalid;
  Fact<std::string> const data =
      machine::CurrentMachine().Scsi().Inquiry(device.bus, device.targetID);
  if (!data) return scsiSelectTimeout;
  UInt8 const* const command = block.scsiCDB.cdbBytes;
  std::size_t const wanted = std::size_t{command[3]} << 8 | command[4];
  std::size_t const room = block.scsiDataLength;
  std::size_t const count = std::min({data->size(), wanted, room});
  if (count != 0) std::memcpy(block.scsiDataPtr, data->data(), count);
  block.scsiSCSIstatus = 0;
  block.scsiDataResidual = static_cast<SInt32>(room - count);
  if (count < room) return scsiDataRunError;
  return noErr;
}

// Each function by the bus it is for, which has to be there.
template <typename Block>
OSErr Perform(SCSI_PB& header, OSErr (*function)(ScsiBus const& bus, Block& block)) {
  if (header.scsiPBLength < sizeof(Block)) return scsiPBLengthError;
  UInt8 const number = header.scsiDevice.bus;
  if (number == kNoBus) return scsiBusInvalid;
  Fact<ScsiBus> const bus = machine::CurrentMachine().Scsi().Bus(number);
  if (!bus) return scsiBusInvalid;
  return function(*bus, static_cast<Block&>(header));
}

OSErr Act(SCSI_PB& header) {
  if (header.scsiPBLength < sizeof(SCSI_PB)) return scsiPBLengthError;
  switch (header.scsiFunctionCode) {
    case SCSIExecIO:
      return Perform<SCSIExecIOPB>(header, ExecuteInquiry);
    case SCSIBusInquiry:
      return Perform<SCSIBusInquiryPB>(header, InquireBus);
    default:
      return scsiFunctionNotAvailable;
  }
}

}  // namespace

OSErr SCSIAction(SCSI_PB* block) {
  block->scsiResult = Act(*block);
  return block->scsiResult;
}
