// Buffers, nodes and lists for the directory calls, all from the C heap. The directory reference is
// part of the published calls and not looked at: what they make may outlive it.
#pragma once

#include <DirectoryService/DirServicesTypes.h>

// Null when there is no memory. The length is 0.
CF_EXPORT tDataBufferPtr dsDataBufferAllocate(tDirReference inDirReference, UInt32 inBufferSize);
CF_EXPORT tDirStatus dsDataBufferDeAllocate(tDirReference inDirReference,
                                            tDataBufferPtr inDataBufferPtr);

CF_EXPORT tDataNodePtr dsDataNodeAllocateString(tDirReference inDirReference,
                                                char const* inCString);
CF_EXPORT tDirStatus dsDataNodeDeAllocate(tDirReference inDirReference, tDataNodePtr inDataNodePtr);

// The strings end with a null pointer. Null without a first string.
CF_EXPORT tDataListPtr dsBuildListFromStrings(tDirReference inDirReference,
                                              char const* in1stCString, ...)
    __attribute__((sentinel));
// The pieces between separators, without empty ones.
CF_EXPORT tDataListPtr dsBuildFromPath(tDirReference inDirReference, char const* inPathCString,
                                       char const* inPathSeparatorCString);
CF_EXPORT tDirStatus dsAppendStringToListAlloc(tDirReference inDirReference,
                                               tDataList* inOutDataList, char const* inCString);
// Ends the nodes of a list; the list itself is freed with `free` by its owner.
CF_EXPORT tDirStatus dsDataListDeallocate(tDirReference inDirReference, tDataListPtr inDataList);
// The pieces with the delimiter before each; the caller frees it.
CF_EXPORT char* dsGetPathFromList(tDirReference inDirReference, tDataList const* inDataList,
                                  char const* inDelimiter);

// Copies that the caller frees.
CF_EXPORT tDirStatus dsGetRecordNameFromEntry(tRecordEntryPtr inRecEntryPtr, char** outRecName);
CF_EXPORT tDirStatus dsGetRecordTypeFromEntry(tRecordEntryPtr inRecEntryPtr, char** outRecType);
