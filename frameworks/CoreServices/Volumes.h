// The volumes of the machine in use, in its own order, the root volume first. What a volume does
// not tell is 0 in its records, which cannot say so.
#pragma once

#include <CoreServices/Files.h>

// What `FSGetVolumeInfo` fills in; the rest is zeros.
using FSVolumeInfoBitmap = UInt32;
enum : FSVolumeInfoBitmap {
  kFSVolInfoNone = 0x0000,
  kFSVolInfoCreateDate = 0x0001,
  kFSVolInfoModDate = 0x0002,
  kFSVolInfoBackupDate = 0x0004,   // zeros
  kFSVolInfoCheckedDate = 0x0008,  // zeros
  kFSVolInfoFileCount = 0x0010,
  kFSVolInfoDirCount = 0x0020,
  kFSVolInfoSizes = 0x0040,
  kFSVolInfoBlocks = 0x0080,
  kFSVolInfoNextAlloc = 0x0100,  // this and the following three: zeros
  kFSVolInfoRsrcClump = 0x0200,
  kFSVolInfoDataClump = 0x0400,
  kFSVolInfoNextID = 0x0800,
  kFSVolInfoFinderInfo = 0x1000,  // zeros
  kFSVolInfoFlags = 0x2000,
  kFSVolInfoFSInfo = 0x4000,     // zeros
  kFSVolInfoDriveInfo = 0x8000,  // zeros
  kFSVolInfoGettableInfo = 0xFFFF,
};
enum : UInt16 { kFSVolFlagSoftwareLockedMask = 0x8000, kFSVolFlagHardwareLockedMask = 0x0080 };

// Instead of bytes that are not known. A date that is not known lies beyond what 32 bits of seconds
// hold.
inline constexpr UInt64 kFSVolumeUnknownBytes = 0xFFFFFFFFFFFFFFFF;

struct FSVolumeInfo {
  UTCDateTime createDate;    // of the root folder
  UTCDateTime modifiedDate;  // of the root folder
  UTCDateTime backupDate;
  UTCDateTime checkedDate;
  UInt32 fileCount;  // files and folders in use; what does not fit is the largest number
  UInt32 folderCount;
  UInt64 totalBytes;
  UInt64 freeBytes;  // that every user may have
  UInt32 blockSize;
  UInt32 totalBlocks;
  UInt32 freeBlocks;
  UInt32 nextAllocation;
  UInt32 rsrcClumpSize;
  UInt32 dataClumpSize;
  UInt32 nextCatalogID;
  UInt8 finderInfo[32];
  UInt16 flags;
  UInt16 filesystemID;
  UInt16 signature;
  UInt16 driveNumber;
  SInt16 driverRefNum;
};

// A volume by its place in the list, 1 for the first, or with `volumeIndex` 0 by its reference
// number, which is also that of the items on it. `nsvErr` for none such. Of one that does not
// answer, or not this user, there is a name and a number, and nothing else is known. The root
// folder is all zeros where it is not to be reached.
CF_EXPORT OSErr FSGetVolumeInfo(FSVolumeRefNum volume, ItemCount volumeIndex,
                                FSVolumeRefNum* actualVolume, FSVolumeInfoBitmap whichInfo,
                                FSVolumeInfo* info, HFSUniStr255* volumeName, FSRef* rootDirectory);

// What a volume can do. Fields of four bytes stand in for the handle and the address of the
// published record, so that it has the published size.
#pragma pack(push, 2)
struct GetVolParmsInfoBuffer {
  SInt16 vMVersion;
  SInt32 vMAttrib;
  UInt32 vMLocalHand;
  SInt32 vMServerAdr;
  SInt32 vMVolumeGrade;
  SInt16 vMForeignPrivID;
  SInt32 vMExtendedAttributes;  // from version 3
  UInt32 vMDeviceID;            // from version 4
  UInt32 vMMaxNameLength;       // from version 5
};
#pragma pack(pop)
static_assert(sizeof(GetVolParmsInfoBuffer) == 32);

// Of a parameter block, what `PBHGetVolParmsSync` reads and sets.
struct HIOParam {
  OSErr ioResult;
  StringPtr ioNamePtr;  // not read: a volume is known by its number
  FSVolumeRefNum ioVRefNum;
  char* ioBuffer;
  ByteCount ioReqCount;
  ByteCount ioActCount;
};
union HParamBlockRec {
  HIOParam ioParam;
};
using HParmBlkPtr = HParamBlockRec*;

// Fills the buffer with as much of a `GetVolParmsInfoBuffer` of version 2 as was asked for: no
// attributes, no server, no grade, no foreign privileges. After a failure the buffer is as it was.
CF_EXPORT OSErr PBHGetVolParmsSync(HParmBlkPtr paramBlock);
