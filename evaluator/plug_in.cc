#include <dlfcn.h>

#include <mutex>

#include "evaluator/evaluator.h"
#include "evaluator/registry.h"

namespace gatotu {

std::unique_ptr<PlugIn> PlugIn::Load(std::string const& path, std::string& error) {
  // The registry's lock first, then the loader's: an evaluation that holds the first may need the
  // second, so taking them the other way round, as registering from dlopen does, could lock up.
  std::lock_guard lock(registry.mutex);
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    char const* reason = dlerror();
    error = reason != nullptr ? reason : path + ": cannot be loaded";
    return nullptr;
  }
  return std::unique_ptr<PlugIn>(new PlugIn(handle));
}

PlugIn::~PlugIn() {
  std::lock_guard lock(registry.mutex);
  dlclose(handle_);
}

}  // namespace gatotu
