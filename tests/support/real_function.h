// What stands behind a function that a test program puts in front of a library's.
#pragma once

#include <dlfcn.h>

template <typename Function>
Function* RealFunction(char const* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}
