#include <dlfcn.h>

#include <string>

#include "portable_inspectors/regex_engine.h"

namespace {

// Beside this library, wherever that was loaded from.
std::string EnginePath() {
  Dl_info self;
  if (dladdr(reinterpret_cast<void*>(&TheRegexEngine), &self) == 0) return GATOTU_REGEX_LIBRARY;
  std::string const path = self.dli_fname;
  return path.substr(0, path.rfind('/') + 1) + GATOTU_REGEX_LIBRARY;
}

RegexEngine* LoadEngine() {
  // Never closed: whoever compiled a pattern may be asked again at any time.
  void* const library = dlopen(EnginePath().c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw RegularExpressionsUnavailable(dlerror());
  void* const entry = dlsym(library, kRegexEngineEntry);
  if (entry == nullptr) throw RegularExpressionsUnavailable(dlerror());
  return reinterpret_cast<RegexEngineEntry>(entry)();
}

}  // namespace

RegexEngine& TheRegexEngine() {
  static RegexEngine& engine = *LoadEngine();
  return engine;
}
