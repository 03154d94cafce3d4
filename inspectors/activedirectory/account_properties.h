// What the records of the directory say. A text that is empty is `NoSuchObject`, so that a reading
// that failed has its messages and nothing else; the time is there for every record, 1970 where it
// never was read.
#pragma once

#include <cstddef>
#include <vector>

#include "inspectors/activedirectory/directory/active_directory_local_computer.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"
#include "inspectors/activedirectory/security_identifier.h"
#include "portable_inspectors/moment.h"

inspector_string DistinguishedNameOfActiveDirectoryComputer(
    ActiveDirectoryLocalComputer const& computer);
inspector_string DistinguishedNameErrorMessageOfActiveDirectoryComputer(
    ActiveDirectoryLocalComputer const& computer);
inspector_string GroupsErrorMessageOfActiveDirectoryComputer(
    ActiveDirectoryLocalComputer const& computer);
moment DistinguishedNameSampleTimeOfActiveDirectoryComputer(
    ActiveDirectoryLocalComputer const& computer);
// Whatever the case of its letters.
ActiveDirectoryGroup NamedGroupObjectOfActiveDirectoryComputer(
    unsigned char const* name, unsigned long length, ActiveDirectoryLocalComputer const& computer);

// Only of one that has a distinguished name as well.
inspector_string NameOfActiveDirectoryUser(ActiveDirectoryLocalUser const& user);
inspector_string DistinguishedNameOfActiveDirectoryUser(ActiveDirectoryLocalUser const& user);
inspector_string DistinguishedNameErrorMessageOfActiveDirectoryUser(
    ActiveDirectoryLocalUser const& user);
inspector_string GroupsErrorMessageOfActiveDirectoryUser(ActiveDirectoryLocalUser const& user);
moment DistinguishedNameSampleTimeOfActiveDirectoryUser(ActiveDirectoryLocalUser const& user);
// Unlike a computer's, of exactly that name, and only one that has a distinguished name.
ActiveDirectoryGroup NamedGroupObjectOfActiveDirectoryUser(unsigned char const* name,
                                                           unsigned long length,
                                                           ActiveDirectoryLocalUser const& user);

// Only of one that has a SID as well.
inspector_string NameOfActiveDirectoryGroup(ActiveDirectoryGroup const& group);
inspector_string DistinguishedNameOfActiveDirectoryGroup(ActiveDirectoryGroup const& group);
inspector_string DistinguishedNameErrorMessageOfActiveDirectoryGroup(
    ActiveDirectoryGroup const& group);
security_identifier SidOfActiveDirectoryGroup(ActiveDirectoryGroup const& group);
moment DistinguishedNameSampleTimeOfActiveDirectoryGroup(ActiveDirectoryGroup const& group);

// An account's groups that have a SID, in the directory's order.
class ADAccountGroupsIterator {
 public:
  ActiveDirectoryGroup First(ActiveDirectoryAccount const& account);
  ActiveDirectoryGroup Next(ActiveDirectoryAccount const& account);

 private:
  std::vector<ActiveDirectoryGroup> groups_;
  std::size_t position_ = 0;
};

using ADLocalComputerGroupsIterator = ADAccountGroupsIterator;
using ADLocalUserGroupsIterator = ADAccountGroupsIterator;
