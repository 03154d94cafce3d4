#include "portable_inspectors/engine_library.h"

#include <dlfcn.h>

namespace {

// Beside this library, wherever that was loaded from.
std::string PathBesideThis(char const* library) {
  Dl_info self;
  if (dladdr(reinterpret_cast<void*>(&LoadEngineEntry), &self) == 0) return library;
  std::string const path = self.dli_fname;
  return path.substr(0, path.rfind('/') + 1) + library;
}

}  // namespace

void* LoadEngineEntry(char const* library, char const* entry, std::string& error) {
  void* const loaded = dlopen(PathBesideThis(library).c_str(), RTLD_NOW | RTLD_LOCAL);
  void* const address = loaded == nullptr ? nullptr : dlsym(loaded, entry);
  if (address == nullptr) error = dlerror();
  return address;
}
