// Whole records of the directory, for whoever shows all that it has.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "evaluator/plugin/export.h"

// An attribute's directory name ("dsAttrTypeStandard:RecordName") to its values, bytes of any kind.
using ODRecord = std::map<std::string, std::vector<std::string>>;

// All records of a type that this machine keeps itself, in the directory's order. This and the next
// throw the exceptions of the directory's calls.
GATOTU_API std::vector<ODRecord> GetODObjectListOfType(std::string const& type);

// The one of that name, also of the network's directory; throws when there is none.
GATOTU_API ODRecord GetODObjectOfType(std::string const& type, std::string const& name);

// Of several values the one that stands for all: the first. False when the record has no such
// attribute or that has no value.
GATOTU_API bool GetODRecordSingleValue(ODRecord const& record, std::string const& attribute,
                                       std::string& value);
