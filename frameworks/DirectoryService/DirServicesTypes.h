// The types, layouts and status codes of the directory service. What is `unsigned long` in the
// published layouts is 32 bits wide there and here.
#pragma once

#include <CoreFoundation/CFBase.h>

using tDirStatus = SInt32;

enum : tDirStatus {
  eDSNoErr = 0,
  eDSOpenFailed = -14000,
  eDSOpenNodeFailed = -14002,
  eDSNodeNotFound = -14008,
  eDSAllocationFailed = -14050,
  eDSCorruptBuffer = -14060,
  eDSIndexOutOfRange = -14062,
  eDSInvalidReference = -14071,
  eDSInvalidRefType = -14072,
  eDSInvalidDirRef = -14073,
  eDSInvalidNodeRef = -14074,
  eDSInvalidAttrListRef = -14076,
  eDSInvalidAttrValueRef = -14077,
  eDSInvalidContinueData = -14078,
  eDSInvalidBuffFormat = -14079,
  eDSPermissionError = -14120,
  eDSNullParameter = -14200,
  eDSNullDataBuff = -14201,
  eDSNullNodeName = -14202,
  eDSNullRecNameList = -14205,
  eDSNullRecTypeList = -14207,
  eDSNullAttributeType = -14211,
  eDSNullAttributeTypeList = -14212,
  eDSNullDataList = -14215,
  eDSNullPatternMatch = -14221,
  eDSEmptyRecordNameList = -14234,
  eDSEmptyRecordTypeList = -14236,
  eDSBufferTooSmall = -14260,
  eDSUnSupportedMatchType = -14262,
  eDSReceiveFailed = -14298,
  eDSBadPacket = -14299,
  eDSServiceUnavailable = -14311,
};

enum tDirPatternMatch : UInt32 {
  eDSAnyMatch = 0x0001,
  eDSExact = 0x2001,
  eDSiExact = 0x2101,  // letter case does not count
  eDSLocalNodeNames = 0x2200,
  eDSSearchNodeName = 0x2201,
  eDSAuthenticationSearchNodeName = 0x2201,
  eDSLocalHostedNodes = 0x2203,
};

// All that is opened is known by a number, never 0, and is closed by its call.
using tDirReference = UInt32;
using tDirNodeReference = UInt32;
using tAttributeListRef = UInt32;
using tAttributeValueListRef = UInt32;

// Null before the first call and after the last one. Whoever gives up in between hands it to
// `dsReleaseContinueData`, or closes the node, which ends it too.
using tContextData = void*;

using dsBool = UInt8;
using tBuffer = char*;

// The data goes on behind the end: `fBufferSize` bytes of it there are, `fBufferLength` are used.
struct tDataBuffer {
  UInt32 fBufferSize;
  UInt32 fBufferLength;
  char fBufferData[1];
};
using tDataBufferPtr = tDataBuffer*;
using tDataNode = tDataBuffer;
using tDataNodePtr = tDataNode*;

// The nodes of a list are made by the calls for lists only: they know what comes next.
struct tDataList {
  UInt32 fDataNodeCount;
  tDataNodePtr fDataListHead;
};
using tDataListPtr = tDataList*;

struct tAccessControlEntry {
  UInt32 fGuestAccessFlags;
  UInt32 fDirMemberFlags;
  UInt32 fDirNodeMemberFlags;
  UInt32 fOwnerFlags;
  UInt32 fAdministratorFlags;
};

// Name and type, each as a 16-bit length and bytes, are in the last member's data.
struct tRecordEntry {
  UInt32 fReserved1;
  tAccessControlEntry fReserved2;
  UInt32 fRecordAttributeCount;
  tDataNode fRecordNameAndType;
};
using tRecordEntryPtr = tRecordEntry*;

struct tAttributeEntry {
  UInt32 fReserved1;
  tAccessControlEntry fReserved2;
  UInt32 fAttributeValueCount;
  UInt32 fAttributeDataSize;      // of all values together
  UInt32 fAttributeValueMaxSize;  // of the longest value
  tDataNode fAttributeSignature;  // the attribute's name
};
using tAttributeEntryPtr = tAttributeEntry*;

// The value's bytes, of any kind; a NUL that does not count follows them.
struct tAttributeValueEntry {
  UInt32 fAttributeValueID;
  tDataNode fAttributeValueData;
};
using tAttributeValueEntryPtr = tAttributeValueEntry*;
