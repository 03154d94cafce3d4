// Property lists as the plain data that captures are made of.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <string_view>

#include "machine/capture/record.h"

// Any form of property list. A binary one may share what it holds, so that a few bytes stand for
// very much: one that would grow far beyond its own size is malformed.
MACHINE_API machine::Fact<machine::Record> ReadRecordedFacts(std::string_view bytes,
                                                             std::string const& source);

// In XML, for people to read and change.
MACHINE_API machine::Fact<std::string> WriteRecordedFacts(machine::Record const& record);

// The caller releases it.
CFMutableDictionaryRef CreateRecordedDictionary(machine::RecordDictionary const& entries);
