#include "inspectors/activedirectory/directory_accounts.h"

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"

namespace {

std::string TextOf(unsigned char const* start, unsigned long length) {
  return {reinterpret_cast<char const*>(start), length};
}

}  // namespace

ActiveDirectoryServer ActiveDirectoryOfWorld() { return ActiveDirectoryServer::The(); }

ActiveDirectoryLocalComputer LocalComputerObjectOfActiveDirectoryServer(
    ActiveDirectoryServer const& server) {
  ActiveDirectoryLocalComputer computer;
  server.GetLocalComputer(CurrentDirectoryContext(), computer);
  return computer;
}

ActiveDirectoryLocalUser NamedLocalUserObjectOfActiveDirectoryServer(
    unsigned char const* name, unsigned long length, ActiveDirectoryServer const& server) {
  ActiveDirectoryLocalUser user;
  server.GetLocalUser(CurrentDirectoryContext(), TextOf(name, length), user);
  return user;
}

ActiveDirectoryLocalUser NamedLoggedOnUserObjectOfActiveDirectoryServer(
    unsigned char const* name, unsigned long length, ActiveDirectoryServer const& server) {
  ActiveDirectoryLocalUser user;
  server.GetLoggedOnUser(CurrentDirectoryContext(), TextOf(name, length), user);
  return user;
}

ActiveDirectoryLocalUser ADUserIterator::Start(std::vector<ActiveDirectoryLocalUser> users,
                                               ActiveDirectoryServer const& server) {
  users_ = std::move(users);
  position_ = 0;
  return Next(server);
}

ActiveDirectoryLocalUser ADUserIterator::Next(ActiveDirectoryServer const&) {
  while (position_ < users_.size()) {
    ActiveDirectoryLocalUser const& user = users_[position_++];
    if (!user.GetDistinguishedName().empty()) return user;
  }
  throw NoSuchObject();
}

ActiveDirectoryLocalUser ADLocalUserIterator::First(ActiveDirectoryServer const& server) {
  std::vector<ActiveDirectoryLocalUser> users;
  server.GetLocalUsers(CurrentDirectoryContext(), users);
  return Start(std::move(users), server);
}

ActiveDirectoryLocalUser ADLoggedOnUserIterator::First(ActiveDirectoryServer const& server) {
  std::vector<ActiveDirectoryLocalUser> users;
  server.GetLoggedOnUsers(CurrentDirectoryContext(), users);
  return Start(std::move(users), server);
}

namespace {

using Server = ActiveDirectoryServer;
using Computer = ActiveDirectoryLocalComputer;
using User = ActiveDirectoryLocalUser;

Type<Server, kNoFingerprinting> server_type;
GlobalProperty<Server> active_directory("active directory", "active directories",
                                        ActiveDirectoryOfWorld, nullptr);
Property<Server, Computer> local_computer("local computer", "local computers",
                                          LocalComputerObjectOfActiveDirectoryServer, nullptr);
NamedProperty<Server, User> local_user("local user", "local users",
                                       NamedLocalUserObjectOfActiveDirectoryServer, nullptr);
NamedProperty<Server, User> logged_on_user("logged on user", "logged on users",
                                           NamedLoggedOnUserObjectOfActiveDirectoryServer, nullptr);
IteratedProperty<ADLocalUserIterator, Server, User> local_users("local user", "local users",
                                                                nullptr);
IteratedProperty<ADLoggedOnUserIterator, Server, User> logged_on_users("logged on user",
                                                                       "logged on users", nullptr);

}  // namespace
