#include <BSD/unistd.h>

#include <cerrno>
#include <cstring>

#include "machine/machine.h"

namespace BSD {

int gethostname(char* name, std::size_t namelen) {
  machine::Fact<std::string> const host = machine::CurrentMachine().Names().HostName();
  if (!host) {
    errno = host.outcome() == machine::Outcome::kPermissionRefused ? EACCES : ENOENT;
    return -1;
  }
  if (host->size() >= namelen) {
    errno = ENAMETOOLONG;
    return -1;
  }
  std::memcpy(name, host->c_str(), host->size() + 1);
  return 0;
}

}  // namespace BSD
