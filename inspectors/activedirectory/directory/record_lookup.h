// Whole records of the directory, for whoever shows all that it has.
#pragma once

#include <string>
#include <string_view>

#include "evaluator/plugin/export.h"
#include "inspectors/activedirectory/directory/od_record.h"

// All records of a type that this machine keeps itself, in the directory's order. This and the next
// throw the exceptions of the directory's calls.
GATOTU_API ODRecordList GetODObjectListOfType(std::string const& type);

// The one of that name, also of the network's directory; throws when there is none.
GATOTU_API ODRecord GetODObjectOfType(std::string const& type, std::string const& name);

// Of several values the one that stands for all: the first. False when the record has no such
// attribute or that has no value.
GATOTU_API bool GetODRecordSingleValue(ODRecord const& record, std::string_view attribute,
                                       std::string& value);
