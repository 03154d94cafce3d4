// The SCSI Manager over the buses of the machine in use. What it carries out is carried out before
// `SCSIAction` returns: inquiries of a bus, and the one command INQUIRY.
//
// The blocks have the classic layouts and lengths. Addresses that nobody uses are 32-bit words;
// those of data and sense are as wide as the machine's, which the block's private tail makes up
// for.
#pragma once

#include <CoreServices/MacTypes.h>

#include <cstddef>

enum : OSErr {
  scsiSelectTimeout = -7926,         // the target does not answer
  scsiDataRunError = -7918,          // less data than there is room for; they are in their place
  scsiPBLengthError = -7872,         // the block is too short for its function
  scsiFunctionNotAvailable = -7871,  // none of the functions below
  scsiRequestInvalid = -7870,        // a command other than INQUIRY, or without room for its data
  scsiBusInvalid = -7869,
  scsiTIDInvalid = -7868,  // beyond what a bus of that width can address
  scsiLUNInvalid = -7867,  // of every target unit 0 alone can be reached
};

enum : UInt8 { SCSIExecIO = 1, SCSIBusInquiry = 3 };

enum : UInt32 {
  scsiDirectionMask = 0xC0000000,
  scsiDirectionIn = 0x40000000,
  scsiDisableAutosense = 0x20000000,
  scsiCDBIsPointer = 0x01000000,
  scsiSIMQNoFreeze = 0x00040000,
};

// Of `scsiFeatureFlags`, and of `scsiHBAInquiry`.
enum : UInt32 { scsiBusFastSCSI = 0x02 };
enum : UInt8 { scsiBusWide32 = 0x40, scsiBusWide16 = 0x20 };

struct DeviceIdent {
  UInt8 diReserved;
  UInt8 bus;  // 0xFF is no bus's number
  UInt8 targetID;
  UInt8 LUN;
};

#pragma pack(push, 4)

// What every block begins with.
struct SCSIHdr {
  UInt32 qLink;
  SInt16 scsiReserved1;
  UInt16 scsiPBLength;  // of the whole block
  UInt8 scsiFunctionCode;
  UInt8 scsiReserved2;
  OSErr scsiResult;  // what `SCSIAction` returned
  DeviceIdent scsiDevice;
  UInt32 scsiCompletion;
  UInt32 scsiFlags;
  UInt32 scsiDriverStorage;
  UInt32 scsiXPTprivate;
  SInt32 scsiReserved3;
};

// `SCSIAction` fills the feature flags, the version, the adapter's inquiry byte and the highest
// target and unit, and leaves the rest alone: no machine tells of it. A version of 0 is not told.
struct SCSIBusInquiryPB : SCSIHdr {
  UInt16 scsiEngineCount;
  UInt16 scsiMaxTransferType;
  UInt32 scsiDataTypes;
  UInt16 scsiIOpbSize;
  UInt16 scsiMaxIOpbSize;
  UInt32 scsiFeatureFlags;
  UInt8 scsiVersionNumber;
  UInt8 scsiHBAInquiry;
  UInt8 scsiTargetModeFlags;
  UInt8 scsiScanFlags;
  UInt32 scsiSIMPrivatesPtr;
  UInt32 scsiSIMPrivatesSize;
  UInt32 scsiAsyncFlags;
  UInt8 scsiHiBusID;
  UInt8 scsiInitiatorID;
  UInt16 scsiBIReserved0;
  UInt32 scsiBIReserved1;
  UInt32 scsiFlagsSupported;
  UInt16 scsiIOFlagsSupported;
  UInt16 scsiWeirdStuff;
  UInt16 scsiMaxTarget;
  UInt16 scsiMaxLUN;
  char scsiSIMVendor[16];
  char scsiHBAVendor[16];
  char scsiControllerFamily[16];
  char scsiControllerType[16];
  char scsiXPTversion[4];
  char scsiSIMversion[4];
  char scsiHBAversion[4];
  UInt8 scsiHBAslotType;
  UInt8 scsiHBAslotNumber;
  UInt16 scsiSIMsRsrcID;
  UInt16 scsiBIReserved3;
  UInt16 scsiAdditionalLength;
};

union CDB {
  UInt32 cdbPtr;
  UInt8 cdbBytes[16];
};

struct SCSIExecIOPB : SCSIHdr {
  UInt16 scsiResultFlags;
  UInt16 scsiReserved3pt5;
  UInt8* scsiDataPtr;
  UInt32 scsiDataLength;
  UInt8* scsiSensePtr;
  UInt8 scsiSenseLength;
  UInt8 scsiCDBLength;
  UInt16 scsiSGListCount;
  UInt32 scsiReserved4;
  UInt8 scsiSCSIstatus;
  SInt8 scsiSenseResidual;
  UInt16 scsiReserved5;
  SInt32 scsiDataResidual;  // how much of the room was not used
  CDB scsiCDB;
  SInt32 scsiTimeout;
  UInt32 scsiReserved5pt5;
  UInt16 scsiReserved5pt6;
  UInt16 scsiIOFlags;
  UInt8 scsiTagAction;
  UInt8 scsiReserved6;
  UInt16 scsiReserved7;
  UInt16 scsiSelectTimeout;
  UInt8 scsiDataType;
  UInt8 scsiTransferType;
  UInt32 scsiReserved8;
  UInt32 scsiReserved9;
  UInt16 scsiHandshake[8];
  UInt32 scsiReserved10;
  UInt32 scsiReserved11;
  UInt32 scsiCommandLink;
  UInt8 scsiSIMpublics[8];
  UInt8 scsiAppleReserved6[8];
  UInt8 scsiPrivates[120 - 2 * (sizeof(UInt8*) - sizeof(UInt32))];
};

#pragma pack(pop)

static_assert(sizeof(SCSIHdr) == 36);
static_assert(sizeof(SCSIBusInquiryPB) == 172);
static_assert(sizeof(SCSIExecIOPB) == 0x114);
static_assert(sizeof(DeviceIdent) == 4 && sizeof(CDB) == 16);

using SCSI_PB = SCSIHdr;

// The block is of the function's type, and of the length it says. The status is in the block too.
CF_EXPORT OSErr SCSIAction(SCSI_PB* block);
