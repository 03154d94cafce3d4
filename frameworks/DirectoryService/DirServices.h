// The directory of the machine in use. Two nodes can be opened, by name: the search node "/Search",
// which asks the local node and then the network's directory, and the local node "/Local/Default".
//
// Indices count from 1. Results stay as they are where a call fails. Answers are copied into the
// caller's buffer, which must not change until what was opened of it is closed.
#pragma once

#include <DirectoryService/DirServicesTypes.h>

CF_EXPORT tDirStatus dsOpenDirService(tDirReference* outDirReference);
// Closes all that was opened of it.
CF_EXPORT tDirStatus dsCloseDirService(tDirReference inDirReference);

// Fills the buffer with the names of the nodes of a kind: `eDSSearchNodeName`,
// `eDSLocalHostedNodes` or `eDSLocalNodeNames`, or those of `inNodeNamePattern` (`eDSExact`,
// `eDSiExact`).
CF_EXPORT tDirStatus dsFindDirNodes(tDirReference inDirReference, tDataBufferPtr inOutDataBufferPtr,
                                    tDataListPtr inNodeNamePattern,
                                    tDirPatternMatch inPatternMatchType, UInt32* outDirNodeCount,
                                    tContextData* inOutContinueData);
// The parts of a name's path, as a list of the caller's.
CF_EXPORT tDirStatus dsGetDirNodeName(tDirReference inDirReference, tDataBufferPtr inDataBuffer,
                                      UInt32 inDirNodeIndex, tDataListPtr* outDataList);
CF_EXPORT tDirStatus dsOpenDirNode(tDirReference inDirReference, tDataListPtr inDirNodeName,
                                   tDirNodeReference* outDirNodeReference);
CF_EXPORT tDirStatus dsCloseDirNode(tDirNodeReference inNodeReference);

// Records of the given types and names (`kDSRecordsAll`: any), with the given attributes
// (`kDSAttributesAll` and the like) as far as they have them. The count is the most that are wanted
// in all, 0 for any number, and becomes how many are in the buffer; with more to come there is
// continue data. `eDSBufferTooSmall` when not even the first fits; asked again with a larger
// buffer, the node answers with the same records. A node that has none of the requested native
// attributes of a record does not answer for it.
CF_EXPORT tDirStatus dsGetRecordList(tDirNodeReference inDirNodeReference,
                                     tDataBufferPtr inOutDataBuffer, tDataListPtr inRecordNameList,
                                     tDirPatternMatch inPatternMatchType,
                                     tDataListPtr inRecordTypeList,
                                     tDataListPtr inAttributeTypeList, dsBool inAttributeInfoOnly,
                                     UInt32* inOutRecordEntryCount,
                                     tContextData* inOutContinueData);

// The same for records that have a value: the pattern, of an attribute that is not the name. The
// one without data answers with all attributes.
CF_EXPORT tDirStatus
dsDoAttributeValueSearch(tDirNodeReference inDirNodeReference, tDataBufferPtr inOutDataBuffer,
                         tDataListPtr inRecordTypeList, tDataNodePtr inAttributeType,
                         tDirPatternMatch inPatternMatchType, tDataNodePtr inPattern2Match,
                         UInt32* inOutMatchRecordCount, tContextData* inOutContinueData);
CF_EXPORT tDirStatus dsDoAttributeValueSearchWithData(
    tDirNodeReference inDirNodeReference, tDataBufferPtr inOutDataBuffer,
    tDataListPtr inRecordTypeList, tDataNodePtr inAttributeType,
    tDirPatternMatch inPatternMatchType, tDataNodePtr inPattern2Match,
    tDataListPtr inAttributeTypeRequestList, dsBool inAttributeInfoOnly,
    UInt32* inOutMatchRecordCount, tContextData* inOutContinueData);
CF_EXPORT tDirStatus dsReleaseContinueData(tDirReference inDirReference,
                                           tContextData inContinueData);

// A record of the buffer, an attribute of the record, a value of the attribute. Entries and lists
// are the caller's, to be ended by the calls below.
CF_EXPORT tDirStatus dsGetRecordEntry(tDirNodeReference inNodeReference,
                                      tDataBufferPtr inDataBuffer, UInt32 inRecordEntryIndex,
                                      tAttributeListRef* outAttributeListRef,
                                      tRecordEntryPtr* outRecordEntryPtr);
CF_EXPORT tDirStatus dsGetAttributeEntry(tDirNodeReference inNodeReference,
                                         tDataBufferPtr inDataBuffer,
                                         tAttributeListRef inAttributeListRef,
                                         UInt32 inAttributeInfoIndex,
                                         tAttributeValueListRef* outAttributeValueListRef,
                                         tAttributeEntryPtr* outAttributeInfoPtr);
CF_EXPORT tDirStatus dsGetAttributeValue(tDirNodeReference inNodeReference,
                                         tDataBufferPtr inDataBuffer, UInt32 inAttributeValueIndex,
                                         tAttributeValueListRef inAttributeValueListRef,
                                         tAttributeValueEntryPtr* outAttributeValue);
CF_EXPORT tDirStatus dsCloseAttributeList(tAttributeListRef inAttributeListRef);
CF_EXPORT tDirStatus dsCloseAttributeValueList(tAttributeValueListRef inAttributeValueListRef);
CF_EXPORT tDirStatus dsDeallocRecordEntry(tDirReference inDirRef, tRecordEntryPtr inRecEntry);
CF_EXPORT tDirStatus dsDeallocAttributeEntry(tDirReference inDirRef,
                                             tAttributeEntryPtr inAttrEntry);
CF_EXPORT tDirStatus dsDeallocAttributeValueEntry(tDirReference inDirRef,
                                                  tAttributeValueEntryPtr inAttrValueEntry);
