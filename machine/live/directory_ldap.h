// What the machine asks of the LDAP library. It lives in a shared library of its own that is loaded
// at the first need: together with TLS and SASL it costs milliseconds to load.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "machine/fact.h"
#include "machine/live/patience.h"

namespace machine::live {

struct LdapServer {
  std::string uri;  // several with spaces between; empty: as LDAP clients are configured
  std::string bind_name, bind_password;
  bool allows_clear_loopback = false;
};

struct LdapSearch {
  std::string base;
  bool is_of_base_only = false;
  std::string filter;
  std::vector<std::string> attributes;
  std::size_t limit = 0;  // of entries; 0: all
};

struct LdapEntry {
  std::string name;  // distinguished
  // As the server spells them; values are bytes.
  std::vector<std::pair<std::string, std::vector<std::string>>> attributes;
};

// For one thread at a time.
class LdapConnection {
 public:
  virtual ~LdapConnection() = default;
  virtual std::string const& uri() const = 0;
  // Where LDAP clients are configured to search; may be empty.
  virtual std::string const& configured_base() const = 0;
  // False once the server has gone.
  virtual bool is_usable() const = 0;
  virtual Fact<std::vector<LdapEntry>> Search(LdapSearch const& search,
                                              Patience const& patience) = 0;

  // Where the server itself says to search, kept here by who asked it.
  std::string default_base;
};

class LdapEngine {
 public:
  virtual Fact<std::unique_ptr<LdapConnection>> Connect(LdapServer const& server,
                                                        Patience const& patience) = 0;

 protected:
  ~LdapEngine() = default;
};

// Null when the library cannot be loaded.
LdapEngine* LoadLdapEngine();

// What the library offers.
inline constexpr char kLdapEngineEntry[] = "FrameworksLdapEngine";
using LdapEngineEntry = LdapEngine* (*)();

}  // namespace machine::live
