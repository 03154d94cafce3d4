#include "machine/library_beside.h"

#include <dlfcn.h>

#include <string>

namespace machine {

// The full path is spelled out, because under the sanitizers `dlopen` does not see who called and
// with that not the caller's search path.
void* OpenLibraryBeside(char const* library, char const* entry) {
  Dl_info self = {};
  std::string path = library;
  if (::dladdr(reinterpret_cast<void const*>(&OpenLibraryBeside), &self) != 0) {
    std::string const own = self.dli_fname;
    path.insert(0, own.substr(0, own.rfind('/') + 1));
  }
  void* const opened = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  return opened == nullptr ? nullptr : ::dlsym(opened, entry);
}

}  // namespace machine
