// What the directory is asked for: the computer's record and those of users.
#pragma once

#include <cstddef>
#include <vector>

#include "inspectors/activedirectory/active_directory_server.h"

ActiveDirectoryServer ActiveDirectoryOfWorld();
// Empty where the host has no record; one that was only just asked for has its messages.
ActiveDirectoryLocalComputer LocalComputerObjectOfActiveDirectoryServer(
    ActiveDirectoryServer const& server);
ActiveDirectoryLocalUser NamedLocalUserObjectOfActiveDirectoryServer(
    unsigned char const* name, unsigned long length, ActiveDirectoryServer const& server);
ActiveDirectoryLocalUser NamedLoggedOnUserObjectOfActiveDirectoryServer(
    unsigned char const* name, unsigned long length, ActiveDirectoryServer const& server);

// The users of a list, as it was when the iteration began, that have a distinguished name.
class ADUserIterator {
 public:
  ActiveDirectoryLocalUser Next(ActiveDirectoryServer const& server);

 protected:
  ActiveDirectoryLocalUser Start(std::vector<ActiveDirectoryLocalUser> users,
                                 ActiveDirectoryServer const& server);

 private:
  std::vector<ActiveDirectoryLocalUser> users_;
  std::size_t position_ = 0;
};

class ADLocalUserIterator : public ADUserIterator {
 public:
  ActiveDirectoryLocalUser First(ActiveDirectoryServer const& server);
};

class ADLoggedOnUserIterator : public ADUserIterator {
 public:
  ActiveDirectoryLocalUser First(ActiveDirectoryServer const& server);
};
