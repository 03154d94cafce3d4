// Property lists in their binary form ("bplist00"), read and written.
//
// The form: objects anywhere in the file, a table of their offsets, and a trailer of 32 bytes that
// says how wide offsets and references are. Objects refer to each other by number, so one object
// may stand in many places, and does as well in what is read.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <span>
#include <vector>

#include "evaluator/plugin/export.h"
#include "frameworks/CoreFoundation/property_list_error.h"

// Whether the bytes begin as a binary property list does.
GATOTU_API bool IsBinaryPropertyList(std::span<unsigned char const> bytes);

// The root object with one reference for the caller, or null and the reason in `error`. Takes
// memory in proportion to the input, whatever it claims. Refused are containers that hold
// themselves, nesting beyond `kPropertyListNesting`, objects that overlap, keys that are not
// strings, sets, and integers outside -2^63 .. 2^64-1. Of equal keys the last counts. A keyed
// archive's UID becomes a dictionary of one number, "CF$UID", as its XML form has it.
GATOTU_API CFPropertyListRef ReadBinaryPropertyList(std::span<unsigned char const> bytes,
                                                    PropertyListError& error);

// Appends the property list to `bytes`: numbers and references as narrow as they can be, and equal
// strings, data, numbers and dates written once. False and the reason in `error`, with `bytes` as
// they were, when the root holds what no property list does, or itself, or nests too deeply.
GATOTU_API bool WriteBinaryPropertyList(CFPropertyListRef root, std::vector<unsigned char>& bytes,
                                        PropertyListError& error);
