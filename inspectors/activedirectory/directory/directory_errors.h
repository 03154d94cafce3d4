// The directory's calls that fail, a class for each. None carries a text:
// `CallODRoutineAndCatchError` knows what to say of which.
#pragma once

#include "evaluator/plugin/exceptions.h"

class GATOTU_API OpenDirectoryServiceNotAvailable : public DebuggableException {};
class GATOTU_API ODDataBufferAllocFailed : public DebuggableException {};
class GATOTU_API ODBuildListFromStringFailed : public DebuggableException {};
class GATOTU_API ODBuildListFromPathFailed : public DebuggableException {};
class GATOTU_API ODGetSearchDirNodeFailed : public DebuggableException {};
class GATOTU_API ODGetLocalHostedNodeFailed : public DebuggableException {};
class GATOTU_API ODGetDirNodeNameFailed : public DebuggableException {};
class GATOTU_API ODOpenDirNodeFailed : public DebuggableException {};
class GATOTU_API ODGetDirNodeInfoFailed : public DebuggableException {};
class GATOTU_API ODGetRecordEntryFailed : public DebuggableException {};
class GATOTU_API ODGetAttributeEntryFailed : public DebuggableException {};
class GATOTU_API ODGetAttrValueFailed : public DebuggableException {};
class GATOTU_API ODGetAttributeValueDataFailed : public DebuggableException {};

// When whole records are looked up.
class GATOTU_API DSGetRecordListFailed : public DebuggableException {};

namespace MacintoshPlatform {

// When accounts and groups are asked for; unlike the other one it has a text of its own.
class GATOTU_API DSGetRecordListFailed : public DebuggableException {};

}  // namespace MacintoshPlatform
