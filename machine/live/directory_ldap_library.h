// The LDAP library's objects, within our library for it.
#pragma once

#include <ldap.h>
#include <sys/time.h>

#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "machine/live/directory_ldap.h"

namespace machine::live {

// The LDAP library writes to sockets that may be closed on the other side. While one of these lives
// that ends no process: the signal is taken back.
class BrokenPipesKept {
 public:
  BrokenPipesKept();
  ~BrokenPipesKept();
  BrokenPipesKept(BrokenPipesKept const&) = delete;
  BrokenPipesKept& operator=(BrokenPipesKept const&) = delete;

 private:
  sigset_t before_;
  bool was_pending_;
};

struct Unbind {
  void operator()(LDAP* handle) const {
    BrokenPipesKept const kept;
    ::ldap_unbind_ext(handle, nullptr, nullptr);
  }
};
using LdapHandle = std::unique_ptr<LDAP, Unbind>;

struct FreeMessage {
  void operator()(LDAPMessage* message) const { ::ldap_msgfree(message); }
};
using LdapMessage = std::unique_ptr<LDAPMessage, FreeMessage>;

timeval TimeLeft(Patience const& patience);

// The next message of an answer; the request is abandoned when patience ends.
Fact<LdapMessage> NextMessage(LDAP* handle, int number, Patience const& patience,
                              std::string const& source);

// Why a call failed, in the server's words where it has some. The handle may be null.
Absence FailureOf(LDAP* handle, int error, std::string const& source);

// In their order, but those last that let a question run out of time and have not answered since,
// the latest of them at the end.
std::vector<std::string> WithSilentOnesLast(std::vector<std::string> uris);
void NoteSilence(std::string const& uri);
void NoteAnswer(std::string const& uri);

std::string ConfiguredBase();
std::unique_ptr<LdapConnection> MakeLdapConnection(LdapHandle handle, std::string uri);

}  // namespace machine::live
