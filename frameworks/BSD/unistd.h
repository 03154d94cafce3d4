#pragma once

#include <cstddef>

namespace BSD {

// The host name and a NUL. -1 with `errno` set: ENAMETOOLONG where it does not fit, else why the
// machine in use does not tell.
__attribute__((visibility("default"))) int gethostname(char* name, std::size_t namelen);

}  // namespace BSD
