// What the users' inspectors ask of the directory. The directory's queries define it.
#pragma once

#include <map>
#include <string>
#include <vector>

class ActiveDirectoryInspectorContext;
class ActiveDirectoryLocalUser;

// An attribute's directory name ("dsAttrTypeStandard:RecordName") to its values, bytes of any kind.
using ODRecord = std::map<std::string, std::vector<std::string>>;

inline constexpr char kUsersRecordType[] = "dsRecTypeStandard:Users";

// All records of a type. This and the next throw the exceptions of the directory's calls.
std::vector<ODRecord> GetODObjectListOfType(std::string const& type);

// The one of that name; throws when there is none.
ODRecord GetODObjectOfType(std::string const& type, std::string const& name);

// Of several values the one that stands for all. False when the record has no such attribute.
bool GetODRecordSingleValue(ODRecord const& record, std::string const& attribute,
                            std::string& value);

// The host's record of a local user, as the Active Directory server object answers; the context may
// be null. False when there is none or it was not read yet.
bool GetActiveDirectoryUser(ActiveDirectoryInspectorContext const* context, std::string const& name,
                            ActiveDirectoryLocalUser& found);
