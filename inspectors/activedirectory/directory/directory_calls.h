// The directory's calls as the queries make them: each gives what it opened to a handle, or throws
// its exception. Indices count from 1.
#pragma once

#include <string>

#include "inspectors/activedirectory/directory/auto_od.h"
#include "inspectors/activedirectory/directory/directory_errors.h"
#include "portable/const_data.h"

// What a buffer begins with, and what is added to it where that is not enough.
inline constexpr UInt32 kDirectoryBufferSize = 8192;

GATOTU_API AutoODReference ODOpenService();
GATOTU_API AutoODDataBuffer ODBufferAllocate(tDirReference service, UInt32 size);

// A list of one. A text with a NUL fails: cut off there it would name something else.
GATOTU_API AutoODDataList ODBuildListFromString(tDirReference service, std::string const& text);
GATOTU_API AutoODDataList ODBuildListFromPath(tDirReference service, std::string const& path,
                                              std::string const& separator);

// The node that asks all others, and the one of the machine's own records.
GATOTU_API AutoODNodeRef ODGetSearchDirNode(tDirReference service);
GATOTU_API AutoODNodeRef ODGetLocalHostedNode(tDirReference service);
GATOTU_API AutoODDataList ODGetDirNodeName(tDirReference service, AutoODDataBuffer const& buffer,
                                           UInt32 index);
GATOTU_API AutoODNodeRef ODOpenDirNode(tDirReference service, AutoODDataList const& name);

// A record of the buffer, an attribute of the record, a value of the attribute.
GATOTU_API AutoODRecordEntryAttrList ODGetRecordEntry(tDirNodeReference node,
                                                      AutoODDataBuffer const& buffer, UInt32 index);
GATOTU_API AutoODAttrEntryAttrValueList ODGetAttributeEntry(tDirNodeReference node,
                                                            AutoODDataBuffer const& buffer,
                                                            AutoODAttrList const& attributes,
                                                            UInt32 index);
GATOTU_API AutoODAttrValueEntry ODGetAttributeValue(tDirNodeReference node,
                                                    AutoODDataBuffer const& buffer, UInt32 index,
                                                    AutoODAttrValueList const& values);
// Lies in the value.
GATOTU_API ConstData ODGetAttributeValueData(AutoODAttrValueEntry const& value);
