#include "machine/library_beside.h"
#include "machine/live/directory_ldap.h"

namespace machine::live {
namespace {

LdapEngine* OpenLibrary() {
  void* const entry = OpenLibraryBeside("libFrameworksLdap.so", kLdapEngineEntry);
  return entry == nullptr ? nullptr : reinterpret_cast<LdapEngineEntry>(entry)();
}

}  // namespace

LdapEngine* LoadLdapEngine() {
  static LdapEngine* const engine = OpenLibrary();
  return engine;
}

}  // namespace machine::live
